#include "objectdetails.h"

#include "report.h"
#include "valuetexts.h"

#include "simulationdata/elintscenarioemitter.h"
#include "simulationdata/emissionsettings.h"
#include "simulationdata/frequencysettings_chirp.h"
#include "simulationdata/frequencysettings_fasthopper.h"
#include "simulationdata/frequencysettings_slowhopper.h"
#include "simulationdata/positionsettingsptp.h"
#include "simulationdata/scenarionetwork.h"
#include "simulationdata/signalpackage.h"
#include "simulationdata/transmittersettings.h"

#include <algorithm>

namespace SimulationTool {

namespace {

constexpr int s_iCoordinateDecimals = 6; ///< degrees: to 0.1 m
constexpr qsizetype s_iMaxIdWidth = 36;  ///< a package id fits

QString offsetText(float a_fOffset)
{
    return QString::number(static_cast<double>(a_fOffset));
}

QString positionText(const Simulation::TPos& a_position)
{
    return QStringLiteral("longitude %1, latitude %2")
        .arg(plainNumber(a_position.longitude), plainNumber(a_position.latitude));
}

/// The ids of emitters, for a list in one cell or line.
template<typename Emitters>
QString idList(const Emitters& a_emitters)
{
    QStringList ids;
    for (const std::shared_ptr<Simulation::SzenarioEmitter>& emitter : a_emitters) {
        ids.append(orDash(emitter->id()));
    }
    return ids.join(QStringLiteral(", "));
}

template<typename Records>
QString numberList(const Records& a_records)
{
    QStringList numbers;
    for (const auto& record : a_records) {
        numbers.append(QString::number(record->id));
    }
    return orDash(numbers.join(QStringLiteral(", ")));
}

void describeSteps(Report& a_report, Simulation::IFrequencySettings* a_pSettings)
{
    const auto* pHopper = dynamic_cast<const Simulation::FrequencySettings_SlowHopper*>(a_pSettings);
    if (pHopper == nullptr) {
        return;
    }
    QList<QStringList> rows;
    for (const Simulation::FrequencyStep& step : pHopper->getFrequencySteps()) {
        rows.append({QString::number(rows.size() + 1), frequencyText(step.frequency),
                     QString::number(step.duration)});
    }
    a_report.titledTable(QStringLiteral("Frequency steps"),
                         {{QStringLiteral("Step"), true},
                          {QStringLiteral("Frequency"), true},
                          {QStringLiteral("Duration (ms)"), true}},
                         rows);
}

void describePath(Report& a_report, const Simulation::PositionSettingsPtp& a_path)
{
    QList<QStringList> rows;
    std::uint64_t uiArrival = 0;
    for (const Simulation::MovementPoint& point : a_path.getMovments()) {
        rows.append({QString::number(rows.size() + 1),
                     fixedNumber(point.position.longitude, s_iCoordinateDecimals),
                     fixedNumber(point.position.latitude, s_iCoordinateDecimals), QString::number(uiArrival),
                     QString::number(point.dwellTime), plainNumber(point.speed), yesNo(point.major),
                     orDash(point.name)});
        uiArrival += std::uint64_t{point.dwellTime} + point.transitionTime;
    }
    a_report.titledTable(QStringLiteral("Way points"),
                         {{QStringLiteral("Point"), true},
                          {QStringLiteral("Longitude"), true},
                          {QStringLiteral("Latitude"), true},
                          {QStringLiteral("Arrival (ms)"), true},
                          {QStringLiteral("Dwell (ms)"), true},
                          {QStringLiteral("Speed (km/h)"), true},
                          {QStringLiteral("Major")},
                          {QStringLiteral("Name")}},
                         rows);
}

void describeSchedule(Report& a_report, const Simulation::EmissionSettings& a_settings)
{
    QList<QStringList> rows;
    for (const auto& emission : a_settings.emissions()) {
        rows.append({QString::number(emission->id), QString::number(emission->start),
                     durationText(emission->duration),
                     orDash(emission->signalPackage ? emission->signalPackage->id() : QString()),
                     orDash(emission->emitter ? emission->emitter->id() : QString())});
    }
    QString sSchedule = QStringLiteral("%1 emissions").arg(rows.size());
    if (a_settings.isBroadcast()) {
        sSchedule = QStringLiteral("broadcast: always on, whatever the schedule says");
    } else if (rows.size() < 2) {
        sSchedule = rows.isEmpty() ? QStringLiteral("no emission") : QStringLiteral("1 emission");
    }
    if (a_settings.duration() != Simulation::EmissionSettings::s_iUnlimited) {
        sSchedule += QStringLiteral(", repeated every %1").arg(durationText(a_settings.duration()));
    }
    a_report.field(QStringLiteral("Schedule"), sSchedule);
    a_report.titledTable(QStringLiteral("Emissions"),
                         {{QStringLiteral("No."), true},
                          {QStringLiteral("Start (ms)"), true},
                          {QStringLiteral("Duration"), true},
                          {QStringLiteral("Package"), false, s_iMaxIdWidth},
                          {QStringLiteral("Emitter")}},
                         rows);
    rows.clear();
    for (const auto& group : a_settings.groups()) {
        rows.append({QString::number(group->id), orDash(group->name), numberList(group->groups),
                     numberList(group->emissions)});
    }
    a_report.titledTable(QStringLiteral("Emission groups"),
                         {{QStringLiteral("Group"), true},
                          {QStringLiteral("Name"), false, s_iMaxIdWidth},
                          {QStringLiteral("Groups")},
                          {QStringLiteral("Emissions")}},
                         rows);
}

void describeTransmitter(Report& a_report, const Simulation::TransmitterSettings* a_pSettings)
{
    if (a_pSettings == nullptr) {
        return;
    }
    const auto number = [](float a_fValue) { return QString::number(static_cast<double>(a_fValue)); };
    a_report.field(QStringLiteral("Transmitter"),
                   QStringLiteral("power %1").arg(number(a_pSettings->getPower())));
    // Type last: it is the one text that can hold anything.
    a_report.field(QStringLiteral("Antenna"),
                   QStringLiteral("gain %1, height over ground %2, direction %3 degrees, type ")
                           .arg(number(a_pSettings->getAntennaGain()),
                                number(a_pSettings->getAntennaHeight()),
                                number(a_pSettings->getAntennaDirection())) +
                       orDash(a_pSettings->getAntennaType()));
}

/// What an emitter and a network have in common, from name to activity.
void describeIdentity(Report& a_report, const Simulation::ScenarioObject& a_object)
{
    a_report.field(QStringLiteral("Name"), a_object.name());
    a_report.field(QStringLiteral("Description"), a_object.description());
    a_report.field(QStringLiteral("Active"), yesNo(a_object.isActive()));
}

void describeFrequency(Report& a_report, const Simulation::ScenarioObject& a_object)
{
    a_report.field(QStringLiteral("Frequency"), frequencySummary(a_object.frequencySettings()));
    describeSteps(a_report, a_object.frequencySettings());
}

} // namespace

QString frequencySummary(Simulation::IFrequencySettings* a_pSettings)
{
    if (a_pSettings == nullptr) {
        return orDash({});
    }
    if (const auto* pChirp = dynamic_cast<const Simulation::FrequencySettings_Chirp*>(a_pSettings)) {
        return QStringLiteral("chirp, %1 to %2 in %3 ms, offset %4")
            .arg(frequencyText(pChirp->getStartFrequency()), frequencyText(pChirp->getStopFrequency()),
                 QString::number(pChirp->getDuration()), offsetText(pChirp->getTimeslotOffset()));
    }
    if (const auto* pFast = dynamic_cast<const Simulation::FrequencySettings_FastHopper*>(a_pSettings)) {
        return QStringLiteral("fast hopper, %1 to %2, %3 channels, %4 hops/s, set %5, offset %6")
            .arg(frequencyText(pFast->getMinimumFrequency()), frequencyText(pFast->getMaximumFrequency()),
                 QString::number(pFast->getHoppCount()), QString::number(pFast->getHoppRate()),
                 QString::number(pFast->getHoppSet()), offsetText(pFast->getTimeslotOffset()));
    }
    if (const auto* pSlow = dynamic_cast<const Simulation::FrequencySettings_SlowHopper*>(a_pSettings)) {
        return QStringLiteral("slow hopper, %1 steps, %2")
            .arg(QString::number(pSlow->rows()), endBehaviourText(pSlow->getEndBehavior()));
    }
    return QStringLiteral("fixed, ") + frequencyText(a_pSettings->getCenterFrequency());
}

QString positionSummary(Simulation::IPositionSettings* a_pSettings)
{
    if (const auto* pPath = dynamic_cast<const Simulation::PositionSettingsPtp*>(a_pSettings)) {
        return QStringLiteral("moves over %1 points, %2")
            .arg(QString::number(pPath->getMovments().size()), endBehaviourText(pPath->getEndBehavior()));
    }
    return a_pSettings != nullptr ? positionText(a_pSettings->getPosition()) : orDash({});
}

QString positionSummary(const Simulation::SzenarioEmitter& a_emitter)
{
    if (const auto target = a_emitter.linkTargetEmitter()) {
        return QStringLiteral("follows ") + orDash(target->id());
    }
    return positionSummary(a_emitter.positionSettings());
}

void describeEmitter(Report& a_report, const Simulation::SzenarioEmitter& a_emitter, bool a_bDefault)
{
    const auto* pElint = dynamic_cast<const Simulation::ElintScenarioEmitter*>(&a_emitter);
    const std::shared_ptr<Simulation::ScenarioNetwork> network = a_emitter.network();

    a_report.heading((pElint != nullptr ? QStringLiteral("ELINT emitter ") : QStringLiteral("Emitter ")) +
                     orDash(a_emitter.id()));
    describeIdentity(a_report, a_emitter);
    if (a_bDefault) {
        a_report.field(QStringLiteral("Default"), QStringLiteral("the scenario's default emitter"));
    }
    a_report.field(QStringLiteral("Class"), a_emitter.getClass());
    if (network) {
        const bool bHead = network->headEmitter().get() == &a_emitter;
        a_report.field(
            QStringLiteral("Network"),
            network->id() + (bHead ? QStringLiteral(", its head") : QString()) +
                QStringLiteral("; the network's frequency and schedule hold, not the own ones below"));
    }
    describeTransmitter(a_report, a_emitter.getTranmitterSettings());
    describeFrequency(a_report, a_emitter);
    a_report.field(QStringLiteral("Position"), positionSummary(a_emitter));
    if (!a_emitter.isLinked()) {
        if (const auto* pPath =
                dynamic_cast<Simulation::PositionSettingsPtp*>(a_emitter.positionSettings())) {
            describePath(a_report, *pPath);
        }
    }
    if (const auto linked = a_emitter.linkedEmitter(); !linked.isEmpty()) {
        QList<std::shared_ptr<Simulation::SzenarioEmitter>> sorted(linked.cbegin(), linked.cend());
        std::sort(sorted.begin(), sorted.end(),
                  [](const auto& a_first, const auto& a_second) { return a_first->id() < a_second->id(); });
        a_report.field(QStringLiteral("Followed by"), idList(sorted));
    }
    if (pElint != nullptr) {
        a_report.field(QStringLiteral("EDW file"), pElint->getEDWFile());
    }
    describeSchedule(a_report, *a_emitter.ScenarioObject::emissionSettings());
}

void describeNetwork(Report& a_report, const Simulation::ScenarioNetwork& a_network)
{
    a_report.heading(QStringLiteral("Network ") + orDash(a_network.id()));
    describeIdentity(a_report, a_network);
    a_report.field(QStringLiteral("Type"), Simulation::stringForNetworkType(a_network.networkType()));
    a_report.field(QStringLiteral("Colour"), a_network.color().name());
    const auto head = a_network.headEmitter();
    a_report.field(QStringLiteral("Head"), head ? head->id() : QString());
    a_report.field(QStringLiteral("Members"), idList(a_network.emitterList()));
    describeFrequency(a_report, a_network);
    describeSchedule(a_report, *a_network.emissionSettings());
}

} // namespace SimulationTool
