#include "sarifreport.h"

#include "checkrules.h"
#include "console/jsonreport.h"
#include "console/output.h"

#include <QDir>
#include <QJsonObject>
#include <QUrl>

namespace SimulationTool {

namespace {

const QString s_sText = QStringLiteral("text");

QJsonObject message(const QString& a_sText)
{
    return {{s_sText, a_sText}};
}

QJsonObject ruleObject(const Simulation::CheckRule& a_rule)
{
    return {{QStringLiteral("id"), QString(a_rule.id)},
            {QStringLiteral("shortDescription"), message(a_rule.summary)},
            {QStringLiteral("fullDescription"), message(a_rule.reason)},
            {QStringLiteral("defaultConfiguration"),
             QJsonObject{{QStringLiteral("level"), severityName(a_rule.severity)}}}};
}

QJsonObject driver()
{
    QJsonArray rules;
    for (const Simulation::CheckRule& rule : checkRules()) {
        rules.append(ruleObject(rule));
    }
    return {{QStringLiteral("name"), QStringLiteral("simulationtool")},
            {QStringLiteral("version"), QStringLiteral(SIMULATIONTOOL_VERSION)},
            {QStringLiteral("rules"), rules}};
}

/// The locations of a finding: its file, and its place if that is known.
QJsonArray locations(const QString& a_sFile, const TextPlace& a_place)
{
    QJsonObject physical{
        {QStringLiteral("artifactLocation"), QJsonObject{{QStringLiteral("uri"), fileUri(a_sFile)}}}};
    if (a_place.isKnown()) {
        QJsonObject region{{QStringLiteral("startLine"), a_place.line}};
        if (a_place.column > 0) {
            region.insert(QStringLiteral("startColumn"), a_place.column);
        }
        physical.insert(QStringLiteral("region"), region);
    }
    return {QJsonObject{{QStringLiteral("physicalLocation"), physical}}};
}

} // namespace

void SarifReport::addError(const QString& a_sReason)
{
    notify(QStringLiteral("error"), a_sReason);
}

void SarifReport::addFinding(const CheckFinding& a_finding, const std::optional<Excerpt>& /*a_excerpt*/)
{
    m_results.append(QJsonObject{{QStringLiteral("ruleId"), a_finding.ruleId},
                                 {QStringLiteral("ruleIndex"), ruleIndex(a_finding.ruleId)},
                                 {QStringLiteral("level"), severityName(a_finding.severity)},
                                 {QStringLiteral("message"), message(messageOf(a_finding))},
                                 {QStringLiteral("locations"), locations(m_sFile, a_finding.place)}});
}

void SarifReport::addUnlisted(const QMap<QString, quint64>& a_counts)
{
    if (!a_counts.isEmpty()) {
        notify(QStringLiteral("warning"), unlistedText(a_counts));
    }
}

void SarifReport::notify(const QString& a_sLevel, const QString& a_sText)
{
    m_notifications.append(QJsonObject{{QStringLiteral("level"), a_sLevel},
                                       {QStringLiteral("message"), message(a_sText)},
                                       {QStringLiteral("locations"), locations(m_sFile, {})}});
}

void SarifReport::finish(const CheckSummary& a_summary)
{
    const QJsonObject invocation{{QStringLiteral("executionSuccessful"), a_summary.unreadable == 0},
                                 {QStringLiteral("toolExecutionNotifications"), m_notifications}};
    const QJsonObject run{{QStringLiteral("tool"), QJsonObject{{QStringLiteral("driver"), driver()}}},
                          {QStringLiteral("columnKind"), QStringLiteral("unicodeCodePoints")},
                          {QStringLiteral("invocations"), QJsonArray{invocation}},
                          {QStringLiteral("results"), m_results}};
    const QString sSchema = QStringLiteral(
        "https://docs.oasis-open.org/sarif/sarif/v2.1.0/errata01/os/schemas/sarif-schema-2.1.0.json");
    m_output.write(jsonDocument({{QStringLiteral("$schema"), sSchema},
                                 {QStringLiteral("version"), QStringLiteral("2.1.0")},
                                 {QStringLiteral("runs"), QJsonArray{run}}}));
}

QString fileUri(const QString& a_sFile)
{
    QString sPath = QDir::cleanPath(a_sFile);
    if (sPath.startsWith(u'/')) {
        const QString sRelative = QDir::current().relativeFilePath(sPath);
        if (sRelative.startsWith(QLatin1String("../"))) {
            return QString::fromLatin1(QUrl::fromLocalFile(sPath).toEncoded());
        }
        sPath = sRelative;
    }
    return QString::fromLatin1(QUrl::toPercentEncoding(sPath, "/"));
}

} // namespace SimulationTool
