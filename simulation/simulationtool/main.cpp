#include "commands/commandline.h"
#include "console/interruption.h"
#include "console/output.h"

#include "kpbase/errorhandler.h"

#include <QCoreApplication>

#include <cerrno>

namespace {

/// With --trace, writes the messages of the toolkit and the library, one line each.
/// Without --trace, drops them, because the commands report errors to the user
/// themselves.
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
        // A reader that closes the pipe early, such as "head", is not an error.
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
