#include "deploymentdetails.h"

#include "objectdetails.h"
#include "report.h"
#include "valuetexts.h"

#include "simulationdata/deploymentdataxml.h"
#include "simulationdata/deploymentdevice.h"
#include "simulationdata/deploymentstation.h"

namespace SimulationTool {

namespace {

constexpr qsizetype s_iMaxIdWidth = 24;
constexpr qsizetype s_iMaxNameWidth = 28;

void describeHeader(Report& a_report, const Simulation::DeploymentDataXml& a_deployment)
{
    a_report.field(QStringLiteral("Name"), a_deployment.name());
    a_report.field(QStringLiteral("Author"), a_deployment.author());
    a_report.field(QStringLiteral("Description"), a_deployment.description());
    // The format spells it so.
    a_report.field(QStringLiteral("PersistantId"), a_deployment.persistantId());
    a_report.field(QStringLiteral("File version"), QString::number(a_deployment.fileFormatVersion()));
}

void listStations(Report& a_report, const Simulation::DeploymentDataXml& a_deployment)
{
    a_report.heading(QStringLiteral("Stations: %1").arg(a_deployment.stations().size()));
    QList<QStringList> rows;
    for (const auto& station : a_deployment.stations()) {
        rows.append({orDash(station->id()), orDash(station->iconId()),
                     QString::number(station->devices().size()),
                     positionSummary(station->positionSettings())});
    }
    a_report.table({{QStringLiteral("ID"), false, s_iMaxIdWidth},
                    {QStringLiteral("Icon"), false, s_iMaxNameWidth},
                    {QStringLiteral("Devices"), true},
                    {QStringLiteral("Position")}},
                   rows);
}

void listDevices(Report& a_report, const Simulation::DeploymentDataXml& a_deployment)
{
    a_report.heading(QStringLiteral("Devices: %1").arg(a_deployment.devices().size()));
    QList<QStringList> rows;
    for (const auto& device : a_deployment.devices()) {
        const auto station = device->station();
        const Simulation::ReceiverSettings& receiver = device->receiverSettings();
        rows.append({orDash(device->id()), orDash(device->name()),
                     orDash(station ? station->id() : QString()), orDash(device->machine()),
                     orDash(device->deviceType()), plainNumber(receiver.antennaHeight),
                     plainNumber(receiver.antennaGain), positionSummary(device->positionSettings())});
    }
    a_report.table({{QStringLiteral("ID"), false, s_iMaxIdWidth},
                    {QStringLiteral("Name"), false, s_iMaxNameWidth},
                    {QStringLiteral("Station"), false, s_iMaxIdWidth},
                    {QStringLiteral("Machine"), false, s_iMaxNameWidth},
                    {QStringLiteral("Type"), false, s_iMaxNameWidth},
                    {QStringLiteral("Antenna height"), true},
                    {QStringLiteral("Gain"), true},
                    {QStringLiteral("Position")}},
                   rows);
}

} // namespace

Verdict describeDeployment(Report& a_report, const QString& a_sFile)
{
    a_report.heading(QStringLiteral("Deployment"));
    a_report.field(QStringLiteral("File"), a_sFile);
    Simulation::DeploymentDataXml deployment;
    if (!deployment.fromXmlFile(a_sFile)) {
        return refusedVerdict(deployment.errorString());
    }
    describeHeader(a_report, deployment);
    listStations(a_report, deployment);
    listDevices(a_report, deployment);
    return deployment.errorString().isEmpty()
               ? Verdict{}
               : Verdict{ExitCode::Findings, QStringLiteral("broke off: ") + deployment.errorString()};
}

QString deploymentSummary(const Simulation::DeploymentDataXml& a_deployment)
{
    return counted(static_cast<quint64>(a_deployment.stations().size()), "station") + QStringLiteral(", ") +
           counted(static_cast<quint64>(a_deployment.devices().size()), "device");
}

} // namespace SimulationTool
