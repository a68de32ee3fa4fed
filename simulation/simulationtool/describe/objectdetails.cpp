#include "objectdetails.h"

#include "console/jsonreport.h"
#include "console/report.h"
#include "console/valuetexts.h"

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

constexpr int s_iCoordinateDecimals = 6; ///< for degrees; resolves 0.1 m
constexpr qsizetype s_iMaxIdWidth = 36;  ///< wide enough for a package id

QString offsetText(float a_fOffset)
{
    return QString::number(static_cast<double>(a_fOffset));
}

ReportValue positionValue(const Simulation::TPos& a_position)
{
    return {QStringLiteral("longitude %1, latitude %2")
                .arg(plainNumber(a_position.longitude), plainNumber(a_position.latitude)),
            QJsonObject{{QStringLiteral("kind"), QStringLiteral("fixed")},
                        {QStringLiteral("longitude"), jsonNumber(a_position.longitude)},
                        {QStringLiteral("latitude"), jsonNumber(a_position.latitude)}}};
}

/// The ids of emitters, as a list in one cell or line.
template<typename Emitters>
ReportValue idList(const Emitters& a_emitters)
{
    QStringList texts;
    QJsonArray ids;
    for (const std::shared_ptr<Simulation::SzenarioEmitter>& emitter : a_emitters) {
        texts.append(orDash(emitter->id()));
        ids.append(emitter->id());
    }
    return {texts.join(QStringLiteral(", ")), ids};
}

template<typename Records>
ReportValue numberList(const Records& a_records)
{
    QStringList texts;
    QJsonArray numbers;
    for (const auto& record : a_records) {
        texts.append(QString::number(record->id));
        numbers.append(jsonCount(record->id));
    }
    return {texts.join(QStringLiteral(", ")), numbers};
}

ReportValue chirpValue(const Simulation::FrequencySettings_Chirp& a_chirp)
{
    return {QStringLiteral("chirp, %1 to %2 in %3 ms, offset %4")
                .arg(frequencyText(a_chirp.getStartFrequency()), frequencyText(a_chirp.getStopFrequency()),
                     QString::number(a_chirp.getDuration()), offsetText(a_chirp.getTimeslotOffset())),
            QJsonObject{{QStringLiteral("kind"), QStringLiteral("chirp")},
                        {QStringLiteral("start_hz"), jsonNumber(a_chirp.getStartFrequency())},
                        {QStringLiteral("stop_hz"), jsonNumber(a_chirp.getStopFrequency())},
                        {QStringLiteral("duration_ms"), jsonCount(a_chirp.getDuration())},
                        {QStringLiteral("timeslot_offset"), jsonNumber(a_chirp.getTimeslotOffset())}}};
}

ReportValue fastHopperValue(const Simulation::FrequencySettings_FastHopper& a_hopper)
{
    return {QStringLiteral("fast hopper, %1 to %2, %3 channels, %4 hops/s, set %5, offset %6")
                .arg(frequencyText(a_hopper.getMinimumFrequency()),
                     frequencyText(a_hopper.getMaximumFrequency()), QString::number(a_hopper.getHoppCount()),
                     QString::number(a_hopper.getHoppRate()), QString::number(a_hopper.getHoppSet()),
                     offsetText(a_hopper.getTimeslotOffset())),
            QJsonObject{{QStringLiteral("kind"), QStringLiteral("fast hopper")},
                        {QStringLiteral("minimum_hz"), jsonNumber(a_hopper.getMinimumFrequency())},
                        {QStringLiteral("maximum_hz"), jsonNumber(a_hopper.getMaximumFrequency())},
                        {QStringLiteral("channels"), jsonCount(a_hopper.getHoppCount())},
                        {QStringLiteral("hops_per_second"), jsonCount(a_hopper.getHoppRate())},
                        {QStringLiteral("set"), jsonCount(a_hopper.getHoppSet())},
                        {QStringLiteral("timeslot_offset"), jsonNumber(a_hopper.getTimeslotOffset())}}};
}

void describeSteps(Report& a_report, Simulation::IFrequencySettings* a_pSettings)
{
    const auto* pHopper = dynamic_cast<const Simulation::FrequencySettings_SlowHopper*>(a_pSettings);
    if (pHopper == nullptr) {
        return;
    }
    QList<ReportRow> rows;
    for (const Simulation::FrequencyStep& step : pHopper->getFrequencySteps()) {
        rows.append({wholeValue(rows.size() + 1), frequencyValue(step.frequency), countValue(step.duration)});
    }
    a_report.titledTable("frequency_steps", QStringLiteral("Frequency steps"),
                         {{QStringLiteral("Step"), true},
                          {QStringLiteral("Frequency"), true, 0, "frequency_hz"},
                          {QStringLiteral("Duration (ms)"), true, 0, "duration_ms"}},
                         rows);
}

void describePath(Report& a_report, const Simulation::PositionSettingsPtp& a_path)
{
    QList<ReportRow> rows;
    std::uint64_t uiArrival = 0;
    for (const Simulation::MovementPoint& point : a_path.getMovments()) {
        rows.append(
            {wholeValue(rows.size() + 1), numberValue(point.position.longitude, s_iCoordinateDecimals),
             numberValue(point.position.latitude, s_iCoordinateDecimals), countValue(uiArrival),
             countValue(point.dwellTime), numberValue(point.speed), flagValue(point.major), point.name});
        uiArrival += std::uint64_t{point.dwellTime} + point.transitionTime;
    }
    a_report.titledTable("way_points", QStringLiteral("Way points"),
                         {{QStringLiteral("Point"), true},
                          {QStringLiteral("Longitude"), true, 0, "longitude"},
                          {QStringLiteral("Latitude"), true, 0, "latitude"},
                          {QStringLiteral("Arrival (ms)"), true, 0, "arrival_ms"},
                          {QStringLiteral("Dwell (ms)"), true, 0, "dwell_ms"},
                          {QStringLiteral("Speed (km/h)"), true, 0, "speed_kmh"},
                          {QStringLiteral("Major"), false, 0, "major"},
                          {QStringLiteral("Name"), false, 0, "name"}},
                         rows);
}

void describeSchedule(Report& a_report, const Simulation::EmissionSettings& a_settings)
{
    QList<ReportRow> rows;
    for (const auto& emission : a_settings.emissions()) {
        rows.append({countValue(emission->id), wholeValue(emission->start), durationValue(emission->duration),
                     emission->signalPackage ? emission->signalPackage->id() : QString(),
                     emission->emitter ? emission->emitter->id() : QString()});
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
    a_report.value("broadcast", a_settings.isBroadcast());
    a_report.value("period_ms", durationValue(a_settings.duration()).json);
    a_report.field(nullptr, QStringLiteral("Schedule"), sSchedule);
    a_report.titledTable("emissions", QStringLiteral("Emissions"),
                         {{QStringLiteral("No."), true, 0, "id"},
                          {QStringLiteral("Start (ms)"), true, 0, "start_ms"},
                          {QStringLiteral("Duration"), true, 0, "duration_ms"},
                          {QStringLiteral("Package"), false, s_iMaxIdWidth, "package"},
                          {QStringLiteral("Emitter"), false, 0, "emitter"}},
                         rows);
    rows.clear();
    for (const auto& group : a_settings.groups()) {
        rows.append(
            {countValue(group->id), group->name, numberList(group->groups), numberList(group->emissions)});
    }
    a_report.titledTable("emission_groups", QStringLiteral("Emission groups"),
                         {{QStringLiteral("Group"), true, 0, "id"},
                          {QStringLiteral("Name"), false, s_iMaxIdWidth, "name"},
                          {QStringLiteral("Groups"), false, 0, "groups"},
                          {QStringLiteral("Emissions"), false, 0, "emissions"}},
                         rows);
}

void describeTransmitter(Report& a_report, const Simulation::TransmitterSettings* a_pSettings)
{
    if (a_pSettings == nullptr) {
        return;
    }
    const auto number = [](float a_fValue) { return QString::number(static_cast<double>(a_fValue)); };
    a_report.field("power", QStringLiteral("Transmitter"),
                   {QStringLiteral("power %1").arg(number(a_pSettings->getPower())),
                    jsonNumber(a_pSettings->getPower())});
    const QJsonObject antenna{
        {QStringLiteral("gain"), jsonNumber(a_pSettings->getAntennaGain())},
        {QStringLiteral("height_over_ground"), jsonNumber(a_pSettings->getAntennaHeight())},
        {QStringLiteral("direction_degrees"), jsonNumber(a_pSettings->getAntennaDirection())},
        {QStringLiteral("type"), jsonText(a_pSettings->getAntennaType())}};
    // The type is last, because it is free text: it may also contain commas.
    a_report.field(
        "antenna", QStringLiteral("Antenna"),
        {QStringLiteral("gain %1, height over ground %2, direction %3 degrees, type ")
                 .arg(number(a_pSettings->getAntennaGain()), number(a_pSettings->getAntennaHeight()),
                      number(a_pSettings->getAntennaDirection())) +
             orDash(a_pSettings->getAntennaType()),
         antenna});
}

/// Reports the values that emitters and networks share: id (for programs only), name,
/// description and activity.
void describeIdentity(Report& a_report, const Simulation::ScenarioObject& a_object)
{
    a_report.value("id", a_object.id());
    a_report.field("name", QStringLiteral("Name"), a_object.name());
    a_report.field("description", QStringLiteral("Description"), a_object.description());
    a_report.field("active", QStringLiteral("Active"), flagValue(a_object.isActive()));
}

void describeFrequency(Report& a_report, const Simulation::ScenarioObject& a_object)
{
    a_report.field("frequency", QStringLiteral("Frequency"), frequencySummary(a_object.frequencySettings()));
    describeSteps(a_report, a_object.frequencySettings());
}

} // namespace

ReportValue frequencySummary(Simulation::IFrequencySettings* a_pSettings)
{
    if (a_pSettings == nullptr) {
        return QString();
    }
    if (const auto* pChirp = dynamic_cast<const Simulation::FrequencySettings_Chirp*>(a_pSettings)) {
        return chirpValue(*pChirp);
    }
    if (const auto* pFast = dynamic_cast<const Simulation::FrequencySettings_FastHopper*>(a_pSettings)) {
        return fastHopperValue(*pFast);
    }
    if (const auto* pSlow = dynamic_cast<const Simulation::FrequencySettings_SlowHopper*>(a_pSettings)) {
        return {QStringLiteral("slow hopper, %1 steps, %2")
                    .arg(QString::number(pSlow->rows()), endBehaviourText(pSlow->getEndBehavior())),
                QJsonObject{{QStringLiteral("kind"), QStringLiteral("slow hopper")},
                            {QStringLiteral("at_end"), endBehaviourName(pSlow->getEndBehavior())}}};
    }
    const double dFrequency = a_pSettings->getCenterFrequency();
    return {QStringLiteral("fixed, ") + frequencyText(dFrequency),
            QJsonObject{{QStringLiteral("kind"), QStringLiteral("fixed")},
                        {QStringLiteral("frequency_hz"), jsonNumber(dFrequency)}}};
}

ReportValue positionSummary(Simulation::IPositionSettings* a_pSettings)
{
    if (const auto* pPath = dynamic_cast<const Simulation::PositionSettingsPtp*>(a_pSettings)) {
        return {
            QStringLiteral("moves over %1 points, %2")
                .arg(QString::number(pPath->getMovments().size()), endBehaviourText(pPath->getEndBehavior())),
            QJsonObject{{QStringLiteral("kind"), QStringLiteral("movement")},
                        {QStringLiteral("point_count"), pPath->getMovments().size()},
                        {QStringLiteral("at_end"), endBehaviourName(pPath->getEndBehavior())}}};
    }
    return a_pSettings != nullptr ? positionValue(a_pSettings->getPosition()) : ReportValue(QString());
}

ReportValue positionSummary(const Simulation::SzenarioEmitter& a_emitter)
{
    if (const auto target = a_emitter.linkTargetEmitter()) {
        return {QStringLiteral("follows ") + orDash(target->id()),
                QJsonObject{{QStringLiteral("kind"), QStringLiteral("follows")},
                            {QStringLiteral("emitter"), target->id()}}};
    }
    return positionSummary(a_emitter.positionSettings());
}

void describeEmitter(Report& a_report, const Simulation::SzenarioEmitter& a_emitter, bool a_bDefault)
{
    const auto* pElint = dynamic_cast<const Simulation::ElintScenarioEmitter*>(&a_emitter);
    const std::shared_ptr<Simulation::ScenarioNetwork> network = a_emitter.network();

    a_report.itemHeading((pElint != nullptr ? QStringLiteral("ELINT emitter ") : QStringLiteral("Emitter ")) +
                             orDash(a_emitter.id()),
                         "emitters");
    a_report.value("elint", pElint != nullptr);
    a_report.value("default", a_bDefault);
    describeIdentity(a_report, a_emitter);
    if (a_bDefault) {
        a_report.field(nullptr, QStringLiteral("Default"), QStringLiteral("the scenario's default emitter"));
    }
    a_report.field("class", QStringLiteral("Class"), a_emitter.getClass());
    if (network) {
        const bool bHead = network->headEmitter().get() == &a_emitter;
        a_report.value("network_head", bHead);
        a_report.field(
            "network", QStringLiteral("Network"),
            {network->id() + (bHead ? QStringLiteral(", its head") : QString()) +
                 QStringLiteral("; the network's frequency and schedule hold, not the own ones below"),
             network->id()});
    }
    describeTransmitter(a_report, a_emitter.getTranmitterSettings());
    describeFrequency(a_report, a_emitter);
    a_report.field("position", QStringLiteral("Position"), positionSummary(a_emitter));
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
        a_report.field("followed_by", QStringLiteral("Followed by"), idList(sorted));
    }
    if (pElint != nullptr) {
        a_report.field("edw_file", QStringLiteral("EDW file"), pElint->getEDWFile());
    }
    describeSchedule(a_report, *a_emitter.ScenarioObject::emissionSettings());
}

void describeNetwork(Report& a_report, const Simulation::ScenarioNetwork& a_network)
{
    a_report.itemHeading(QStringLiteral("Network ") + orDash(a_network.id()), "networks");
    describeIdentity(a_report, a_network);
    a_report.field("type", QStringLiteral("Type"), Simulation::stringForNetworkType(a_network.networkType()));
    a_report.field("color", QStringLiteral("Colour"), a_network.color().name());
    const auto head = a_network.headEmitter();
    a_report.field("head", QStringLiteral("Head"), head ? head->id() : QString());
    a_report.field("members", QStringLiteral("Members"), idList(a_network.emitterList()));
    describeFrequency(a_report, a_network);
    describeSchedule(a_report, *a_network.emissionSettings());
}

} // namespace SimulationTool
