#ifndef SIMULATIONDATA_SCENARIODATAXML_H
#define SIMULATIONDATA_SCENARIODATAXML_H

#include "simulationdata/enumerations.h"
#include "simulationdata/scenarionoisesettings.h"
#include "simulationdata/simulationdata_export.h"

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QSet>
#include <QString>
#include <QStringView>

#include <cstdint>
#include <functional>
#include <memory>

class QIODevice;
class QXmlStreamAttributes;
class QXmlStreamReader;
class QXmlStreamWriter;

namespace Simulation {

class ISignalPackageProvider;
class ScenarioNetwork;
class ScenarioObject;
class ScenarioReferences;
class SzenarioEmitter;
enum class EmitterType;

/// The scenario document: the objects of one scenario, its header and its
/// noise, read from and written to XML (root "Scenario", format version 4).
///
/// Signal packages are resolved through the provider, which the document does
/// not own and which must outlive it; without one, references to packages are
/// dropped. The document holds its objects strongly and, when it is cleared,
/// read again or destroyed, takes apart those that nothing else holds. Used
/// from one thread. A new document is empty and of the current version.
class SIMULATIONDATA_EXPORT ScenarioDataXml
{
public:
    /// The version that is written.
    static constexpr std::uint32_t s_uiFileFormatVersion = 4;

    explicit ScenarioDataXml(ISignalPackageProvider* a_pProvider);
    ~ScenarioDataXml();

    /// Reads a document. The former objects are released once the root is known
    /// to be "Scenario". Returns false, and changes errorString() alone, when the
    /// root is another, there is none, or the file cannot be read. A document
    /// that breaks off, is malformed or exceeds a limit keeps what was read until
    /// there and gives true: only "true and errorString() empty" is a whole one.
    bool fromXml(const QByteArray& a_xml);
    bool fromXml(QIODevice* a_pDevice);
    bool fromXmlFile(const QString& a_sFile);

    /// The error of the last reading or writing; of a reading "line 3, column 7:
    /// reason", without a place when it concerns the file. Empty without an error.
    [[nodiscard]] QString errorString() const { return m_sErrorString; }

    /// The ids that several emitter elements of the document last read have,
    /// each with the number of these elements. They were read as one emitter,
    /// the later ones over the earlier ones. Empty once other objects are set.
    [[nodiscard]] QMap<QString, qsizetype> mergedIds() const { return m_mergedIds; }

    /// Writes the document. An empty persistent id is built and kept first, of
    /// the name, the time and the machine. Objects come in the order of their
    /// ids, emitters before networks, so equal scenarios give equal bytes.
    /// Empty, after one trace, when that would be more than a reader accepts
    /// (Limits::DocumentBytes): every emitter carries the whole path that it
    /// follows. Emitters that share an id are all written, but a reader gets one
    /// emitter for them: errorString() and one trace report it.
    [[nodiscard]] QByteArray toXml();
    /// The device must be open for writing; a failure is traced.
    void toXml(QIODevice* a_pDevice);
    /// The file is replaced whole or, with false, not at all. Only "true and
    /// errorString() empty" is a file from which all objects come back.
    [[nodiscard]] bool toXmlFile(const QString& a_sFile);

    [[nodiscard]] QSet<std::shared_ptr<ScenarioObject>> scenarioObjects() const { return m_objects; }
    /// Replaces the objects; null is left out. Default emitters that are not
    /// among the new ones are forgotten. To take one emitter out, first remove
    /// it where others name it (ScenarioNetwork::removeEmitter(),
    /// SzenarioEmitter::removeLinkedEmitter(), EmissionSettings::removeEmissions()):
    /// an id that is still named comes back as a bare emitter when the saved
    /// document is read.
    void setScenarioObjects(const QSet<std::shared_ptr<ScenarioObject>>& a_objects);

    /// The emitter that applications offer first, or null; when a document
    /// marks several, the first of them.
    [[nodiscard]] std::shared_ptr<SzenarioEmitter> getDefaultEmitter() const;
    /// Makes this one the only default emitter; null leaves none.
    void setDefaultEmitter(const std::shared_ptr<SzenarioEmitter>& a_emitter);

    [[nodiscard]] QString getName() const { return m_sName; }
    void setName(const QString& a_sName) { m_sName = a_sName; }
    [[nodiscard]] QString getAuthor() const { return m_sAuthor; }
    void setAuthor(const QString& a_sAuthor) { m_sAuthor = a_sAuthor; }
    [[nodiscard]] QString getDescription() const { return m_sDescription; }
    void setDescription(const QString& a_sDescription) { m_sDescription = a_sDescription; }
    /// The identity that survives renaming. The spelling is part of the interface.
    [[nodiscard]] QString getPersistantId() const { return m_sPersistantId; }
    void setPersistantId(const QString& a_sId) { m_sPersistantId = a_sId; }
    /// How long the scenario lasts (ms); 0 when it says nothing.
    [[nodiscard]] std::uint32_t getDuration() const { return m_uiDuration; }
    void setDuration(std::uint32_t a_uiDuration) { m_uiDuration = a_uiDuration; }
    [[nodiscard]] const ScenarioNoiseSettings& getNoiseSettings() const { return m_noiseSettings; }
    void setNoiseSettings(const ScenarioNoiseSettings& a_settings) { m_noiseSettings = a_settings; }

    /// Whether the document that was read is older than the current version.
    [[nodiscard]] bool isOlderFileVersion() const { return m_uiFileVersion < s_uiFileFormatVersion; }

    /// Objects as text, root "ScenarioObjects", for copying between scenarios,
    /// and back (from any root). Objects that are only referred to come back as
    /// plain emitters of that id; default marks are not written. Writing needs
    /// no provider; emitters that share an id are reported by one trace; a text beyond Limits::DocumentBytes
    /// is left empty, after one trace. The objects read belong to the caller, who puts them into a document
    /// or gives them to releaseObjects().
    [[nodiscard]] static QString xmlForObjects(const QSet<std::shared_ptr<ScenarioObject>>& a_objects,
                                               ISignalPackageProvider* a_pProvider);
    [[nodiscard]] static QSet<std::shared_ptr<ScenarioObject>>
    objectsForXml(const QString& a_sXml, ISignalPackageProvider* a_pProvider);

    /// Drops objects that no document holds, and frees those that then only hold each
    /// other, for example an emitter that is named in its own schedule. Objects that
    /// the caller still holds elsewhere stay whole.
    static void releaseObjects(QSet<std::shared_ptr<ScenarioObject>>&& a_objects);
    /// The same for one object: releaseObject(std::move(object)).
    static void releaseObject(std::shared_ptr<ScenarioObject> a_object);

    /// "Hierarchical" or, for every other value, "Star".
    [[nodiscard]] static QString networkTypeToString(NetworkType a_eType);
    /// Star for "Star", Hierarchical for every other text.
    [[nodiscard]] static NetworkType stringToNetworkType(const QString& a_sText);

private:
    ScenarioDataXml(const ScenarioDataXml& a_other) = delete;
    ScenarioDataXml& operator=(const ScenarioDataXml& a_other) = delete;

    // The document as a whole (scenariodataxml.cpp)
    void clear();
    void readHeader(const QXmlStreamAttributes& a_attributes);
    QString readChildren(QXmlStreamReader& a_reader);
    bool readChild(QXmlStreamReader& a_reader, QStringView a_sName, ScenarioReferences& a_references);
    void writeHeader(QXmlStreamWriter& a_writer) const;
    static bool writeObjects(QXmlStreamWriter& a_writer,
                             const QSet<std::shared_ptr<ScenarioObject>>& a_objects,
                             const QList<std::shared_ptr<SzenarioEmitter>>& a_defaults,
                             const std::function<bool()>& a_stillReadable);

    // Its objects (scenariodataxml_objects.cpp)
    void readScenarioEmitter(QXmlStreamReader& a_reader, EmitterType a_eType,
                             ScenarioReferences& a_references);
    static void writeScenarioEmitter(QXmlStreamWriter& a_writer, const SzenarioEmitter& a_emitter,
                                     bool a_bDefault);
    void readScenarioNetwork(QXmlStreamReader& a_reader, ScenarioReferences& a_references);
    static void writeScenarioNetwork(QXmlStreamWriter& a_writer, const ScenarioNetwork& a_network);

    ISignalPackageProvider* m_pProvider;
    QList<std::shared_ptr<SzenarioEmitter>> m_defaultEmitters;
    QSet<std::shared_ptr<ScenarioObject>> m_objects;
    QString m_sName;
    QString m_sAuthor;
    QString m_sDescription;
    QString m_sPersistantId;
    std::uint32_t m_uiDuration = 0; ///< ms
    std::uint32_t m_uiFileVersion = s_uiFileFormatVersion;
    ScenarioNoiseSettings m_noiseSettings;
    QString m_sErrorString;
    QMap<QString, qsizetype> m_mergedIds;
};

} // namespace Simulation

#endif
