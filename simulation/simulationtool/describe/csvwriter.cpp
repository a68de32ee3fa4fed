#include "csvwriter.h"

#include "console/inputfile.h"
#include "console/output.h"
#include "console/terminaltext.h"

#include <QByteArray>
#include <QLocale>

#include <algorithm>
#include <cmath>
#include <iterator>

#include <unistd.h>

namespace SimulationTool {

namespace {

constexpr double s_dPlainFrom = 1e-5;
constexpr double s_dPlainTo = 1e15;

} // namespace

CsvWriter::CsvWriter(const QString& a_sFile, Output& a_output)
    : m_output(a_output)
    , m_bStandardOutput(isStandardStreamName(a_sFile))
    , m_bTerminal(m_bStandardOutput && ::isatty(STDOUT_FILENO) == 1)
    , m_file(a_sFile)
{}

bool CsvWriter::writeRow(const QStringList& a_fields)
{
    QStringList fields;
    fields.reserve(a_fields.size());
    std::transform(a_fields.cbegin(), a_fields.cend(), std::back_inserter(fields), field);
    const QString sLine = fields.join(u',');
    const QString sEnd = QStringLiteral("\r\n");
    if (!m_bStandardOutput) {
        return m_file.write((sLine + sEnd).toUtf8());
    }
    // Ids may contain control characters. These are spelled out on a terminal; a program
    // receives the ids unchanged.
    m_output.write((m_bTerminal ? terminalText(sLine) : sLine) + sEnd);
    return m_output.isOk();
}

QString CsvWriter::field(const QString& a_sText)
{
    const bool bQuoted = std::any_of(a_sText.cbegin(), a_sText.cend(), [](QChar a_cUnit) {
        return a_cUnit == u',' || a_cUnit == u'"' || a_cUnit == u'\n' || a_cUnit == u'\r';
    });
    if (!bQuoted) {
        return a_sText;
    }
    QString sText = a_sText;
    sText.replace(QLatin1String("\""), QLatin1String("\"\""));
    return u'"' + sText + u'"';
}

QString CsvWriter::number(double a_dValue)
{
    // Plain digits in [1e-5, 1e15), because not every reader accepts exponents.
    const double dMagnitude = std::fabs(a_dValue);
    const bool bPlain = dMagnitude == 0.0 || (dMagnitude >= s_dPlainFrom && dMagnitude < s_dPlainTo);
    return QString::number(a_dValue, bPlain ? 'f' : 'g', QLocale::FloatingPointShortest);
}

} // namespace SimulationTool
