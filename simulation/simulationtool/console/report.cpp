#include "report.h"

#include "jsonreport.h"
#include "output.h"
#include "terminaltext.h"
#include "valuetexts.h"

#include <QCommandLineParser>

#include <algorithm>

namespace SimulationTool {

namespace {

constexpr qsizetype s_iIndent = 2;
constexpr qsizetype s_iLabelWidth = 14;
constexpr qsizetype s_iValueWidth = 84; ///< so that a line stays within 100 columns

QString indent(qsizetype a_iWidth)
{
    return QString(a_iWidth, u' ');
}

/// Splits a text at its line ends, and wraps it at spaces. A word longer than a line
/// is not split.
QStringList wrapped(const QString& a_sText)
{
    QStringList lines;
    const QStringList paragraphs = a_sText.split(u'\n');
    for (const QString& paragraph : paragraphs) {
        QString sLine;
        qsizetype iWidth = 0;
        const QStringList words = terminalText(paragraph).split(u' ');
        for (const QString& word : words) {
            const qsizetype iWordWidth = terminalWidth(word);
            if (iWidth > 0 && iWidth + 1 + iWordWidth > s_iValueWidth) {
                lines.append(sLine);
                sLine = word;
                iWidth = iWordWidth;
            } else {
                sLine += (iWidth > 0 ? QStringLiteral(" ") : QString()) + word;
                iWidth += (iWidth > 0 ? 1 : 0) + iWordWidth;
            }
        }
        lines.append(sLine);
    }
    return lines;
}

void insertLists(QJsonObject& a_object, QMap<QString, QJsonArray>& a_lists)
{
    for (auto list = a_lists.cbegin(); list != a_lists.cend(); ++list) {
        a_object.insert(list.key(), *list);
    }
    a_lists.clear();
}

const QString s_sJson = QStringLiteral("json");

} // namespace

void addJsonOption(QCommandLineParser& a_parser)
{
    a_parser.addOption(
        {s_sJson, QStringLiteral("Report in JSON on standard output; errors stay on standard error. "
                                 "docs/json.md lists the keys.")});
}

ReportForm reportForm(const QCommandLineParser& a_parser)
{
    return a_parser.isSet(s_sJson) ? ReportForm::Json : ReportForm::Text;
}

QStringList cellTexts(const ReportRow& a_row)
{
    QStringList cells;
    for (const ReportValue& value : a_row) {
        cells.append(orDash(value.text));
    }
    return cells;
}

QJsonObject rowObject(const QList<TextColumn>& a_columns, const ReportRow& a_row)
{
    QJsonObject object;
    for (qsizetype i = 0; i < std::min(a_columns.size(), a_row.size()); ++i) {
        if (a_columns.at(i).key != nullptr) {
            object.insert(QLatin1String(a_columns.at(i).key), a_row.at(i).json);
        }
    }
    return object;
}

Report::Report(Output& a_output, ReportForm a_eForm)
    : m_output(a_output)
    , m_eForm(a_eForm)
{}

void Report::writeHeading(const QString& a_sText)
{
    if (!isText()) {
        return;
    }
    m_output.write((m_bFirst ? QString() : QStringLiteral("\n")) + terminalText(a_sText) + u'\n');
    m_bOnlyFields = m_bFirst;
    m_bFirst = false;
}

void Report::heading(const QString& a_sText)
{
    writeHeading(a_sText);
    closePlace();
}

void Report::heading(const QString& a_sText, const char* a_szKey)
{
    heading(a_sText);
    m_sPlaceKey = QLatin1String(a_szKey);
    m_bPlaceInList = false;
}

void Report::itemHeading(const QString& a_sText, const char* a_szKey)
{
    writeHeading(a_sText);
    beginItem(a_szKey);
}

void Report::beginItem(const char* a_szKey)
{
    closePlace();
    m_sPlaceKey = QLatin1String(a_szKey);
    m_bPlaceInList = true;
}

void Report::list(const char* a_szKey)
{
    (m_sPlaceKey.isEmpty() ? m_lists : m_placeLists)[QLatin1String(a_szKey)];
}

void Report::field(const char* a_szKey, const QString& a_sLabel, const ReportValue& a_value)
{
    keep(a_szKey, a_value.json);
    if (!isText()) {
        return;
    }
    QString sLabel = a_sLabel;
    const QStringList lines = wrapped(orDash(a_value.text));
    for (const QString& line : lines) {
        m_output.write(indent(s_iIndent) + sLabel.leftJustified(s_iLabelWidth) + line + u'\n');
        sLabel.clear();
    }
}

void Report::value(const char* a_szKey, const QJsonValue& a_value)
{
    keep(a_szKey, a_value);
}

void Report::conclusion(const char* a_szKey, const QString& a_sLabel, const ReportValue& a_value)
{
    closePlace();
    if (isText() && !m_bOnlyFields) {
        m_output.write(QStringLiteral("\n"));
    }
    field(a_szKey, a_sLabel, a_value);
}

void Report::line(const QString& a_sText)
{
    if (isText()) {
        m_output.write(terminalText(a_sText) + u'\n');
    }
}

void Report::record(const char* a_szKey, const QJsonObject& a_object, const QString& a_sText)
{
    line(a_sText);
    record(a_szKey, a_object);
}

void Report::record(const char* a_szKey, const QJsonObject& a_object)
{
    if (!isText()) {
        (m_sPlaceKey.isEmpty() ? m_lists : m_placeLists)[QLatin1String(a_szKey)].append(a_object);
    }
}

bool Report::event(const QJsonObject& a_object, const QString& a_sText)
{
    m_bEvents = true;
    line(a_sText);
    if (!isText()) {
        m_output.write(jsonLine(a_object) + u'\n');
    }
    return m_output.finish();
}

void Report::plainTable(const char* a_szKey, const QList<TextColumn>& a_columns,
                        const QList<ReportRow>& a_rows)
{
    keepTable(a_szKey, a_columns, a_rows);
    writeTable(a_columns, a_rows, 0);
}

void Report::table(const char* a_szKey, const QList<TextColumn>& a_columns, const QList<ReportRow>& a_rows)
{
    keepTable(a_szKey, a_columns, a_rows);
    writeTable(a_columns, a_rows, s_iIndent);
    m_bOnlyFields = false;
}

void Report::titledTable(const char* a_szKey, const QString& a_sTitle, const QList<TextColumn>& a_columns,
                         const QList<ReportRow>& a_rows)
{
    keepTable(a_szKey, a_columns, a_rows);
    if (isText() && !a_rows.isEmpty()) {
        m_output.write(indent(s_iIndent) + a_sTitle + QStringLiteral(":\n"));
        writeTable(a_columns, a_rows, s_iIndent + s_iIndent);
    }
}

void Report::writeTable(const QList<TextColumn>& a_columns, const QList<ReportRow>& a_rows,
                        qsizetype a_iIndent)
{
    if (!isText() || a_rows.isEmpty()) {
        return;
    }
    QList<QStringList> rows;
    TextTable table(a_columns);
    for (const ReportRow& row : a_rows) {
        rows.append(cellTexts(row));
        table.fit(rows.constLast());
    }
    const QString sIndent = indent(a_iIndent);
    m_output.write(sIndent + table.titles() + u'\n' + sIndent + table.rule() + u'\n');
    for (const QStringList& cells : rows) {
        m_output.write(sIndent + table.row(cells) + u'\n');
    }
}

void Report::keepTable(const char* a_szKey, const QList<TextColumn>& a_columns,
                       const QList<ReportRow>& a_rows)
{
    if (isText() || a_szKey == nullptr) {
        return;
    }
    QJsonArray rows;
    for (const ReportRow& row : a_rows) {
        rows.append(rowObject(a_columns, row));
    }
    keep(a_szKey, rows);
}

void Report::keep(const char* a_szKey, const QJsonValue& a_value)
{
    if (!isText() && a_szKey != nullptr) {
        (m_sPlaceKey.isEmpty() ? m_document : m_place).insert(QLatin1String(a_szKey), a_value);
    }
}

/// Adds the current place to the document. The document becomes the current place.
void Report::closePlace()
{
    if (isText() || m_sPlaceKey.isEmpty()) {
        return;
    }
    insertLists(m_place, m_placeLists);
    if (m_bPlaceInList) {
        m_lists[m_sPlaceKey].append(m_place);
    } else {
        m_document.insert(m_sPlaceKey, m_place);
    }
    m_place = {};
    m_sPlaceKey.clear();
}

void Report::finish()
{
    if (isText() || m_bEvents) {
        return;
    }
    closePlace();
    insertLists(m_document, m_lists);
    m_output.write(jsonDocument(m_document));
}

bool Report::isOk() const
{
    return m_output.isOk();
}

} // namespace SimulationTool
