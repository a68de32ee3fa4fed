#ifndef SIMULATIONDATA_SCENARIOOBJECT_H
#define SIMULATIONDATA_SCENARIOOBJECT_H

#include "simulationdata/simulationdata_export.h"

#include <QString>

#include <memory>

namespace Simulation {

class EmissionSettings;
class IFrequencySettings;

/// The base class of what a scenario contains: emitters, ELINT emitters and networks
/// of emitters. Holds id, texts, frequency behaviour, transmission schedule and three
/// flags.
///
/// Objects live in std::shared_ptr and are used from one thread. They refer to each
/// other in circles (an emitter that its own schedule names is one); a scenario
/// document takes those apart when it is the last to hold them. Objects that live
/// outside any document end with ScenarioDataXml::releaseObjects().
class SIMULATIONDATA_EXPORT ScenarioObject : public std::enable_shared_from_this<ScenarioObject>
{
public:
    /// The values are stored and sent.
    enum class ScenarioObjectType : int {
        Network = 0,
        Emitter = 1,
        ElintEmitter = 2,
    };

    /// An active object without name and description, on a fixed frequency of
    /// 25 MHz, with an empty schedule, shown neither on map nor timeline.
    explicit ScenarioObject(const QString& a_sId);
    /// The same, with description, both display flags, a value copy of the
    /// schedule and a clone of the frequency behaviour of `a_source`. A null
    /// source adds nothing.
    ScenarioObject(const QString& a_sId, const QString& a_sName,
                   const std::shared_ptr<ScenarioObject>& a_source);

    virtual ~ScenarioObject();

    [[nodiscard]] virtual ScenarioObjectType type() const = 0;

    [[nodiscard]] virtual QString id() const { return m_sId; }
    /// Documents find their objects by id: set it before the object is added to one.
    virtual void setId(const QString& a_sId) { m_sId = a_sId; }
    [[nodiscard]] virtual QString name() const { return m_sName; }
    virtual void setName(const QString& a_sName) { m_sName = a_sName; }
    [[nodiscard]] virtual QString description() const { return m_sDescription; }
    virtual void setDescription(const QString& a_sDescription) { m_sDescription = a_sDescription; }

    /// The object's own frequency behaviour, owned by it; null only after it was set
    /// to null.
    [[nodiscard]] virtual IFrequencySettings* frequencySettings() const { return m_pFrequencySettings.get(); }
    /// Takes ownership and deletes the former settings, unless they are the same.
    /// With null the object is never active.
    virtual void setFrequencySettings(IFrequencySettings* a_pSettings);

    /// The schedule in force for this object, never null. Owned by this object or by
    /// its network.
    [[nodiscard]] virtual EmissionSettings* emissionSettings() const { return m_pEmissionSettings.get(); }

    [[nodiscard]] virtual bool isActive() const { return m_bActive; }

    /// Copies id, name, description, active flag, the source's own schedule by value,
    /// and a clone of its frequency behaviour. The emissions themselves are shared
    /// with the source and keep their emitters. The display flags stay as they are. A
    /// null source changes nothing.
    virtual void copy(std::shared_ptr<ScenarioObject> a_source);

    /// A new object of the same class, with all that copy() copies. The object itself
    /// need not live in a std::shared_ptr.
    [[nodiscard]] virtual std::shared_ptr<ScenarioObject> clone() = 0;

    void setActive(bool a_bActive) { m_bActive = a_bActive; }

    [[nodiscard]] bool isVisibleOnMap() const { return m_bVisibleOnMap; }
    void setVisibleOnMap(bool a_bVisible) { m_bVisibleOnMap = a_bVisible; }
    [[nodiscard]] bool isVisibleOnTimeline() const { return m_bVisibleOnTimeline; }
    void setVisibleOnTimeline(bool a_bVisible) { m_bVisibleOnTimeline = a_bVisible; }

protected:
    /// The part of copy() that all classes share.
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
