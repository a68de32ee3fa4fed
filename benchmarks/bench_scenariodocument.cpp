#include "comparison.h"
#include "processmemory.h"

#include "simulationdata/emissionsettings.h"
#include "simulationdata/frequencysettings_chirp.h"
#include "simulationdata/frequencysettings_fasthopper.h"
#include "simulationdata/frequencysettings_slowhopper.h"
#include "simulationdata/frequencysettingsfixed.h"
#include "simulationdata/positionsettingsfixed.h"
#include "simulationdata/positionsettingsptp.h"
#include "simulationdata/scenariochecker.h"
#include "simulationdata/scenariodatabinary.h"
#include "simulationdata/scenariodataxml.h"
#include "simulationdata/signalpackage.h"
#include "simulationdata/simulationlimits.h"
#include "simulationdata/szenarioemitter.h"
#include "simulationdata/unresolvedsignalpackageprovider.h"

#include <QDataStream>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <memory>
#include <vector>

using namespace Simulation;

namespace {

constexpr int s_iEmitters = 10'000;
constexpr int s_iWayPoints = 4;

/// One of the four kinds of frequency settings, by index.
IFrequencySettings* frequencyFor(int a_iIndex)
{
    switch (a_iIndex % 4) {
    case 0:
        return new FrequencySettingsFixed();
    case 1:
        return new FrequencySettings_Chirp();
    case 2:
        return new FrequencySettings_FastHopper();
    default:
        return new FrequencySettings_SlowHopper();
    }
}

std::unique_ptr<PositionSettingsPtp> movementFor(double a_dLongitude)
{
    auto movement = std::make_unique<PositionSettingsPtp>(TPos{a_dLongitude, 54.123456789}, 0.01);
    for (int i = 2; i < s_iWayPoints; ++i) {
        movement->insertRowAfter(i - 1, 0.01, QStringLiteral("Way point"));
    }
    return movement;
}

std::shared_ptr<SzenarioEmitter> emitterFor(int a_iIndex, ISignalPackageProvider& a_provider)
{
    auto emitter = std::make_shared<SzenarioEmitter>(QStringLiteral("emitter-%1").arg(a_iIndex),
                                                     QStringLiteral("Emitter %1").arg(a_iIndex));
    emitter->setDescription(QStringLiteral("An emitter as applications make them"));
    emitter->setClass(QStringLiteral("Vehicle"));
    emitter->setFrequencySettings(frequencyFor(a_iIndex));
    const double dLongitude = 8.0 + a_iIndex * 0.000123456789;
    if (a_iIndex % 2 == 0) {
        emitter->setPositionSettings(movementFor(dLongitude).release());
    } else {
        emitter->setPositionSettings(new PositionSettingsFixed(TPos{dLongitude, 54.123456789}));
    }
    for (int i = 0; i < 2; ++i) {
        const auto emission = EmissionSettings::createEmission();
        emission->id = static_cast<std::uint32_t>(i + 1);
        emission->start = 1000LL * i;
        emission->duration = 500;
        emission->emitter = emitter;
        emission->signalPackage = a_provider.signalPackage(QStringLiteral("package"));
        emitter->emissionSettings()->addEmission(emission);
    }
    return emitter;
}

/// A scenario of emitters, and its provider.
struct Scenario
{
    Scenario()
        : document(&provider)
    {
        QSet<std::shared_ptr<ScenarioObject>> objects;
        for (int i = 0; i < s_iEmitters; ++i) {
            objects.insert(emitterFor(i, provider));
        }
        document.setScenarioObjects(objects);
    }

    UnresolvedSignalPackageProvider provider;
    ScenarioDataXml document;
};

/// One step of a stream writer, with its strings prepared.
struct WriterStep
{
    QXmlStreamReader::TokenType type = QXmlStreamReader::NoToken;
    QString text; ///< name or characters
    std::vector<std::pair<QString, QString>> attributes;
};

std::vector<WriterStep> writerSteps(const QByteArray& a_xml)
{
    std::vector<WriterStep> steps;
    QXmlStreamReader reader(a_xml);
    while (!reader.atEnd()) {
        WriterStep step;
        step.type = reader.readNext();
        if (reader.isStartElement()) {
            step.text = reader.name().toString();
            const auto attributes = reader.attributes();
            for (const QXmlStreamAttribute& attribute : attributes) {
                step.attributes.emplace_back(attribute.name().toString(), attribute.value().toString());
            }
        } else if (reader.isCharacters() && !reader.isWhitespace()) {
            step.text = reader.text().toString();
        } else if (!reader.isEndElement()) {
            continue;
        }
        steps.push_back(std::move(step));
    }
    return steps;
}

QByteArray writePrepared(const std::vector<WriterStep>& a_steps)
{
    QByteArray xml;
    QXmlStreamWriter writer(&xml);
    writer.setAutoFormatting(true);
    writer.writeStartDocument();
    for (const WriterStep& step : a_steps) {
        if (step.type == QXmlStreamReader::StartElement) {
            writer.writeStartElement(step.text);
            for (const auto& attribute : step.attributes) {
                writer.writeAttribute(attribute.first, attribute.second);
            }
        } else if (step.type == QXmlStreamReader::EndElement) {
            writer.writeEndElement();
        } else {
            writer.writeCharacters(step.text);
        }
    }
    writer.writeEndDocument();
    return xml;
}

void loadScenario(benchmark::State& a_state)
{
    Scenario scenario;
    const QByteArray xml = scenario.document.toXml();
    compare(
        a_state, xml.size(),
        [&] {
            QXmlStreamReader reader(xml);
            while (!reader.atEnd()) {
                benchmark::DoNotOptimize(reader.readNext());
            }
        },
        [&] {
            // The time to destroy the document afterwards is not measured.
            const auto document = std::make_unique<ScenarioDataXml>(&scenario.provider);
            return secondsOf([&] { benchmark::DoNotOptimize(document->fromXml(xml)); });
        });
}
BENCHMARK(loadScenario)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(5.0);

void saveScenario(benchmark::State& a_state)
{
    Scenario scenario;
    const QByteArray xml = scenario.document.toXml();
    const std::vector<WriterStep> steps = writerSteps(xml);
    compare(
        a_state, xml.size(), [&] { benchmark::DoNotOptimize(writePrepared(steps)); },
        [&] { return secondsOf([&] { benchmark::DoNotOptimize(scenario.document.toXml()); }); });
}
BENCHMARK(saveScenario)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(5.0);

/// The check of a clean scenario beside its loading. "ratio" is the share of the check.
void checkScenario(benchmark::State& a_state)
{
    Scenario scenario;
    const QByteArray xml = scenario.document.toXml();
    ScenarioDataXml document(&scenario.provider);
    compare(
        a_state, xml.size(), [&] { benchmark::DoNotOptimize(document.fromXml(xml)); },
        [&] {
            ScenarioChecker checker(nullptr);
            checker.check(document);
            benchmark::DoNotOptimize(checker.findings());
        });
}
BENCHMARK(checkScenario)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(3.0);

/// A document of default emitters.
QByteArray manyEmitters(qsizetype a_iEmitters)
{
    constexpr int iDigits = 7;
    const QString sId(iDigits, u'0');
    ScenarioDataXml document(nullptr);
    document.setPersistantId(QStringLiteral("many"));
    document.setScenarioObjects({std::make_shared<SzenarioEmitter>(sId, QStringLiteral("Emitter"))});
    const QByteArray one = document.toXml();
    const qsizetype iElement = one.indexOf("    <Emitter ");
    QByteArray element = one.sliced(iElement, one.indexOf("</Scenario>") - iElement);
    QByteArray xml = one.first(iElement);
    xml.reserve(one.size() + a_iEmitters * element.size());
    const qsizetype iId = element.indexOf(sId.toUtf8());
    for (qsizetype i = 0; i < a_iEmitters; ++i) {
        xml += element.replace(iId, iDigits, QByteArray::number(i).rightJustified(iDigits, '0'));
    }
    return xml + "</Scenario>\n";
}

/// Time per emitter and peak memory of loading and saving many emitters. "model" is the
/// memory of the loaded scenario, and "extra" the further peak while it is loaded, both
/// divided by the bytes of the document.
void many(benchmark::State& a_state)
{
    Limits::setValue(Limits::DocumentBytes, 4'000'000'000);
    Limits::setValue(Limits::ScenarioObjects, 4'000'000);
    const QByteArray xml = manyEmitters(a_state.range(0));
    const auto dEmitters = static_cast<double>(a_state.range(0));
    const auto dBytes = static_cast<double>(xml.size());
    for ([[maybe_unused]] auto iteration : a_state) {
        if (!resetPeakMemory()) {
            a_state.SkipWithError("the peak cannot be set back");
            break;
        }
        ScenarioDataXml document(nullptr);
        const double dBefore = processBytes("VmRSS:");
        const double dLoad = secondsOf([&] { benchmark::DoNotOptimize(document.fromXml(xml)); });
        const double dModel = processBytes("VmRSS:") - dBefore;
        a_state.counters["extra"] = (processBytes("VmHWM:") - dBefore - dModel) / dBytes;
        a_state.counters["model"] = dModel / dBytes;
        const double dSave = secondsOf([&] { benchmark::DoNotOptimize(document.toXml()); });
        a_state.counters["load_us"] = dLoad / dEmitters * 1e6;
        a_state.counters["save_us"] = dSave / dEmitters * 1e6;
        a_state.counters["MiB"] = dBytes / (1024.0 * 1024.0);
    }
    Limits::setValue(Limits::DocumentBytes, Limits::defaultValue(Limits::DocumentBytes));
    Limits::setValue(Limits::ScenarioObjects, Limits::defaultValue(Limits::ScenarioObjects));
}
BENCHMARK(many)->Arg(10'000)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond)->Iterations(1);

/// The emitters of a compact scenario, every fourth linked to its predecessor.
QSet<std::shared_ptr<SzenarioEmitter>> compactEmitters(ISignalPackageProvider& a_provider)
{
    QSet<std::shared_ptr<SzenarioEmitter>> emitters;
    std::shared_ptr<SzenarioEmitter> former;
    for (int i = 0; i < s_iEmitters; ++i) {
        const auto emitter = emitterFor(i, a_provider);
        emitter->setLinkTargetEmitter(i % 4 == 3 ? former : nullptr);
        emitters.insert(emitter);
        former = emitter;
    }
    return emitters;
}

struct BareRecord
{
    QString id;
    QString name;
    QString description;
    bool isActive = false;
    bool isDefault = false;
    QString link;
    QString emitterClass;
};

std::vector<BareRecord> readBare(const QByteArray& a_data)
{
    QDataStream stream(a_data);
    qint32 iCount = 0;
    stream >> iCount;
    std::vector<BareRecord> records(static_cast<std::size_t>(iCount));
    for (BareRecord& record : records) {
        stream >> record.id >> record.name >> record.description >> record.isActive >> record.isDefault >>
            record.link >> record.emitterClass;
    }
    return records;
}

QByteArray writeBare(const std::vector<BareRecord>& a_records)
{
    QByteArray data;
    QDataStream stream(&data, QIODevice::WriteOnly);
    stream << static_cast<qint32>(a_records.size());
    for (const BareRecord& record : a_records) {
        stream << record.id << record.name << record.description << record.isActive << record.isDefault
               << record.link << record.emitterClass;
    }
    return data;
}

void loadCompact(benchmark::State& a_state)
{
    UnresolvedSignalPackageProvider provider;
    ScenarioDataBinary scenario(&provider);
    scenario.setScenarioEmitter(compactEmitters(provider));
    const QByteArray data = scenario.toBinary();
    compare(
        a_state, data.size(), [&] { benchmark::DoNotOptimize(readBare(data)); },
        [&] {
            // The time to destroy the document afterwards is not measured.
            const auto read = std::make_unique<ScenarioDataBinary>(&provider);
            return secondsOf([&] { benchmark::DoNotOptimize(read->fromBinary(data)); });
        });
}
BENCHMARK(loadCompact)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(2.0);

void saveCompact(benchmark::State& a_state)
{
    UnresolvedSignalPackageProvider provider;
    ScenarioDataBinary scenario(&provider);
    scenario.setScenarioEmitter(compactEmitters(provider));
    const QByteArray data = scenario.toBinary();
    const std::vector<BareRecord> records = readBare(data);
    compare(
        a_state, data.size(), [&] { benchmark::DoNotOptimize(writeBare(records)); },
        [&] { benchmark::DoNotOptimize(scenario.toBinary()); });
}
BENCHMARK(saveCompact)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(2.0);

} // namespace
