#include "deploymentdetails.h"

#include "console/inputfile.h"
#include "console/report.h"
#include "console/valuetexts.h"
#include "objectdetails.h"
#include "scenariofile.h"

#include "simulationdata/deploymentdataxml.h"
#include "simulationdata/deploymentdevice.h"
#include "simulationdata/deploymentstation.h"

namespace SimulationTool {

namespace {

constexpr qsizetype s_iMaxIdWidth = 24;
constexpr qsizetype s_iMaxNameWidth = 28;

void describeHeader(Report& a_report, const Simulation::DeploymentDataXml& a_deployment)
{
    a_report.field("name", QStringLiteral("Name"), a_deployment.name());
    a_report.field("author", QStringLiteral("Author"), a_deployment.author());
    a_report.field("description", QStringLiteral("Description"), a_deployment.description());
    // The format spells this attribute "PersistantId".
    a_report.field("persistant_id", QStringLiteral("PersistantId"), a_deployment.persistantId());
    a_report.field("file_version", QStringLiteral("File version"),
                   countValue(a_deployment.fileFormatVersion()));
}

void listStations(Report& a_report, const Simulation::DeploymentDataXml& a_deployment)
{
    a_report.heading(QStringLiteral("Stations: %1").arg(a_deployment.stations().size()));
    QList<ReportRow> rows;
    for (const auto& station : a_deployment.stations()) {
        rows.append({station->id(), station->iconId(), wholeValue(station->devices().size()),
                     positionSummary(station->positionSettings())});
    }
    a_report.table("stations",
                   {{QStringLiteral("ID"), false, s_iMaxIdWidth, "id"},
                    {QStringLiteral("Icon"), false, s_iMaxNameWidth, "icon"},
                    {QStringLiteral("Devices"), true, 0, "device_count"},
                    {QStringLiteral("Position"), false, 0, "position"}},
                   rows);
}

void listDevices(Report& a_report, const Simulation::DeploymentDataXml& a_deployment)
{
    a_report.heading(QStringLiteral("Devices: %1").arg(a_deployment.devices().size()));
    QList<ReportRow> rows;
    for (const auto& device : a_deployment.devices()) {
        const auto station = device->station();
        const Simulation::ReceiverSettings& receiver = device->receiverSettings();
        rows.append({device->id(), device->name(), station ? station->id() : QString(), device->machine(),
                     device->deviceType(), numberValue(receiver.antennaHeight),
                     numberValue(receiver.antennaGain), positionSummary(device->positionSettings())});
    }
    a_report.table("devices",
                   {{QStringLiteral("ID"), false, s_iMaxIdWidth, "id"},
                    {QStringLiteral("Name"), false, s_iMaxNameWidth, "name"},
                    {QStringLiteral("Station"), false, s_iMaxIdWidth, "station"},
                    {QStringLiteral("Machine"), false, s_iMaxNameWidth, "machine"},
                    {QStringLiteral("Type"), false, s_iMaxNameWidth, "type"},
                    {QStringLiteral("Antenna height"), true, 0, "antenna_height"},
                    {QStringLiteral("Gain"), true, 0, "antenna_gain"},
                    {QStringLiteral("Position"), false, 0, "position"}},
                   rows);
}

} // namespace

Verdict describeDeployment(Report& a_report, const InputFile& a_file)
{
    a_report.heading(QStringLiteral("Deployment"));
    a_report.value("kind", QStringLiteral("deployment"));
    a_report.field("file", QStringLiteral("File"), a_file.name());
    Simulation::DeploymentDataXml deployment;
    if (!deployment.fromXmlFile(a_file.path())) {
        return refusedVerdict(deployment.errorString());
    }
    describeHeader(a_report, deployment);
    listStations(a_report, deployment);
    listDevices(a_report, deployment);
    return documentVerdict(deployment.errorString());
}

QString deploymentSummary(const Simulation::DeploymentDataXml& a_deployment)
{
    return counted(static_cast<quint64>(a_deployment.stations().size()), "station") + QStringLiteral(", ") +
           counted(static_cast<quint64>(a_deployment.devices().size()), "device");
}

} // namespace SimulationTool
