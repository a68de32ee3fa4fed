#ifndef SIMULATIONDATA_SCENARIOOBJECT_H
#define SIMULATIONDATA_SCENARIOOBJECT_H

#include "simulationdata/simulationdata_export.h"

#include <QString>

#include <memory>

namespace Simulation {

class EmissionSettings;
class IFrequencySettings;

/// The base class of the objects of a scenario: emitters, ELINT emitters and
/// networks of emitters. It holds id, texts, frequency behaviour, transmission
/// schedule and three flags.
///
/// Objects are held by std::shared_ptr and used from one thread. They may refer to
/// each other in circles; an emitter in its own schedule is such a circle. The last
/// scenario document that holds the objects breaks these circles. Objects outside a
/// document are freed by ScenarioDataXml::releaseObjects().
class SIMULATIONDATA_EXPORT ScenarioObject : public std::enable_shared_from_this<ScenarioObject>
{
public:
    /// The values are stored and sent.
    enum class ScenarioObjectType : int {
        Network = 0,
        Emitter = 1,
        ElintEmitter = 2,
    };

    /// The new object is active, without name and description, on a fixed frequency
    /// of 25 MHz, with an empty schedule. It is shown neither on the map nor on the
    /// timeline.
    explicit ScenarioObject(const QString& a_sId);
    /// Creates the object like the constructor above, with a name. Then copies from
    /// `a_source`: description, both display flags, the schedule by value, and a
    /// clone of the frequency behaviour. With a null source no field is copied.
    ScenarioObject(const QString& a_sId, const QString& a_sName,
                   const std::shared_ptr<ScenarioObject>& a_source);

    virtual ~ScenarioObject();

    [[nodiscard]] virtual ScenarioObjectType type() const = 0;

    [[nodiscard]] virtual QString id() const { return m_sId; }
    /// Set the id before the object is added to a document: documents find their
    /// objects by id.
    virtual void setId(const QString& a_sId) { m_sId = a_sId; }
    [[nodiscard]] virtual QString name() const { return m_sName; }
    virtual void setName(const QString& a_sName) { m_sName = a_sName; }
    [[nodiscard]] virtual QString description() const { return m_sDescription; }
    virtual void setDescription(const QString& a_sDescription) { m_sDescription = a_sDescription; }

    /// The object's own frequency behaviour, which the object owns. Null only after
    /// null was set.
    [[nodiscard]] virtual IFrequencySettings* frequencySettings() const { return m_pFrequencySettings.get(); }
    /// Takes ownership and deletes the former settings, unless both are the same
    /// object. With null the object is never active.
    virtual void setFrequencySettings(IFrequencySettings* a_pSettings);

    /// The schedule that applies to this object, never null. Owned by this object or
    /// by its network.
    [[nodiscard]] virtual EmissionSettings* emissionSettings() const { return m_pEmissionSettings.get(); }

    [[nodiscard]] virtual bool isActive() const { return m_bActive; }

    /// Copies id, name, description, active flag, the source's own schedule by
    /// value, and a clone of its frequency behaviour. The emissions are shared with
    /// the source and keep their emitters. The display flags stay as they are. A
    /// null source changes nothing.
    virtual void copy(std::shared_ptr<ScenarioObject> a_source);

    /// Returns a new object of the same class with all that copy() copies. The
    /// original does not have to be held by a std::shared_ptr.
    [[nodiscard]] virtual std::shared_ptr<ScenarioObject> clone() = 0;

    void setActive(bool a_bActive) { m_bActive = a_bActive; }

    [[nodiscard]] bool isVisibleOnMap() const { return m_bVisibleOnMap; }
    void setVisibleOnMap(bool a_bVisible) { m_bVisibleOnMap = a_bVisible; }
    [[nodiscard]] bool isVisibleOnTimeline() const { return m_bVisibleOnTimeline; }
    void setVisibleOnTimeline(bool a_bVisible) { m_bVisibleOnTimeline = a_bVisible; }

protected:
    /// Copies the fields that all classes share.
    void copyFrom(const ScenarioObject& a_source);

private:
    ScenarioObject(const ScenarioObject& a_other) = delete;
    ScenarioObject& operator=(const ScenarioObject& a_other) = delete;

    QString m_sId;
    QString m_sName;
    QString m_sDescription;
    std::unique_ptr<IFrequencySettings> m_pFrequencySettings;
    std::unique_ptr<EmissionSettings> m_pEmissionSettings;
    bool m_bActive = true;
    bool m_bVisibleOnMap = false;
    bool m_bVisibleOnTimeline = false;
};

} // namespace Simulation

#endif
