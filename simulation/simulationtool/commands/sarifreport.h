#ifndef SIMULATIONTOOL_SARIFREPORT_H
#define SIMULATIONTOOL_SARIFREPORT_H

#include "checkoutput.h"

#include <QJsonArray>

namespace SimulationTool {

/// Reports a check in the Static Analysis Results Interchange Format (SARIF) 2.1.0, an
/// OASIS standard: one run, with all rules, a result for each finding, and a notification
/// for each file that cannot be read. Columns count Unicode code points.
class SarifReport : public CheckOutput
{
public:
    explicit SarifReport(Output& a_output)
        : m_output(a_output)
    {}

    void beginFile(const QString& a_sName) override { m_sFile = a_sName; }
    void addError(const QString& a_sReason) override;
    void addFinding(const CheckFinding& a_finding, const std::optional<Excerpt>& a_excerpt) override;
    void addUnlisted(const QMap<QString, quint64>& a_counts) override;
    void finish(const CheckSummary& a_summary) override;

private:
    void notify(const QString& a_sLevel, const QString& a_sText);

    Output& m_output;
    QString m_sFile;
    QJsonArray m_results;
    QJsonArray m_notifications;
};

/// The name of a file as a URI reference: percent-encoded, relative to the working folder
/// where the file is below it.
[[nodiscard]] QString fileUri(const QString& a_sFile);

} // namespace SimulationTool

#endif
