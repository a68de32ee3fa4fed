#include "checkfinding.h"

#include "describe/documentloss.h"
#include "describe/scenariofile.h"

#include "simulationdata/deploymentdataxml.h"
#include "simulationdata/readingreport.h"

namespace SimulationTool {

namespace {

using Simulation::ReadingReport;
using Simulation::Severity;

const QString s_sNotRead = QStringLiteral("not-read");

} // namespace

CheckFindings brokenOffFindings(const QString& a_sError)
{
    if (a_sError.isEmpty()) {
        return {};
    }
    return {{{}, {}, ReadingReport::s_sBrokenOff, Severity::Error, documentVerdict(a_sError).text, false}};
}

CheckFindings versionFindings(const Simulation::DeploymentDataXml& a_deployment)
{
    constexpr std::uint32_t uiKnown = Simulation::DeploymentDataXml::s_uiFileFormatVersion;
    if (a_deployment.fileFormatVersion() <= uiKnown) {
        return {};
    }
    return {{{},
             {},
             ReadingReport::s_sNewerVersion,
             Severity::Error,
             QStringLiteral("The file format version is %1, newer than %2, the newest that is "
                            "known: what is new in it was not read.")
                 .arg(QString::number(a_deployment.fileFormatVersion()), QString::number(uiKnown)),
             false}};
}

CheckFindings unreadFindings(const QByteArray& a_document, const QByteArray& a_written)
{
    const QString sParts =
        a_written.isEmpty() ? QString() : documentLoss(a_document, a_written, Notes::Ignore);
    if (sParts.isEmpty()) {
        return {};
    }
    return {{{},
             {},
             s_sNotRead,
             Severity::Error,
             QStringLiteral("Not read: %1. Correct the name or the place.").arg(sParts),
             false}};
}

bool isOfDocument(const QString& a_sRule)
{
    return a_sRule == ReadingReport::s_sBrokenOff || a_sRule == ReadingReport::s_sNewerVersion ||
           a_sRule == s_sNotRead;
}

QString severityName(Severity a_eSeverity)
{
    switch (a_eSeverity) {
    case Severity::Note:
        return QStringLiteral("note");
    case Severity::Warning:
        return QStringLiteral("warning");
    default:
        return QStringLiteral("error");
    }
}

} // namespace SimulationTool
