#include "commands/commandline.h"
#include "console/interruption.h"
#include "console/output.h"

#include "kpbase/errorhandler.h"

#include <QCoreApplication>

#include <cerrno>

namespace {

/// Messages of the toolkit and the library: shown with --trace, one line each,
/// and otherwise dropped. What concerns the user is told by the commands.
void traceMessage(QtMsgType /*a_eType*/, const QMessageLogContext& /*a_context*/, const QString& a_sMessage)
{
    if (ErrorHandler::Instance().traceMask() != 0) {
        SimulationTool::complain(QStringLiteral("trace: ") + a_sMessage);
    }
}

SimulationTool::ExitCode runProgram()
{
    SimulationTool::Output output;
    SimulationTool::ExitCode eCode = SimulationTool::runCommandLine(QCoreApplication::arguments(), output);
    if (!output.finish() && !SimulationTool::isInterrupted()) {
        // A reader that has seen enough, such as "head", is no error to report.
        if (output.errorString() != qt_error_string(EPIPE)) {
            SimulationTool::complain(QStringLiteral("standard output: ") + output.errorString());
        }
        eCode = SimulationTool::ExitCode::Unusable;
    }
    return eCode;
}

} // namespace

int main(int argc, char* argv[])
{
    SimulationTool::prepareStandardStreams();
    ErrorHandler::Instance().setTraceMask(0);
    qInstallMessageHandler(traceMessage);
    const QCoreApplication application(argc, argv);
    const SimulationTool::ExitCode eCode = runProgram();
    SimulationTool::endIfInterrupted();
    return static_cast<int>(eCode);
}
