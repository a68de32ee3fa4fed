#include "crt/crt.h"
#include "geodesy/geodesy.h"
#include "kpbase/coord.h"
#include "kpbase/errorhandler.h"
#include "kpbase/velaos.h"
#include "simulationdata/commondataxml.h"
#include "simulationdata/duration.h"
#include "simulationdata/elintscenarioemitter.h"
#include "simulationdata/emissionsettings.h"
#include "simulationdata/enumerations.h"
#include "simulationdata/frequency.h"
#include "simulationdata/frequencysettings_chirp.h"
#include "simulationdata/frequencysettings_fasthopper.h"
#include "simulationdata/frequencysettings_slowhopper.h"
#include "simulationdata/frequencysettingsfixed.h"
#include "simulationdata/hractivity.h"
#include "simulationdata/ifrequencysettings.h"
#include "simulationdata/ipositionsettings.h"
#include "simulationdata/isignalpackageprovider.h"
#include "simulationdata/movementpoint.h"
#include "simulationdata/position.h"
#include "simulationdata/positionsettingsfixed.h"
#include "simulationdata/positionsettingsptp.h"
#include "simulationdata/scenariodataxml.h"
#include "simulationdata/scenarionetwork.h"
#include "simulationdata/scenarionoisesettings.h"
#include "simulationdata/scenarioobject.h"
#include "simulationdata/signalpackage.h"
#include "simulationdata/signalpackagecontent.h"
#include "simulationdata/signalpackagefile.h"
#include "simulationdata/simulationlimits.h"
#include "simulationdata/szenarioemitter.h"
#include "simulationdata/tpos.h"
#include "simulationdata/transmittersettings.h"
#include "simulationdata/unresolvedsignalpackageprovider.h"
#include "simulationdata/xmlelement.h"
#include "velaappstartup/cfgcenter.h"

#include <memory>
#include <type_traits>

#include <QBuffer>
#include <QTemporaryDir>
#include <QTest>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

using namespace Simulation;

// Scenario objects and documents are copied by their own operations only.
static_assert(!std::is_copy_constructible_v<SzenarioEmitter> && !std::is_copy_assignable_v<SzenarioEmitter>);
static_assert(!std::is_copy_constructible_v<ScenarioNetwork> &&
              !std::is_copy_constructible_v<ScenarioDataXml>);
static_assert(std::is_base_of_v<SzenarioEmitter, ElintScenarioEmitter>);

/// Calls every operation of the values, settings and documents once. If an operation is
/// renamed or not exported, the build breaks. Other tests check the behaviour. The
/// operations of stores, cache, data files and protocol are called by the tests of
/// those classes.
class TestPublicInterface : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void platform();
    void units();
    void foundations();
    void frequencySettings();
    void hoppers();
    void positionSettings();
    void movements();
    void emissionSettings();
    void emitters();
    void networks();
    void valueSettings();
    void signalPackages();
    void xmlElements();
    void commonXml();
    void scenarios();
};

void TestPublicInterface::platform()
{
    Crt::srand(1);
    QCOMPARE(Crt::rand(), 41);
    const Geodesy::Point away = Geodesy::destination({8.0, 48.0}, 90.0, 10.0);
    QVERIFY(qAbs(Geodesy::distance({8.0, 48.0}, away) - 10.0) < 1e-6);
    QVERIFY(qAbs(Geodesy::azimuth({8.0, 48.0}, away) - 90.0) < 1e-6);
    QCOMPARE(Geodesy::decimalDegrees(1.0, 30.0, 36.0), 1.51);
    Coord coord(11.58, 48.14);
    QVERIFY(coord.SetString(coord.GetString(Coord::s_iFormatMgrs), Coord::s_iFormatMgrs));
    QVERIFY(qAbs(coord.first() - 11.58) < 1e-5 && qAbs(coord.second() - 48.14) < 1e-5);
    ErrorHandler& handler = ErrorHandler::Instance();
    const unsigned int uiMask = handler.traceMask();
    handler.setTraceMask(ErrorHandler::TraceProgress);
    QVERIFY(handler.traces(ErrorHandler::TraceProgress) && !handler.traces(ErrorHandler::TraceError));
    handler.setTraceMask(uiMask);
    QTest::ignoreMessage(QtWarningMsg, "message (simulation/simulationdata/x:7)");
    _Q_Trace(QStringLiteral("message"), "simulation/simulationdata/x", 7);
    QCOMPARE(QLatin1String(lcSimulationTrace().categoryName()), QLatin1String("simulation.trace"));
    VelaOS::Get().setClock([] { return std::uint64_t{42}; });
    QCOMPARE(VelaOS::Get().timestamp(), std::uint64_t{42});
    VelaOS::Get().setClock({});
    QVERIFY(!CfgCenter::GetMachineId().isEmpty());
}

void TestPublicInterface::units()
{
    QCOMPARE(Units::Duration::toString(3723000), QStringLiteral("01:02:03s"));
    QVERIFY(Units::Frequency::equal(1.0, 1.0) && !Units::Frequency::s_sRegex.isEmpty());
    QVERIFY(Units::Frequency::validString(Units::Frequency::toString(433.92e6, true)));
    QCOMPARE(Units::Frequency::fromString(QStringLiteral("433.92M"), 0.0), 433.92e6);
    for (const Units::Position::Format eFormat : Units::Position::formats()) {
        const QLocale locale = QLocale::c();
        const QString sText = Units::Position::toString(11.58, 48.14, eFormat, locale);
        QVERIFY(Units::Position::validString(sText, eFormat, locale));
        const Units::Position_t position = Units::Position::fromString(sText, eFormat, locale);
        QVERIFY(qAbs(position.latitude - 48.14) < 0.1);
        QVERIFY(!Units::Position::toString(position, eFormat, locale).isEmpty());
        QVERIFY(!Units::Position::formatMask(eFormat, locale).isEmpty() &&
                !Units::Position::formatName(eFormat).isEmpty());
        QVERIFY(!Units::Position::regex(eFormat, locale).isEmpty());
    }
    QVERIFY(Units::Position::equal({1.0, 2.0}, {1.0, 2.0}));
}

void TestPublicInterface::foundations()
{
    const TPos there = position(TPos{8.0, 48.0}, 45.0, 5.0);
    QVERIFY(qAbs(distance(TPos{8.0, 48.0}, there) - 5.0) < 1e-6 &&
            qAbs(azimuth(TPos{8.0, 48.0}, there) - 45.0) < 1e-6);
    QVERIFY(compareFrequency(1.0F, 1.0F));
    QVERIFY(!stringForPositionSettingsType(PositionSettingsType::Fixed).isEmpty());
    QVERIFY(!stringForFrequencySettingsType(FrequencySettingsType::Chirp).isEmpty());
    QCOMPARE(stringForNetworkType(NetworkType::Star), QStringLiteral("Star"));
    QCOMPARE(analogModulationFromString(analogModulationToString(AnalogModulations::USB)),
             AnalogModulations::USB);
    for (int i = 0; i < Limits::LimitCount; ++i) {
        const auto eLimit = static_cast<Limits::Limit>(i);
        Limits::setValue(eLimit, 7);
        QCOMPARE(Limits::value(eLimit), std::uint64_t{7});
        Limits::setValue(eLimit, 0);
        QCOMPARE(Limits::value(eLimit), Limits::defaultValue(eLimit));
        QVERIFY(*Limits::name(eLimit) != 0 && *Limits::reason(eLimit) != 0);
    }
}

void TestPublicInterface::frequencySettings()
{
    FrequencySettingsFixed fixed;
    FrequencySettings_Chirp chirp;
    chirp.setTimeslotOffset(0.25F);
    chirp.setStartFrequency(1e6);
    chirp.setStopFrequency(3e6);
    chirp.setDuration(100);
    QVERIFY(chirp.getTimeslotOffset() == 0.25F && chirp.getDuration() == 100);
    QVERIFY(chirp.getStartFrequency() == 1e6 && chirp.getStopFrequency() == 3e6);
    FrequencySettings_FastHopper fast;
    FrequencySettings_SlowHopper slow;
    const QList<IFrequencySettings*> all{&fixed, &slow, &chirp, &fast};
    for (int i = 0; i < all.size(); ++i) {
        IFrequencySettings* pSettings = all.at(i);
        QCOMPARE(static_cast<int>(pSettings->getType()), i);
        pSettings->setCenterFrequency(50e6);
        QCOMPARE(pSettings->getCenterFrequency(), 50e6);
        QVERIFY(pSettings->getMinimumFrequency() <= pSettings->getMaximumFrequency());
        QVERIFY(pSettings->getFrequencyAt(10) >= 1e6 && pSettings->isActiveAt(10));
        QCOMPARE(pSettings->activeUntil(), 0xFFFFFFFFU);
        QCOMPARE(pSettings->isTimeDependend(), i == 1 || i == 2);
        const QList<HRActivity> activities = pSettings->calculateHRActivities(0, 100, 1e5);
        QVERIFY(!activities.isEmpty() && activities.constFirst().start == 0 &&
                activities.constFirst().frequency > 0.0);
        const std::unique_ptr<IFrequencySettings> clone(pSettings->clone());
        QVERIFY(pSettings->equal(clone.get()) && !pSettings->equal(all.at((i + 1) % 4)));
    }
}

void TestPublicInterface::hoppers()
{
    FrequencySettings_FastHopper fast;
    fast.setTimeslotOffset(0.5F);
    fast.setMinimumFrequency(1e6);
    fast.setMaximumFrequency(2e6);
    fast.setHoppCount(5);
    fast.setHoppRate(10);
    fast.setHoppSet(3);
    QVERIFY(fast.getTimeslotOffset() == 0.5F && fast.getHoppCount() == 5 && fast.getHoppRate() == 10 &&
            fast.getHoppSet() == 3);
    FrequencySettings_SlowHopper slow;
    slow.setEndBehavior(EndBehaviourType::Stop);
    QCOMPARE(slow.getEndBehavior(), EndBehaviourType::Stop);
    slow.setFrequencySteps({{1.0, 10}, {2.0, 20}});
    slow.setFrequency(1, 3.0);
    slow.setDuration(1, 30);
    slow.setTime(1, 15);
    slow.insertStep(0);
    slow.removeStep(1);
    QVERIFY(slow.rows() == 2 && slow.getFrequencySteps().size() == 2);
    QVERIFY(slow.getFrequency(1) == 3.0 && slow.getDuration(1) == 30 && slow.getTime(1) == 15);
}

void TestPublicInterface::positionSettings()
{
    PositionSettingsFixed fixed(TPos{8.0, 48.0});
    PositionSettingsPtp moving(TPos{8.0, 48.0}, 0.01);
    const QList<IPositionSettings*> all{&fixed, &moving};
    for (int i = 0; i < all.size(); ++i) {
        IPositionSettings* pSettings = all.at(i);
        QCOMPARE(static_cast<int>(pSettings->getType()), i);
        pSettings->setPosition(TPos{9.0, 49.0});
        QCOMPARE(pSettings->getPosition().latitude, 49.0);
        QCOMPARE(pSettings->getPositionAt(0).longitude, 9.0);
        QVERIFY(pSettings->headingAt(1) >= 0.0 && qIsFinite(pSettings->speedAt(1)) &&
                pSettings->isActiveAt(1));
        QCOMPARE(pSettings->isTimeDependend(), i == 1);
        QCOMPARE(pSettings->activeUntil(), 0xFFFFFFFFU);
        const std::unique_ptr<IPositionSettings> clone(pSettings->clone());
        QVERIFY(pSettings->equal(clone.get()) && !pSettings->equal(all.at(1 - i)));
    }
}

void TestPublicInterface::movements()
{
    PositionSettingsPtp moving(TPos{8.0, 48.0}, 0.01);
    moving.setEndBehavior(EndBehaviourType::Inactive);
    QCOMPARE(moving.getEndBehavior(), EndBehaviourType::Inactive);
    moving.insertRowAfter(0, 0.001, QStringLiteral("way"));
    moving.insertRowsAfter(1, {MovementPoint{}});
    moving.insertArcAfter(1, 3, 90, 100.0);
    QVERIFY(moving.canRemoveRow(2) && !moving.canRemoveRow(0));
    const qsizetype iPoints = moving.getMovments().size();
    moving.removeRow(2);
    QCOMPARE(moving.getMovments().size(), iPoints - 1);
    moving.setMovements(moving.getMovments().first(2));
    moving.setPoint(0, moving.getPoint(0));
    moving.setMovementSpeed(1, 36.0F);
    QVERIFY(qAbs(moving.getMovementSpeed(1) - 36.0F) < 0.1F);
    moving.setArivalTime(1, 60000);
    moving.setDepartureTime(0, 10000);
    unsigned int uiLeast = 1;
    unsigned int uiMost = 0;
    QVERIFY(moving.getDepartureTime(0, &uiLeast, &uiMost) == 10000 && uiLeast == 0);
    QVERIFY(moving.getArivalTime(1, &uiLeast, &uiMost) >= 60000 && uiLeast == 10000 && uiMost == 0xFFFFFFFF);
    double dWidth = 0.0;
    double dHeight = 0.0;
    moving.area(dWidth, dHeight);
    QVERIFY(dWidth > 0.0 && dHeight > 0.0 && moving.length() > dHeight);
    QVERIFY(MovementPoint() == MovementPoint());
}

void TestPublicInterface::emissionSettings()
{
    EmissionSettings settings;
    const auto emission = EmissionSettings::createEmission();
    const auto group = EmissionSettings::createGroup();
    emission->duration = 10;
    settings.addEmission(emission);
    settings.addEmissions({EmissionSettings::createEmission()});
    settings.updateEmission(emission);
    settings.replaceEmitter(nullptr, nullptr);
    settings.replaceSignalPackage(nullptr, nullptr);
    settings.addGroup(group);
    settings.removeGroup(group);
    settings.clearEmptyGroups();
    settings.setBroadcast(true);
    settings.setDuration(EmissionSettings::s_iUnlimited);
    QVERIFY(settings.isBroadcast() && settings.duration() > 0 && settings.groups().isEmpty());
    settings.makeContinousActive(nullptr, std::make_shared<SignalPackage>());
    QVERIFY(settings.emissionAt(1) && settings.isActiveAt(1) && !settings.activeEmitterAt(1) &&
            settings.signalPackageAt(1));
    QVERIFY(settings.timeActiveAt(5) == 5 && settings.activeUntil() == 0xFFFFFFFF);
    QCOMPARE(settings.calculateHRActivities(nullptr, 0, 10).size(), 1);
    settings.removeEmission(settings.emissions().constFirst());
    settings.removeEmissions(nullptr);
    settings.clearAll();
    QVERIFY(EmissionSettings(settings).emissions().isEmpty());
}

void TestPublicInterface::emitters()
{
    const auto emitter = std::make_shared<SzenarioEmitter>(QStringLiteral("e"), QStringLiteral("E"));
    const auto other = std::make_shared<SzenarioEmitter>(QStringLiteral("o"), QString(), emitter);
    ScenarioObject& object = *emitter;
    object.setId(QStringLiteral("id"));
    object.setName(QStringLiteral("name"));
    object.setDescription(QStringLiteral("text"));
    object.setActive(true);
    object.setVisibleOnMap(true);
    object.setVisibleOnTimeline(true);
    object.setFrequencySettings(new FrequencySettingsFixed);
    QVERIFY(object.isActive() && object.isVisibleOnMap() && object.isVisibleOnTimeline());
    QCOMPARE(object.id() + object.name() + object.description(),
             emitter->getId() + emitter->getName() + emitter->getDescription());
    QCOMPARE(object.type(), ScenarioObject::ScenarioObjectType::Emitter);
    emitter->setClass(QStringLiteral("class"));
    emitter->setTransmitterSettings(new TransmitterSettings);
    emitter->setPositionSettings(new PositionSettingsFixed(TPos{}));
    QVERIFY(emitter->getTranmitterSettings() &&
            emitter->getPositionSettings() == emitter->positionSettings());
    QCOMPARE(emitter->getFrequencySettings(), object.frequencySettings());
    emitter->setScenarioNetwork(nullptr);
    emitter->setLinkTargetEmitter(other);
    emitter->addLinkedEmitter(other);
    QVERIFY(!emitter->network() && !emitter->hasNetwork() && emitter->isLinked() &&
            emitter->linkTargetEmitter() == other);
    QVERIFY(emitter->linkedEmitter() == emitter->affectedLinkedEmitter());
    emitter->removeLinkedEmitter(other);
    object.emissionSettings()->makeContinousActive(nullptr, nullptr);
    QVERIFY(emitter->isActiveAt(1) && emitter->timeActiveAt(1) == 1 && !emitter->signalPackageAt(1));
    QVERIFY(emitter->getFrequencyAt(1) == 25e6 && emitter->getPositionAt(1).latitude == 0.0 &&
            emitter->headingAt(1) == 0.0);
    QCOMPARE(emitter->calculateBursts(0, 10, 1.0).size(), 1);
    other->copy(emitter);
    QCOMPARE(other->getClass(), QStringLiteral("class"));
    ElintScenarioEmitter elint(QStringLiteral("x"), QString());
    elint.SetEDWFile(QStringLiteral("file"));
    QVERIFY(elint.getEDWFile() == u"file" && elint.isActiveAt(0) && emitter->clone()->id() == u"id");
    QCOMPARE(elint.type(), ScenarioObject::ScenarioObjectType::ElintEmitter);
}

void TestPublicInterface::networks()
{
    const auto emitter = std::make_shared<SzenarioEmitter>(QStringLiteral("e"), QString());
    const auto network = std::make_shared<ScenarioNetwork>(QStringLiteral("n"));
    network->setColor(Qt::green);
    network->setNetworkType(NetworkType::Star);
    QVERIFY(network->addEmitter(emitter) && network->containsEmitter(emitter));
    network->setHeadEmitter(emitter);
    const auto copy = std::make_shared<ScenarioNetwork>(QStringLiteral("c"), network);
    QVERIFY(copy->color() == Qt::green && copy->networkType() == NetworkType::Star);
    QVERIFY(copy->emitter().size() == 1 && copy->emitterList().size() == 1 && copy->headEmitter() == emitter);
    QVERIFY(copy->indexForEmitter(emitter) == 0 && copy->emitterForIndex(0) == emitter &&
            !copy->emitterActiveAt(0));
    QVERIFY(network->removeEmitter(emitter));
    copy->copy(network);
    QCOMPARE(copy->clone()->type(), ScenarioObject::ScenarioObjectType::Network);
}

void TestPublicInterface::valueSettings()
{
    TransmitterSettings transmitter;
    transmitter.setPower(2.0F);
    transmitter.setAntennaType(QStringLiteral("type"));
    transmitter.setAntennaGain(3.0F);
    transmitter.setAntennaHeight(4.0F);
    transmitter.setAntennaDirection(5.0F);
    QVERIFY(transmitter.getPower() + transmitter.getAntennaGain() + transmitter.getAntennaHeight() +
                    transmitter.getAntennaDirection() ==
                14.0F &&
            transmitter.getAntennaType() == u"type");
    ScenarioNoiseSettings noise;
    noise.setNoiseDensity(1.0);
    noise.setNoiseDeviation(2.0);
    noise.setFrequencyDependentNoiseDensity(3.0);
    noise.setFrequencyDependentNoiseGranularity(4.0);
    noise.setFrequencyDependentNoiseVariability(5.0);
    QCOMPARE(noise.noiseDensity() + noise.noiseDeviation() + noise.frequencyDependentNoiseDensity() +
                 noise.frequencyDependentNoiseGranularity() + noise.frequencyDependentNoiseVariability(),
             15.0);
    noise.setDefaults();
    QVERIFY(noise == ScenarioNoiseSettings());
}

void TestPublicInterface::signalPackages()
{
    SignalPackage package;
    package.setId(QStringLiteral("a.b"));
    package.setUpdateIds({QStringLiteral("old")});
    package.setPath(QStringLiteral("/path"));
    package.setName(QStringLiteral("name"));
    package.setAuthor(QStringLiteral("author"));
    package.setTimestamp(1);
    package.setSignalBandwidth(2.0F);
    package.setAnalogModulation(AnalogModulations::Digital);
    package.setDigitalModulation(QStringLiteral("QPSK"));
    package.setDuration(3);
    package.setHasAudioContent(true);
    package.setHasSymbolDataContent(true);
    package.setHasResultDataContent(true);
    QVERIFY(package.hasAudioContent() && package.hasSymbolDataContent() && package.hasResultDataContent());
    QVERIFY(package.hasDigitalModulation() && package.fullName() == u"/path/name" &&
            package.path() == u"/path");
    QVERIFY(package.cleanId() == u"a_b" && SignalPackage::cleanId(QStringLiteral("a:b")) == u"a_b");
    SignalPackageContent content;
    content.setName(QStringLiteral("n"));
    content.setDuration(4);
    content.setChecksum(QStringLiteral("c"));
    content.setSource(QStringLiteral("s"));
    content.setFormat(QStringLiteral("f"));
    QCOMPARE(content.name() + content.checksum() + content.source() + content.format() +
                 QString::number(content.duration()),
             QStringLiteral("ncsf4"));

    QTemporaryDir folder;
    const QString sFile = folder.filePath(QStringLiteral("Signal.xml"));
    QVERIFY(SignalPackageFile::signalPackageFile(package, sFile));
    const QByteArray descriptor = SignalPackageFile::writeSignalPackageDescriptor(package);
    for (const SignalPackage& read :
         {SignalPackageFile::signalPackage(sFile), SignalPackageFile::signalPackage(descriptor),
          SignalPackageFile::readSignalPackageDescriptor(descriptor)}) {
        QCOMPARE(read.id() + read.name() + read.author() + read.digitalModulation() +
                     read.updateIds().join(u','),
                 QStringLiteral("a.bnameauthorQPSKold"));
        QVERIFY(read.timestamp() == 1 && read.signalBandwidth() == 2.0F && read.duration() == 3);
        QCOMPARE(read.analogModulation(), AnalogModulations::Digital);
    }
    UnresolvedSignalPackageProvider unresolved;
    ISignalPackageProvider& provider = unresolved;
    const auto bare = provider.signalPackage(QStringLiteral("id"));
    QVERIFY(bare && bare->id() == u"id" && !provider.validSignalPackageId(QStringLiteral("id")));
    QVERIFY(!provider.defaultSignalPackage() && !provider.signalShapeFile(bare) && !provider.audioFile(bare));
    QVERIFY(!provider.symbolDataFile(bare) && !provider.resultDataFile(bare));
}

void TestPublicInterface::xmlElements()
{
    XmlElement root = XmlElement::create(QStringLiteral("root"));
    root.setAttribute(QStringLiteral("a"), QStringLiteral("1"));
    root.setChildText(QStringLiteral("number"), QStringLiteral("7"));
    root.setChildText(QStringLiteral("truth"), QStringLiteral("true"));
    XmlElement child = root.appendChild(QStringLiteral("child"));
    QVERIFY(!child.appendCopy(root.firstChild()).isNull() && XmlElement().isNull());
    QString sError;
    const XmlElement read = XmlElement::parse(root.toByteArray(), &sError);
    QVERIFY(sError.isEmpty() && read.tagName() == u"root" && read.hasChildText(QStringLiteral("number")));
    QVERIFY(read.hasAttribute(QStringLiteral("a")) && read.attribute(QStringLiteral("a")) == u"1");
    bool bOk = false;
    QVERIFY(read.childUnsigned(QStringLiteral("number"), &bOk) == 7 && bOk);
    QVERIFY(read.childBool(QStringLiteral("truth"), &bOk) && bOk);
    QCOMPARE(read.firstChild().nextSibling().childText(), QStringLiteral("true"));
}

void TestPublicInterface::commonXml()
{
    PositionSettingsFixed fixed(TPos{1.0, 2.0});
    QString sXml;
    QXmlStreamWriter writer(&sXml);
    writer.writeStartElement(QStringLiteral("a"));
    CommonDataXml::writePositionSettings(&fixed, writer);
    CommonDataXml::writeCoordinate(TPos{3.0, 4.0}, writer);
    CommonDataXml::writeMovements({MovementPoint{}}, writer);
    writer.writeEndElement();
    QXmlStreamReader positions(sXml);
    QXmlStreamReader coordinates(sXml);
    QXmlStreamReader movements(sXml);
    QVERIFY(positions.readNextStartElement() && coordinates.readNextStartElement() &&
            movements.readNextStartElement());
    const std::unique_ptr<IPositionSettings> read(CommonDataXml::readPositionSettings(positions));
    QVERIFY(fixed.equal(read.get()));
    QCOMPARE(CommonDataXml::readCoordinate(coordinates).latitude, 4.0);
    QCOMPARE(CommonDataXml::readMovements(movements).size(), 1);
    QCOMPARE(CommonDataXml::movementsForXml(CommonDataXml::xmlForMovements({MovementPoint{}})).size(), 1);
    QCOMPARE(
        CommonDataXml::stringToEndBehavior(CommonDataXml::endBehaviorToString(EndBehaviourType::Inactive)),
        EndBehaviourType::Inactive);
    QVERIFY(CommonDataXml::toBool(u"true"));
}

void TestPublicInterface::scenarios()
{
    UnresolvedSignalPackageProvider provider;
    ScenarioDataXml document(&provider);
    const auto emitter = std::make_shared<SzenarioEmitter>(QStringLiteral("e"), QString());
    document.setScenarioObjects({emitter});
    document.setDefaultEmitter(emitter);
    document.setName(QStringLiteral("n"));
    document.setAuthor(QStringLiteral("a"));
    document.setDescription(QStringLiteral("d"));
    document.setPersistantId(QStringLiteral("p"));
    document.setDuration(5);
    document.setNoiseSettings(ScenarioNoiseSettings());
    QBuffer buffer;
    QVERIFY(buffer.open(QIODevice::ReadWrite));
    document.toXml(&buffer);
    buffer.seek(0);
    QTemporaryDir folder;
    const QString sFile = folder.filePath(QStringLiteral("x.sce"));
    ScenarioDataXml read(&provider);
    QVERIFY(document.toXmlFile(sFile) && read.fromXmlFile(sFile) && read.fromXml(&buffer) &&
            read.fromXml(document.toXml()));
    QVERIFY(read.errorString().isEmpty() && !read.isOlderFileVersion() && read.getDuration() == 5);
    QCOMPARE(read.getName() + read.getAuthor() + read.getDescription() + read.getPersistantId(),
             QStringLiteral("nadp"));
    QVERIFY(read.getDefaultEmitter() && read.getNoiseSettings() == ScenarioNoiseSettings());
    QCOMPARE(ScenarioDataXml::s_uiFileFormatVersion, 4U);
    const QString sText = ScenarioDataXml::xmlForObjects(read.scenarioObjects(), &provider);
    QCOMPARE(ScenarioDataXml::objectsForXml(sText, &provider).size(), 1);
    QCOMPARE(ScenarioDataXml::stringToNetworkType(ScenarioDataXml::networkTypeToString(NetworkType::Star)),
             NetworkType::Star);
}

QTEST_GUILESS_MAIN(TestPublicInterface)

#include "tst_publicinterface.moc"
