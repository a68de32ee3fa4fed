#include "checkoutput.h"

#include "checkrules.h"
#include "console/jsonreport.h"
#include "console/report.h"
#include "console/valuetexts.h"
#include "describe/documentremarks.h"
#include "sarifreport.h"

#include <QJsonObject>
#include <QStringList>

#include <numeric>

namespace SimulationTool {

namespace {

/// "FILE:3:7", without what is not known.
QString placeText(const QString& a_sFile, const TextPlace& a_place)
{
    QString sText = a_sFile;
    if (a_place.isKnown()) {
        sText += u':' + QString::number(a_place.line);
        sText += a_place.column > 0 ? u':' + QString::number(a_place.column) : QString();
    }
    return sText;
}

/// A line or column, counted from 1. Null for 0, which stands for an unknown place.
QJsonValue placeNumber(qint64 a_iNumber)
{
    return a_iNumber > 0 ? QJsonValue(a_iNumber) : QJsonValue();
}

/// Reports as text or JSON.
class PlainOutput : public CheckOutput
{
public:
    PlainOutput(Output& a_output, ReportForm a_eForm)
        : m_report(a_output, a_eForm)
    {}

    void beginFile(const QString& a_sName) override
    {
        m_sFile = a_sName;
        m_report.beginItem("files");
        m_report.value("file", a_sName);
    }
    void setKind(const char* a_szKind) override
    {
        m_report.value("kind", QLatin1String(a_szKind));
        m_report.list("findings");
    }
    void addError(const QString& a_sReason) override { m_report.value("error", a_sReason); }
    void addFinding(const CheckFinding& a_finding, const std::optional<Excerpt>& a_excerpt) override;
    void addUnlisted(const QMap<QString, quint64>& a_counts) override;
    void addRepair(const char* a_szKey, const QString& a_sValue, const QString& a_sLine) override
    {
        m_report.value(a_szKey, jsonText(a_sValue));
        if (!a_sLine.isEmpty()) {
            m_report.line(a_sLine);
        }
    }
    void finish(const CheckSummary& a_summary) override;

private:
    Report m_report;
    QString m_sFile;
};

void PlainOutput::addFinding(const CheckFinding& a_finding, const std::optional<Excerpt>& a_excerpt)
{
    const QString sSeverity = severityName(a_finding.severity);
    m_report.record("findings",
                    {{QStringLiteral("object_id"), jsonText(a_finding.objectId)},
                     {QStringLiteral("object_name"), jsonText(a_finding.objectName)},
                     {QStringLiteral("rule"), a_finding.ruleId},
                     {QStringLiteral("severity"), sSeverity},
                     {QStringLiteral("line"), placeNumber(a_finding.place.line)},
                     {QStringLiteral("column"), placeNumber(a_finding.place.column)},
                     {QStringLiteral("path"), jsonText(a_finding.path)},
                     {QStringLiteral("found"), jsonText(a_finding.found)},
                     {QStringLiteral("text"), a_finding.text},
                     {QStringLiteral("suggestion"), jsonText(a_finding.suggestion)},
                     {QStringLiteral("repaired"), a_finding.repaired}},
                    placeText(m_sFile, a_finding.place) + QStringLiteral(": ") + sSeverity +
                        QStringLiteral(": [") + a_finding.ruleId + QStringLiteral("] ") +
                        messageOf(a_finding));
    if (a_excerpt) {
        m_report.line(QStringLiteral("    ") + a_excerpt->line);
        m_report.line(QStringLiteral("    ") + a_excerpt->caret);
    }
}

void PlainOutput::addUnlisted(const QMap<QString, quint64>& a_counts)
{
    if (a_counts.isEmpty()) {
        return;
    }
    m_report.line(m_sFile + QStringLiteral(": ") + unlistedText(a_counts));
    for (auto count = a_counts.cbegin(); count != a_counts.cend(); ++count) {
        m_report.record("unlisted", {{QStringLiteral("rule"), count.key()},
                                     {QStringLiteral("count"), jsonCount(count.value())}});
    }
}

void PlainOutput::finish(const CheckSummary& a_summary)
{
    m_report.endPlace();
    m_report.value("checked_count", jsonCount(a_summary.checked));
    m_report.value("unreadable_count", jsonCount(a_summary.unreadable));
    m_report.value("finding_count", jsonCount(a_summary.errors + a_summary.warnings));
    m_report.value("error_count", jsonCount(a_summary.errors));
    m_report.value("warning_count", jsonCount(a_summary.warnings));
    m_report.value("note_count", jsonCount(a_summary.notes));
    m_report.value("repaired_count", jsonCount(a_summary.repaired));
    m_report.value("written", jsonText(a_summary.writtenFile));
    QString sSummary = counted(a_summary.checked, "file") + QStringLiteral(" checked");
    if (a_summary.unreadable != 0) {
        sSummary += QStringLiteral(", %1 not readable").arg(a_summary.unreadable);
    }
    sSummary += QStringLiteral(": ") + countsText(a_summary.errors, a_summary.warnings, a_summary.notes);
    if (!a_summary.writtenFile.isEmpty()) {
        sSummary +=
            QStringLiteral(", %1 repaired, written to ").arg(a_summary.repaired) + a_summary.writtenFile;
    }
    m_report.line(sSummary);
    m_report.finish();
}

} // namespace

QString messageOf(const CheckFinding& a_finding)
{
    QString sText;
    if (!a_finding.objectId.isEmpty() || !a_finding.objectName.isEmpty()) {
        sText = orDash(a_finding.objectId);
        sText +=
            a_finding.objectName.isEmpty() ? QString() : QStringLiteral(" (") + a_finding.objectName + u')';
        sText += QStringLiteral(": ");
    }
    if (!a_finding.found.isEmpty()) {
        sText += u'"' + a_finding.found + QStringLiteral("\": ");
    }
    sText += a_finding.text;
    return a_finding.suggestion.isEmpty()
               ? sText
               : sText + QStringLiteral(" Did you mean \"") + a_finding.suggestion + QStringLiteral("\"?");
}

QString unlistedText(const QMap<QString, quint64>& a_counts)
{
    QStringList rules;
    for (auto count = a_counts.cbegin(); count != a_counts.cend(); ++count) {
        rules.append(QStringLiteral("%1 %2").arg(count.key(), QString::number(count.value())));
    }
    const quint64 uiAll = std::accumulate(a_counts.cbegin(), a_counts.cend(), quint64{0});
    return QStringLiteral("%1 more: %2").arg(QString::number(uiAll), rules.join(QStringLiteral(", ")));
}

std::unique_ptr<CheckOutput> makeCheckOutput(Output& a_output, CheckForm a_eForm)
{
    if (a_eForm == CheckForm::Sarif) {
        return std::make_unique<SarifReport>(a_output);
    }
    return std::make_unique<PlainOutput>(a_output,
                                         a_eForm == CheckForm::Json ? ReportForm::Json : ReportForm::Text);
}

} // namespace SimulationTool
