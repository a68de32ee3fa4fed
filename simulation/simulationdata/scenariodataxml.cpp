#include "scenariodataxml.h"

#include "commondataxml_names_p.h"
#include "commondataxml_p.h"
#include "objectreleaser_p.h"
#include "scenariodataxml_p.h"
#include "scenariodataxml_references_p.h"
#include "simulationdata/io/documentfile_p.h"
#include "simulationdata/io/trace_p.h"
#include "simulationdata/scenarionetwork.h"
#include "simulationdata/simulationlimits.h"
#include "simulationdata/szenarioemitter.h"
#include "simulationdata/xml/documentformat_p.h"
#include "simulationdata/xml/xmldocumentreader_p.h"
#include "simulationdata/xml/xmlwalk_p.h"

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

namespace Simulation {

namespace {

constexpr const char* s_szSource = "simulation/simulationdata/scenariodataxml";

const DocumentKind s_kind(s_szSource, QStringLiteral("Scenario"), QLatin1String("Scenario"));

using ObjectSet = QSet<std::shared_ptr<ScenarioObject>>;

/// The objects of one kind in the order of their ids and then names: a set's own
/// order changes from run to run. Objects with equal id and name are sorted by the
/// text that `a_textOf` returns for them.
template<typename Object, typename TextOf>
std::vector<const Object*> inOrder(const ObjectSet& a_objects, const TextOf& a_textOf)
{
    struct Entry
    {
        std::pair<QString, QString> key; ///< id and name
        const Object* object = nullptr;
        QByteArray text;
    };
    std::vector<Entry> entries;
    for (const std::shared_ptr<ScenarioObject>& object : a_objects) {
        if (const auto* pObject = dynamic_cast<const Object*>(object.get())) {
            entries.push_back({{object->id(), object->name()}, pObject, {}});
        }
    }
    std::sort(entries.begin(), entries.end(),
              [](const Entry& a_first, const Entry& a_second) { return a_first.key < a_second.key; });
    for (auto first = entries.begin(); first != entries.end();) {
        const auto last = std::find_if(first, entries.end(),
                                       [&](const Entry& a_entry) { return a_entry.key != first->key; });
        if (last - first > 1) {
            std::for_each(first, last, [&](Entry& a_entry) { a_entry.text = a_textOf(*a_entry.object); });
            std::sort(first, last, [](const Entry& a_first, const Entry& a_second) {
                return a_first.text < a_second.text;
            });
        }
        first = last;
    }
    std::vector<const Object*> objects;
    objects.reserve(entries.size());
    std::transform(entries.cbegin(), entries.cend(), std::back_inserter(objects),
                   [](const Entry& a_entry) { return a_entry.object; });
    return objects;
}

/// The error text for emitters that share an id, because a reader cannot distinguish
/// them; empty without such emitters. Networks do not count: a document refers to
/// emitters only, so a reader creates a network for every network element, whatever its
/// id.
QString sharedIdsOf(const ObjectSet& a_objects)
{
    SharedIds ids;
    for (const std::shared_ptr<ScenarioObject>& object : a_objects) {
        if (object->type() != ScenarioObject::ScenarioObjectType::Network) {
            ids.add(object->id());
        }
    }
    return ids.text("emitters");
}

/// The text that `a_write` writes, as bytes.
template<typename Write>
QByteArray written(const Write& a_write)
{
    QByteArray text;
    XmlTextWriter writer(text);
    a_write(writer);
    return text;
}

} // namespace

ScenarioDataXml::ScenarioDataXml(ISignalPackageProvider* a_pProvider)
    : m_pProvider(a_pProvider)
{}

ScenarioDataXml::~ScenarioDataXml()
{
    clear();
}

void ScenarioDataXml::clear()
{
    m_mergedIds.clear();
    ObjectReleaser::release(m_objects, m_defaultEmitters);
}

bool ScenarioDataXml::fromXmlFile(const QString& a_sFile)
{
    const std::optional<QByteArray> xml = s_kind.load(a_sFile, &m_sErrorString, &m_report);
    return xml && fromXml(*xml);
}

bool ScenarioDataXml::fromXml(QIODevice* a_pDevice)
{
    const std::optional<QByteArray> xml = s_kind.load(a_pDevice, &m_sErrorString, &m_report);
    return xml && fromXml(*xml);
}

bool ScenarioDataXml::fromXml(const QByteArray& a_xml)
{
    return s_kind.read(a_xml, &m_sErrorString, &m_report, [this](XmlReader& a_reader) {
        clear();
        readHeader(a_reader);
        return readChildren(a_reader);
    });
}

void ScenarioDataXml::readHeader(XmlReader& a_reader)
{
    static const XmlAttributeField<ScenarioDataXml> s_fields[] = {
        {s_sFileFormatVersion,
         [](XmlReader& a_fieldReader, const XmlText& a_value, ScenarioDataXml& a_scenario) {
             a_scenario.m_uiFileVersion = readVersion(a_fieldReader, a_value, s_uiFileFormatVersion);
         }},
        {s_sName,
         [](XmlReader& /*a_reader*/, const XmlText& a_value, ScenarioDataXml& a_scenario) {
             a_scenario.m_sName = a_value.string();
         },
         XmlOccurs::Once},
        {s_sAuthor,
         [](XmlReader& /*a_reader*/, const XmlText& a_value, ScenarioDataXml& a_scenario) {
             a_scenario.m_sAuthor = a_value.string();
         },
         XmlOccurs::Once},
        {s_sUid,
         [](XmlReader& /*a_reader*/, const XmlText& a_value, ScenarioDataXml& a_scenario) {
             a_scenario.m_sPersistantId = a_value.string();
         },
         XmlOccurs::Once},
        {s_sDuration,
         [](XmlReader& a_fieldReader, const XmlText& a_value, ScenarioDataXml& a_scenario) {
             a_scenario.m_uiDuration = a_fieldReader.unsignedNumber(a_value, s_milliseconds);
         },
         XmlOccurs::Once},
        {s_sDescription, [](XmlReader& /*a_reader*/, const XmlText& a_value,
                            ScenarioDataXml& a_scenario) { a_scenario.m_sDescription = a_value.string(); }},
    };
    m_uiFileVersion = 0;
    m_sName = m_sAuthor = m_sPersistantId = m_sDescription = QString();
    m_uiDuration = 0;
    m_noiseSettings.setDefaults();
    const XmlText* const pVersion = a_reader.attribute(s_sFileFormatVersion);
    if (pVersion == nullptr) {
        reportMissingVersion(a_reader);
    }
    // Older documents have other elements, for example for the timing.
    a_reader.setCompletenessExpected(pVersion != nullptr &&
                                     readUInt32(pVersion->bytes) >= s_uiFileFormatVersion);
    readXmlAttributes(a_reader, *this, s_fields);
}

void ScenarioDataXml::writeHeader(XmlWriter& a_writer) const
{
    a_writer.wholeAttribute(s_sFileFormatVersion, s_uiFileFormatVersion);
    a_writer.attribute(s_sName, m_sName);
    a_writer.attribute(s_sAuthor, m_sAuthor);
    a_writer.attribute(s_sUid, m_sPersistantId);
    a_writer.wholeAttribute(s_sDuration, m_uiDuration);
    a_writer.textElement(s_sDescription, m_sDescription);
    writeNoiseSettings(a_writer, m_noiseSettings);
}

/// Reads the children of the root element. Returns an error text when the scenario has
/// no room for emitters that appear only in references; otherwise an empty text.
QString ScenarioDataXml::readChildren(XmlReader& a_reader)
{
    struct Reading
    {
        ScenarioDataXml& scenario;
        ScenarioReferences references;
    };
    static const XmlChild<Reading> s_children[] = {
        {s_sEmitter,
         [](XmlReader& a_childReader, Reading& a_reading) {
             a_reading.scenario.readScenarioEmitter(a_childReader, EmitterType::Emitter,
                                                    a_reading.references);
         },
         XmlOccurs::AnyTimes},
        {s_sElintEmitter,
         [](XmlReader& a_childReader, Reading& a_reading) {
             a_reading.scenario.readScenarioEmitter(a_childReader, EmitterType::ElintEmitter,
                                                    a_reading.references);
         },
         XmlOccurs::AnyTimes},
        {s_sNetwork,
         [](XmlReader& a_childReader, Reading& a_reading) {
             a_reading.scenario.readScenarioNetwork(a_childReader, a_reading.references);
         },
         XmlOccurs::AnyTimes},
        {s_sDescription,
         [](XmlReader& a_childReader, Reading& a_reading) {
             a_reading.scenario.m_sDescription = readText(a_childReader, a_reading.scenario.m_sDescription);
         },
         XmlOccurs::Once},
        {s_sNoiseSettings,
         [](XmlReader& a_childReader, Reading& a_reading) {
             readNoiseSettings(a_childReader, a_reading.scenario.m_noiseSettings);
         },
         XmlOccurs::Once},
    };
    Reading reading{*this, ScenarioReferences(m_objects, m_pProvider)};
    readXmlChildren(a_reader, reading, s_children);
    const bool bWhole = reading.references.resolve(a_reader.deviations());
    // Two elements with one id may mark the same emitter as a default emitter twice.
    QSet<std::shared_ptr<SzenarioEmitter>> seen;
    m_defaultEmitters.removeIf([&](const auto& a_default) {
        const bool bAgain = seen.contains(a_default);
        seen.insert(a_default);
        return bAgain;
    });
    return bWhole ? QString() : Limits::exceeded(Limits::ScenarioObjects);
}

/// Writes the objects and calls `a_stillReadable` after each. Returns false as soon as
/// that function reports that the text is too long to be read back.
bool ScenarioDataXml::writeObjects(XmlWriter& a_writer, const ObjectSet& a_objects,
                                   const QList<std::shared_ptr<SzenarioEmitter>>& a_defaults,
                                   const std::function<bool()>& a_stillReadable)
{
    QSet<const SzenarioEmitter*> defaults;
    for (const std::shared_ptr<SzenarioEmitter>& emitter : a_defaults) {
        defaults.insert(emitter.get());
    }
    const auto writeEmitter = [&](XmlWriter& a_target, const SzenarioEmitter& a_emitter) {
        writeScenarioEmitter(a_target, a_emitter, defaults.contains(&a_emitter));
    };
    const auto emitters = inOrder<SzenarioEmitter>(a_objects, [&](const SzenarioEmitter& a_emitter) {
        return written([&](XmlWriter& a_target) { writeEmitter(a_target, a_emitter); });
    });
    for (const SzenarioEmitter* pEmitter : emitters) {
        writeEmitter(a_writer, *pEmitter);
        if (!a_stillReadable()) {
            return false;
        }
    }
    const auto networks = inOrder<ScenarioNetwork>(a_objects, [](const ScenarioNetwork& a_network) {
        return written([&](XmlWriter& a_target) { writeScenarioNetwork(a_target, a_network); });
    });
    for (const ScenarioNetwork* pNetwork : networks) {
        writeScenarioNetwork(a_writer, *pNetwork);
        if (!a_stillReadable()) {
            return false;
        }
    }
    return true;
}

QByteArray ScenarioDataXml::toXml()
{
    if (m_sPersistantId.isEmpty()) {
        m_sPersistantId = createPersistentId(m_sName);
    }
    const QByteArray xml =
        s_kind.text([this](XmlWriter& a_writer, const DocumentKind::StillReadable& a_stillReadable) {
            writeHeader(a_writer);
            return writeObjects(a_writer, m_objects, m_defaultEmitters, a_stillReadable);
        });
    return s_kind.finished(xml, sharedIdsOf(m_objects), &m_sErrorString);
}

void ScenarioDataXml::toXml(QIODevice* a_pDevice)
{
    s_kind.write(a_pDevice, toXml(), &m_sErrorString);
}

bool ScenarioDataXml::toXmlFile(const QString& a_sFile)
{
    const QByteArray xml = toXml();
    return !xml.isEmpty() && saveDocument(a_sFile, xml, &m_sErrorString);
}

void ScenarioDataXml::setScenarioObjects(const ObjectSet& a_objects)
{
    m_mergedIds.clear();
    ObjectSet objects = a_objects;
    objects.remove(nullptr);
    m_objects.swap(objects);
    QList<std::shared_ptr<SzenarioEmitter>> defaults = std::exchange(m_defaultEmitters, {});
    std::copy_if(defaults.cbegin(), defaults.cend(), std::back_inserter(m_defaultEmitters),
                 [this](const auto& a_default) { return m_objects.contains(a_default); });
    ObjectReleaser::release(objects, defaults);
}

std::shared_ptr<SzenarioEmitter> ScenarioDataXml::getDefaultEmitter() const
{
    return m_defaultEmitters.value(0);
}

void ScenarioDataXml::setDefaultEmitter(const std::shared_ptr<SzenarioEmitter>& a_emitter)
{
    QList<std::shared_ptr<SzenarioEmitter>> emitters;
    if (a_emitter) {
        emitters.append(a_emitter);
    }
    m_defaultEmitters.swap(emitters);
    emitters.removeIf([this](const auto& a_former) { return m_objects.contains(a_former); });
    ObjectReleaser::release(emitters);
}

QString ScenarioDataXml::xmlForObjects(const ObjectSet& a_objects, ISignalPackageProvider* /*a_pProvider*/)
{
    ObjectSet objects = a_objects;
    objects.remove(nullptr);
    QByteArray xml;
    XmlTextWriter writer(xml);
    writer.startDocument(false);
    writer.startElement(s_sScenarioObjects);
    // A reader counts a byte-order mark and the bytes that it decodes.
    constexpr qsizetype iMarkBytes = 3;
    const auto isReadable = [&] { return s_kind.isReadable(xml.size() + iMarkBytes); };
    if (!writeObjects(writer, objects, {}, isReadable)) {
        return {};
    }
    writer.endElement();
    writer.endDocument();
    if (!isReadable()) {
        return {};
    }
    if (const QString sShared = sharedIdsOf(objects); !sShared.isEmpty()) {
        traceError(s_szSource, [&] { return QStringLiteral("Objects written: ") + sShared; });
    }
    return QString::fromUtf8(xml);
}

ObjectSet ScenarioDataXml::objectsForXml(const QString& a_sXml, ISignalPackageProvider* a_pProvider)
{
    XmlDocumentReader document(a_sXml);
    ScenarioDataXml scenario(a_pProvider);
    if (!document.readRoot()) {
        s_kind.refuse(document.errorString(), &scenario.m_sErrorString);
        return {};
    }
    const QString sChildrenError = scenario.readChildren(document.reader());
    if (const QString sError = errorOf(document, sChildrenError); !sError.isEmpty()) {
        traceError(s_szSource, [&] { return QStringLiteral("Objects broke off: %1").arg(sError); });
    }
    return std::exchange(scenario.m_objects, {});
}

void ScenarioDataXml::releaseObjects(ObjectSet&& a_objects)
{
    ObjectReleaser::release(a_objects);
}

void ScenarioDataXml::releaseObject(std::shared_ptr<ScenarioObject> a_object)
{
    ObjectReleaser::release(a_object);
}

QString ScenarioDataXml::networkTypeToString(NetworkType a_eType)
{
    return a_eType == NetworkType::Hierarchical ? s_sHierarchical : s_sStar;
}

NetworkType ScenarioDataXml::stringToNetworkType(const QString& a_sText)
{
    return a_sText == s_sStar ? NetworkType::Star : NetworkType::Hierarchical;
}

} // namespace Simulation
