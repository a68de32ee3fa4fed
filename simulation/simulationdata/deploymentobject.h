#ifndef SIMULATIONDATA_DEPLOYMENTOBJECT_H
#define SIMULATIONDATA_DEPLOYMENTOBJECT_H

#include "simulationdata/simulationdata_export.h"
#include "simulationdata/tpos.h"

#include <QString>

#include <memory>

namespace Simulation {

class IPositionSettings;
class ObjectReleaser;

/// A receiving station, or a device at a station or on its own. Has an id, a name, an
/// icon and a position.
///
/// Objects live in std::shared_ptr and are used from one thread. A station and its
/// devices hold each other. The last deployment document that holds them breaks this
/// circle when it releases them. Objects outside a document are freed by
/// DeploymentDataXml::releaseObjects(). The order of the virtual operations is part
/// of the interface.
class SIMULATIONDATA_EXPORT DeploymentObject : public std::enable_shared_from_this<DeploymentObject>
{
public:
    /// The values are part of the interface.
    enum class eTypes : int {
        Device = 0,
        Station = 1,
    };

    [[nodiscard]] virtual eTypes type() const = 0;
    [[nodiscard]] virtual QString name() const { return m_sName; }
    virtual void setName(const QString& a_sName) { m_sName = a_sName; }

    /// The settings that determine the position: the object's own, or its station's.
    /// Null if null was set.
    [[nodiscard]] virtual IPositionSettings* positionSettings() const { return m_pPositionSettings.get(); }

    /// Copies id, name, icon and a clone of the source's own position settings. When
    /// the source has the same class, all other fields are copied, too. This object
    /// then shares the station or the devices of the source, but they do not refer to
    /// this object. Null or the object itself as the source changes nothing.
    virtual void copy(std::shared_ptr<DeploymentObject> a_source);

    /// A new object of the same class, with everything that copy() copies.
    [[nodiscard]] virtual std::shared_ptr<DeploymentObject> clone() = 0;

    [[nodiscard]] QString id() const { return m_sId; }
    /// Set the id before the object is put into a document. The document keeps the
    /// id of that moment as the key of the object.
    void setId(const QString& a_sId) { m_sId = a_sId; }

    /// The icon that applications show.
    [[nodiscard]] QString iconId() const { return m_sIconId; }
    void setIconId(const QString& a_sIconId) { m_sIconId = a_sIconId; }

    /// Values from positionSettings(), at a scenario time (ms) where one is given.
    /// Without settings the position is (0, 0), the heading 0 degrees and the speed
    /// 0 km/h.
    [[nodiscard]] TPos position();
    [[nodiscard]] TPos positionAt(unsigned int a_uiTime);
    [[nodiscard]] double headingAt(unsigned int a_uiTime) const;
    [[nodiscard]] double speedAt(unsigned int a_uiTime) const;

    /// Moves the object's own position and its whole path, never the station's.
    /// Without position settings the object gets a fixed position.
    void setPosition(TPos a_position);
    /// Sets the object's own position settings and takes ownership of them. Deletes
    /// the former settings unless they are the same object. Null removes the settings.
    void setPositionSettings(IPositionSettings* a_pSettings);

protected:
    /// The new object is at the fixed position (0, 0), without name and icon.
    DeploymentObject();
    explicit DeploymentObject(const QString& a_sId);

    virtual ~DeploymentObject();

    /// Copies the fields that all classes share.
    void takeFrom(const DeploymentObject& a_source);

private:
    friend class ObjectReleaser;

    /// Passes the members that hold other objects to the releaser.
    virtual void visitMembers(ObjectReleaser& /*a_releaser*/) {}

    DeploymentObject(const DeploymentObject& a_other) = delete;
    DeploymentObject& operator=(const DeploymentObject& a_other) = delete;

    QString m_sId;
    QString m_sName;
    QString m_sIconId;
    std::unique_ptr<IPositionSettings> m_pPositionSettings;
};

} // namespace Simulation

#endif
