#ifndef SIMULATIONDATA_DEPLOYMENTOBJECT_H
#define SIMULATIONDATA_DEPLOYMENTOBJECT_H

#include "simulationdata/simulationdata_export.h"
#include "simulationdata/tpos.h"

#include <QString>

#include <memory>

namespace Simulation {

class IPositionSettings;

/// What a deployment is made of: receiving stations and the devices at them or
/// on their own. Carries identity, name, icon and position.
///
/// Objects live in std::shared_ptr and are used from one thread. A station and
/// its devices hold each other; a deployment document takes that circle apart
/// when it is the last to hold them. Objects that live outside any document, or
/// are kept longer than theirs, end with DeploymentDataXml::releaseObjects().
/// The order of the virtual operations is part of the interface.
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

    /// Where the object is, owned by it or by what it stands at; null when it
    /// was set so.
    [[nodiscard]] virtual IPositionSettings* positionSettings() const { return m_pPositionSettings.get(); }

    /// Takes over id, name, icon and a clone of the source's own position, and
    /// from a source of the same class all the rest; stations and devices that
    /// the source refers to are shared with it, they do not learn of the copy.
    /// Null and the object itself change nothing.
    virtual void copy(std::shared_ptr<DeploymentObject> a_source);

    /// A new object of the same class, with all that copy() takes over.
    [[nodiscard]] virtual std::shared_ptr<DeploymentObject> clone() = 0;

    [[nodiscard]] QString id() const { return m_sId; }
    /// Documents that hold the object find it by the id that it had when they
    /// got it: set it before.
    void setId(const QString& a_sId) { m_sId = a_sId; }

    /// Which icon the applications show.
    [[nodiscard]] QString iconId() const { return m_sIconId; }
    void setIconId(const QString& a_sIconId) { m_sIconId = a_sIconId; }

    /// Answers of positionSettings(), at a scenario time (ms) where one is
    /// given. Without settings the position is (0, 0), the heading 0 degrees
    /// and the speed 0 km/h.
    [[nodiscard]] TPos position();
    [[nodiscard]] TPos positionAt(unsigned int a_uiTime);
    [[nodiscard]] double headingAt(unsigned int a_uiTime) const;
    [[nodiscard]] double speedAt(unsigned int a_uiTime) const;

    /// Moves the object's own position, whole path included, never that of what
    /// it stands at. Without one the object gets a fixed site.
    void setPosition(TPos a_position);
    /// Takes ownership of the object's own position and deletes the former one,
    /// unless they are the same. Null leaves none.
    void setPositionSettings(IPositionSettings* a_pSettings);

protected:
    /// On a fixed site at (0, 0), without name and icon.
    DeploymentObject();
    explicit DeploymentObject(const QString& a_sId);

    virtual ~DeploymentObject();

    /// The part of copy() that all classes share.
    void takeFrom(const DeploymentObject& a_source);

private:
    DeploymentObject(const DeploymentObject& a_other) = delete;
    DeploymentObject& operator=(const DeploymentObject& a_other) = delete;

    QString m_sId;
    QString m_sName;
    QString m_sIconId;
    std::unique_ptr<IPositionSettings> m_pPositionSettings;
};

} // namespace Simulation

#endif
