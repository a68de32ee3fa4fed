#ifndef TESTS_RANDOMDOCUMENTS_H
#define TESTS_RANDOMDOCUMENTS_H

#include "simulationdata/commondataxml.h"
#include "simulationdata/deploymentdataxml.h"
#include "simulationdata/deploymentdevice.h"
#include "simulationdata/deploymentstation.h"
#include "simulationdata/elintscenarioemitter.h"
#include "simulationdata/frequencysettings_chirp.h"
#include "simulationdata/frequencysettings_fasthopper.h"
#include "simulationdata/frequencysettings_slowhopper.h"
#include "simulationdata/frequencysettingsfixed.h"
#include "simulationdata/positionsettingsfixed.h"
#include "simulationdata/positionsettingsptp.h"
#include "simulationdata/scenariodataxml.h"
#include "simulationdata/scenarionetwork.h"
#include "simulationdata/signalpackage.h"
#include "simulationdata/signalpackagefile.h"
#include "simulationdata/simulationservicecommunication.h"
#include "simulationdata/transmittersettings.h"

#include <QByteArrayList>
#include <QRandomGenerator>

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <limits>
#include <memory>
#include <utility>

/// Documents with random content, made only with the public operations of the classes:
/// texts with every kind of character, and numbers up to the ends of their types. Equal
/// seeds give equal documents, apart from new persistent ids. The ids of emitters,
/// devices and stations differ, because a writer reports an error when they do not.
class RandomDocuments
{
public:
    explicit RandomDocuments(std::uint32_t a_uiSeed)
        : m_random(a_uiSeed)
    {}

    /// A scenario, or the text of its objects alone.
    enum class Form { Document, Objects };
    QByteArray scenario(Form a_eForm);
    QByteArray movements();
    QByteArray deployment();
    QByteArray descriptor();
    Simulation::SimulationDeviceConfiguration deviceConfiguration();
    Simulation::SimulationDeviceState deviceState();
    /// Every command once.
    QByteArrayList commands();

private:
    using Emitters = QList<std::shared_ptr<Simulation::SzenarioEmitter>>;
    using Emission = boost::shared_ptr<Simulation::EmissionSettings::Emission>;
    using Group = boost::shared_ptr<Simulation::EmissionSettings::Group>;

    /// A number in [0, a_iEnd).
    int below(int a_iEnd) { return m_random.bounded(a_iEnd); }
    bool chance() { return below(2) == 0; }
    template<typename Value>
    Value oneOf(std::initializer_list<Value> a_values)
    {
        return std::data(a_values)[static_cast<std::size_t>(below(static_cast<int>(a_values.size())))];
    }

    QString text();
    QString id(int a_iIndex) { return QStringLiteral("%1 %2").arg(QString::number(a_iIndex), text()); }
    QByteArray bytes();
    double number();
    float single();
    std::uint32_t whole();
    std::int64_t time();
    Simulation::TPos place() { return {number(), number()}; }
    Simulation::EndBehaviourType end();

    Simulation::MovementPoint point();
    Simulation::IPositionSettings* movement();
    Simulation::IPositionSettings* position();
    Simulation::IFrequencySettings* slowHopper();
    Simulation::IFrequencySettings* frequency();
    Simulation::TransmitterSettings* transmitter();
    void addGroups(Simulation::EmissionSettings& a_settings, const QList<Emission>& a_emissions);
    void fillSchedule(Simulation::EmissionSettings& a_settings, const Emitters& a_emitters);
    void fillObject(Simulation::ScenarioObject& a_object);
    void fillEmitter(Simulation::SzenarioEmitter& a_emitter, const Emitters& a_emitters);
    std::shared_ptr<Simulation::ScenarioNetwork> network(const Emitters& a_emitters);
    void fillHeader(Simulation::ScenarioDataXml& a_scenario);
    std::shared_ptr<Simulation::DeploymentDevice>
    device(int a_iIndex, const QList<std::shared_ptr<Simulation::DeploymentStation>>& a_stations);

    QRandomGenerator m_random;
};

inline QString RandomDocuments::text()
{
    static const QStringList s_pieces{
        QStringLiteral("a"),         QStringLiteral("Möwe"),  QStringLiteral(" "),
        QStringLiteral("\t"),        QStringLiteral("\n"),    QStringLiteral("\r"),
        QStringLiteral("<b a='\">"), QStringLiteral("&amp;"), QStringLiteral("]]>"),
        QStringLiteral("-->"),       QStringLiteral("%1"),    QString(QChar(0)),
        QString(QChar(0x1B)),        QString(QChar(0x85)),    QString(QChar(0x2028)),
        QString(QChar(0xD800)),      QString(QChar(0xFFFE)),  QStringLiteral("𝄞"),
        QStringLiteral("#RRGGBB"),   QStringLiteral("true"),  QStringLiteral("<![CDATA[")};
    QString sText;
    for (int i = below(5); i > 0; --i) {
        sText += s_pieces.at(below(static_cast<int>(s_pieces.size())));
    }
    return sText;
}

inline QByteArray RandomDocuments::bytes()
{
    QByteArray bytes;
    for (int i = below(50); i > 0; --i) {
        bytes.append(static_cast<char>(below(256)));
    }
    return bytes;
}

inline double RandomDocuments::number()
{
    using Limits = std::numeric_limits<double>;
    return oneOf({0.0, -0.0, 1.0, -1.0, 433'925'100.0, 179.99, -180.5, 1e-7, 123456.5, 1e6, Limits::max(),
                  Limits::lowest(), Limits::min(), Limits::denorm_min(), Limits::infinity(),
                  Limits::quiet_NaN(), m_random.generateDouble() * 360.0 - 180.0});
}

inline float RandomDocuments::single()
{
    using Limits = std::numeric_limits<float>;
    return oneOf({0.0F, -0.0F, 0.25F, -1.5F, 360.0F, 12345.67F, 1e-7F, Limits::max(), Limits::lowest(),
                  Limits::min(), Limits::denorm_min(), Limits::infinity(), Limits::quiet_NaN()});
}

inline std::uint32_t RandomDocuments::whole()
{
    return oneOf({0U, 1U, 1000U, UINT32_MAX, m_random.generate()});
}

inline std::int64_t RandomDocuments::time()
{
    return oneOf({std::int64_t{0}, std::int64_t{1}, std::int64_t{-1}, INT64_MAX, INT64_MIN,
                  static_cast<std::int64_t>(m_random.generate64())});
}

inline Simulation::EndBehaviourType RandomDocuments::end()
{
    using enum Simulation::EndBehaviourType;
    return oneOf({Stop, Restart, Inactive});
}

inline Simulation::MovementPoint RandomDocuments::point()
{
    Simulation::MovementPoint point;
    point.position = place();
    point.transitionTime = whole();
    point.dwellTime = whole();
    point.major = chance();
    point.name = text();
    point.speed = number();
    return point;
}

inline Simulation::IPositionSettings* RandomDocuments::movement()
{
    auto settings = std::make_unique<Simulation::PositionSettingsPtp>(place(), number());
    settings->setEndBehavior(end());
    for (int i = below(6); i > 0; --i) {
        switch (below(6)) {
        case 0:
            settings->insertRowAfter(below(3), number(), chance() ? text() : QString());
            break;
        case 1:
            settings->insertArcAfter(below(2), below(5), below(720) - 360, number());
            break;
        case 2:
            settings->removeRow(below(3));
            break;
        case 3:
            settings->setPoint(below(3), point());
            break;
        case 4:
            settings->setMovementSpeed(below(3), single());
            break;
        default:
            settings->setMovements({point(), point(), point()});
            break;
        }
    }
    return settings.release();
}

inline Simulation::IPositionSettings* RandomDocuments::position()
{
    switch (below(4)) {
    case 0:
        return nullptr;
    case 1:
        return std::make_unique<Simulation::PositionSettingsFixed>(place()).release();
    default:
        return movement();
    }
}

inline Simulation::IFrequencySettings* RandomDocuments::slowHopper()
{
    auto settings = std::make_unique<Simulation::FrequencySettings_SlowHopper>();
    settings->setEndBehavior(end());
    QList<Simulation::FrequencyStep> steps;
    for (int i = below(4); i > 0; --i) {
        steps.append({number(), whole()});
    }
    settings->setFrequencySteps(steps);
    return settings.release();
}

inline Simulation::IFrequencySettings* RandomDocuments::frequency()
{
    switch (below(5)) {
    case 0: {
        auto settings = std::make_unique<Simulation::FrequencySettingsFixed>();
        settings->setCenterFrequency(number());
        return settings.release();
    }
    case 1: {
        auto settings = std::make_unique<Simulation::FrequencySettings_Chirp>();
        settings->setStartFrequency(number());
        settings->setStopFrequency(number());
        settings->setDuration(whole());
        settings->setTimeslotOffset(single());
        return settings.release();
    }
    case 2: {
        auto settings = std::make_unique<Simulation::FrequencySettings_FastHopper>();
        settings->setMinimumFrequency(number());
        settings->setMaximumFrequency(number());
        settings->setHoppCount(whole());
        settings->setHoppRate(whole());
        settings->setHoppSet(whole());
        settings->setTimeslotOffset(single());
        return settings.release();
    }
    case 3:
        return slowHopper();
    default:
        return nullptr;
    }
}

inline Simulation::TransmitterSettings* RandomDocuments::transmitter()
{
    if (below(4) == 0) {
        return nullptr;
    }
    auto settings = std::make_unique<Simulation::TransmitterSettings>();
    settings->setPower(single());
    settings->setAntennaType(text());
    settings->setAntennaGain(single());
    settings->setAntennaHeight(single());
    settings->setAntennaDirection(single());
    return settings.release();
}

/// Groups that contain each other, themselves, and emissions of no schedule.
inline void RandomDocuments::addGroups(Simulation::EmissionSettings& a_settings,
                                       const QList<Emission>& a_emissions)
{
    QList<Group> groups;
    for (int i = below(4); i > 0; --i) {
        groups.append(Simulation::EmissionSettings::createGroup());
    }
    for (const Group& group : groups) {
        group->id = whole();
        group->name = text();
        for (const Group& member : groups) {
            if (chance()) {
                group->groups.append(member);
            }
        }
        for (const Emission& member : a_emissions) {
            if (chance()) {
                group->emissions.append(member);
            }
        }
        group->emissions.append(Simulation::EmissionSettings::createEmission());
        a_settings.addGroup(group);
    }
    if (!groups.isEmpty()) {
        a_settings.addGroup(groups.constFirst()); // once more
    }
}

inline void RandomDocuments::fillSchedule(Simulation::EmissionSettings& a_settings,
                                          const Emitters& a_emitters)
{
    a_settings.setBroadcast(chance());
    a_settings.setDuration(time());
    QList<Emission> emissions;
    for (int i = below(5); i > 0; --i) {
        const Emission emission = Simulation::EmissionSettings::createEmission();
        emission->id = whole();
        emission->start = time();
        emission->duration = time();
        emission->emitter = a_emitters.value(below(static_cast<int>(a_emitters.size()) + 1));
        if (chance()) {
            emission->signalPackage = std::make_shared<Simulation::SignalPackage>();
            emission->signalPackage->setId(text());
        }
        a_settings.addEmission(emission);
        emissions.append(emission);
    }
    addGroups(a_settings, emissions);
}

inline void RandomDocuments::fillObject(Simulation::ScenarioObject& a_object)
{
    a_object.setName(text());
    a_object.setDescription(text());
    a_object.setActive(chance());
    a_object.setFrequencySettings(frequency());
}

inline void RandomDocuments::fillEmitter(Simulation::SzenarioEmitter& a_emitter, const Emitters& a_emitters)
{
    fillObject(a_emitter);
    a_emitter.setClass(text());
    a_emitter.setTransmitterSettings(transmitter());
    a_emitter.setPositionSettings(position());
    fillSchedule(*a_emitter.ScenarioObject::emissionSettings(), a_emitters);
    if (chance()) {
        const auto target = a_emitters.at(below(static_cast<int>(a_emitters.size())));
        a_emitter.setLinkTargetEmitter(target);
    }
}

inline std::shared_ptr<Simulation::ScenarioNetwork> RandomDocuments::network(const Emitters& a_emitters)
{
    auto network = std::make_shared<Simulation::ScenarioNetwork>(text()); // the id may occur again
    fillObject(*network);
    network->setColor(chance() ? QColor() : QColor::fromRgb(m_random.generate()));
    network->setNetworkType(chance() ? Simulation::NetworkType::Star : Simulation::NetworkType::Hierarchical);
    fillSchedule(*network->emissionSettings(), a_emitters);
    for (const auto& emitter : a_emitters) {
        if (chance()) {
            network->addEmitter(emitter);
            emitter->setScenarioNetwork(network);
        }
    }
    return network;
}

inline void RandomDocuments::fillHeader(Simulation::ScenarioDataXml& a_scenario)
{
    a_scenario.setName(text());
    a_scenario.setAuthor(text());
    a_scenario.setDescription(text());
    a_scenario.setPersistantId(text());
    a_scenario.setDuration(whole());
    Simulation::ScenarioNoiseSettings noise;
    noise.setNoiseDensity(number());
    noise.setNoiseDeviation(number());
    noise.setFrequencyDependentNoiseDensity(number());
    noise.setFrequencyDependentNoiseGranularity(number());
    noise.setFrequencyDependentNoiseVariability(number());
    a_scenario.setNoiseSettings(noise);
}

inline QByteArray RandomDocuments::scenario(Form a_eForm)
{
    Simulation::ScenarioDataXml scenario(nullptr); // frees its objects, although they hold each other
    Emitters emitters;
    for (int i = below(5); i > 0; --i) {
        if (chance()) {
            emitters.append(std::make_shared<Simulation::SzenarioEmitter>(id(i), text()));
        } else {
            auto emitter = std::make_shared<Simulation::ElintScenarioEmitter>(id(i), text());
            emitter->SetEDWFile(text());
            emitters.append(emitter);
        }
    }
    QSet<std::shared_ptr<Simulation::ScenarioObject>> objects(emitters.cbegin(), emitters.cend());
    // An emitter outside the document, which links and emissions may name.
    emitters.append(std::make_shared<Simulation::SzenarioEmitter>(id(0), QString()));
    for (qsizetype i = 0; i + 1 < emitters.size(); ++i) {
        fillEmitter(*emitters.at(i), emitters);
    }
    for (int i = below(3); i > 0; --i) {
        objects.insert(network(emitters));
    }
    scenario.setScenarioObjects(objects);
    scenario.setDefaultEmitter(emitters.constFirst());
    fillHeader(scenario);
    return a_eForm == Form::Document ? scenario.toXml()
                                     : Simulation::ScenarioDataXml::xmlForObjects(objects, nullptr).toUtf8();
}

inline QByteArray RandomDocuments::movements()
{
    QVector<Simulation::MovementPoint> points;
    for (int i = below(5); i > 0; --i) {
        points.append(point());
    }
    return Simulation::CommonDataXml::xmlForMovements(points).toUtf8();
}

inline std::shared_ptr<Simulation::DeploymentDevice>
RandomDocuments::device(int a_iIndex, const QList<std::shared_ptr<Simulation::DeploymentStation>>& a_stations)
{
    auto device = std::make_shared<Simulation::DeploymentDevice>(id(a_iIndex));
    device->setName(text());
    device->setIconId(text());
    device->setMachine(text());
    device->setDeviceType(text());
    device->setConfiguredStationId(text());
    device->receiverSettings() = {number(), number()};
    device->setPositionSettings(position());
    if (chance()) {
        const auto station = a_stations.at(below(static_cast<int>(a_stations.size())));
        device->setStation(station);
        station->addDevice(device);
    }
    return device;
}

inline QByteArray RandomDocuments::deployment()
{
    Simulation::DeploymentDataXml deployment; // frees its objects, although they hold each other
    QList<std::shared_ptr<Simulation::DeploymentStation>> stations;
    for (int i = below(4); i >= 0; --i) {
        stations.append(std::make_shared<Simulation::DeploymentStation>(id(i)));
        stations.constLast()->setIconId(text());
        stations.constLast()->setPositionSettings(position());
    }
    QSet<std::shared_ptr<Simulation::DeploymentDevice>> devices;
    for (int i = below(5); i > 0; --i) {
        devices.insert(device(i, stations));
    }
    deployment.setStations({stations.cbegin() + 1, stations.cend()}); // devices may name another one
    deployment.setDevices(devices);
    deployment.setName(text());
    deployment.setDescription(text());
    deployment.setAuthor(text());
    deployment.setPersistantId(text());
    return deployment.toXml();
}

inline QByteArray RandomDocuments::descriptor()
{
    Simulation::SignalPackage package;
    package.setId(text());
    package.setUpdateIds({text(), text(), text()});
    package.setName(text());
    package.setAuthor(text());
    package.setTimestamp(whole());
    package.setSignalBandwidth(single());
    package.setAnalogModulation(static_cast<Simulation::AnalogModulations>(below(7))); // one is unknown
    package.setDigitalModulation(text());
    package.setDuration(whole());
    return Simulation::SignalPackageFile::writeSignalPackageDescriptor(package);
}

inline Simulation::SimulationDeviceConfiguration RandomDocuments::deviceConfiguration()
{
    Simulation::SimulationDeviceConfiguration device;
    device.setId(text());
    device.setName(text());
    device.setDeviceType(text());
    device.setStationId(text());
    device.setStationName(text());
    device.setMachine(text());
    device.setMachineId(text());
    device.setPositionLongitude(number());
    device.setPositionLatitude(number());
    return device;
}

inline Simulation::SimulationDeviceState RandomDocuments::deviceState()
{
    Simulation::SimulationDeviceState state;
    state.setScenarioDataState(static_cast<Simulation::ScenarioDataState>(whole()));
    state.setMessage(chance() ? text() : QStringLiteral("𝄞").repeated(501) + text());
    return state;
}

inline QByteArrayList RandomDocuments::commands()
{
    using Communication = Simulation::SimulationServiceCommunication;
    const QList<Communication::CommandSender> senders{
        [&](Communication& a_to) { a_to.sendRegisterSimulationDevice(text(), deviceConfiguration()); },
        [&](Communication& a_to) { a_to.sendSimulationDeviceStateUpdate(text(), deviceState()); },
        [&](Communication& a_to) { a_to.sendUnregisterSimulationDevice(text()); },
        [&](Communication& a_to) { a_to.sendAddJxDevice(text(), bytes()); },
        [&](Communication& a_to) { a_to.sendRemoveJxDevice(text()); },
        [&](Communication& a_to) { a_to.sendAcceptSimulationDevice(text(), text()); },
        [&](Communication& a_to) { a_to.sendLoadScenario(bytes()); },
        [&](Communication& a_to) { a_to.sendUnloadScenario(); },
        [&](Communication& a_to) { a_to.sendLoadDeployment(bytes()); },
        [&](Communication& a_to) { a_to.sendStartScenario(m_random.generate64(), whole()); },
        [&](Communication& a_to) { a_to.sendPauseScenario(whole()); },
        [&](Communication& a_to) { a_to.sendStopScenario(); },
        [&](Communication& a_to) { a_to.sendTestModeOn(chance()); },
        [&](Communication& a_to) {
            a_to.sendResponseSimulationDevices(
                QVector<Simulation::SimulationDeviceConfiguration>(below(3), deviceConfiguration()));
        },
        [&](Communication& a_to) { a_to.sendCommandAcquireServer(); },
        [&](Communication& a_to) { a_to.sendCommandReleaseServer(); },
        [&](Communication& a_to) { a_to.sendCommandRequestSimulationDevices(); }};
    QByteArrayList commands;
    for (const Communication::CommandSender& sender : senders) {
        commands.append(Communication::encode([&](Communication& a_to) {
            a_to.setCompression(chance());
            sender(a_to);
        }));
    }
    return commands;
}

#endif
