#include "outputfile.h"

#include "interruption.h"
#include "output.h"

#include "kpbase/replacedfile.h"

#include <QFileInfo>

namespace SimulationTool {

ExitCode replaceFile(const QString& a_sFile, const QByteArray& a_data)
{
    catchInterruptions(); // so that an interrupted command removes the unfinished new file
    ReplacedFile file(a_sFile);
    const bool bWritten = file.open() && file.write(a_data);
    if (bWritten && isInterrupted()) {
        return ExitCode::Unusable;
    }
    if (bWritten && file.commit()) {
        return ExitCode::Ok;
    }
    complain(QStringLiteral("%1: %2").arg(a_sFile, file.errorString()));
    return ExitCode::Unusable;
}

bool isSameFile(const QString& a_sFirst, const QString& a_sSecond)
{
    const QString sFirst = a_sFirst.isEmpty() ? QString() : QFileInfo(a_sFirst).canonicalFilePath();
    return !sFirst.isEmpty() && sFirst == QFileInfo(a_sSecond).canonicalFilePath();
}

} // namespace SimulationTool
