#ifndef TESTS_TOOLRUN_H
#define TESTS_TOOLRUN_H

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>

/// Functions that run the command-line tool and return its output.

constexpr int s_iToolTimeout = 60'000; ///< ms; instrumented builds are slow

struct ToolResult
{
    int code = -1;
    QString out;
    QString err;
};

/// Runs the command-line tool with a_input on standard input. The code is -1 after a
/// crash or the timeout.
inline ToolResult runTool(const QStringList& a_arguments, const QByteArray& a_input = {})
{
    QProcess process;
    process.start(QStringLiteral(SIMULATIONTOOL_PATH), a_arguments);
    process.write(a_input);
    process.closeWriteChannel();
    ToolResult result;
    if (process.waitForFinished(s_iToolTimeout) && process.exitStatus() == QProcess::NormalExit) {
        result.code = process.exitCode();
    }
    result.out = QString::fromUtf8(process.readAllStandardOutput());
    result.err = QString::fromUtf8(process.readAllStandardError());
    return result;
}

/// The lines that are not empty, with single blanks between the words.
inline QStringList simplifiedLines(const QString& a_sText)
{
    QStringList lines;
    for (const QString& line : a_sText.split(u'\n', Qt::SkipEmptyParts)) {
        lines.append(line.simplified());
    }
    return lines;
}

/// Part of the line that counts what the reader of a document skipped or replaced.
inline const QString s_sSeeCheck = QStringLiteral(": see them with: simulationtool check ");

/// The error text without that line.
inline QString withoutCounts(const QString& a_sErrors)
{
    QString sErrors;
    const QStringList lines = a_sErrors.split(u'\n', Qt::SkipEmptyParts);
    for (const QString& sLine : lines) {
        sErrors += sLine.contains(s_sSeeCheck) ? QString() : sLine + u'\n';
    }
    return sErrors;
}

#endif
