#ifndef SIMULATIONDATA_SCENARIODATAXML_REFERENCES_P_H
#define SIMULATIONDATA_SCENARIODATAXML_REFERENCES_P_H

#include "simulationdata/emissionsettings.h"
#include "simulationdata/scenarioobject.h"
#include "simulationdata/xml/xmlreader_p.h"

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>

#include <memory>
#include <utility>
#include <vector>

namespace Simulation {

class ISignalPackageProvider;
class ScenarioNetwork;
class SignalPackage;
class SzenarioEmitter;

/// The kinds of elements that describe an emitter.
enum class EmitterType {
    Emitter = 0,
    ElintEmitter = 1,
};

/// Collects the references among the objects of a document while it is read. An
/// element may name an emitter whose own element follows later, so references are
/// resolved after all elements are read. An id that no element defines then gets a
/// plain emitter. Each reference costs O(1).
class ScenarioReferences
{
public:
    using Emission = boost::shared_ptr<EmissionSettings::Emission>;

    /// Adds new objects to `a_objects`. The provider may be null.
    ScenarioReferences(QSet<std::shared_ptr<ScenarioObject>>& a_objects, ISignalPackageProvider* a_pProvider);

    /// The emitter of an id. Creates one of the given kind if there is none; null if
    /// the scenario is full.
    std::shared_ptr<SzenarioEmitter> emitterForId(const QString& a_sId, EmitterType a_eType);

    /// Whether an emitter of that id exists. While elements are read, only those read
    /// so far count.
    [[nodiscard]] bool hasEmitter(const QString& a_sId) const { return m_emitters.contains(a_sId); }

    /// Whether there is a provider to resolve packages.
    [[nodiscard]] bool hasProvider() const { return m_pProvider != nullptr; }
    /// The package that the provider returns for an id; null without a provider. Another
    /// package than the one of that id, or none, is reported.
    [[nodiscard]] std::shared_ptr<SignalPackage> packageForId(XmlReader& a_reader, const XmlText& a_id) const;

    /// Record a reference until resolve(). The text is the id; an empty one is ignored.
    void link(const std::shared_ptr<SzenarioEmitter>& a_emitter, const XmlText& a_targetId);
    void setEmitter(const Emission& a_emission, const XmlText& a_emitterId);
    void addMember(const std::shared_ptr<ScenarioNetwork>& a_network, const XmlText& a_emitterId,
                   bool a_bHead);
    void setHeadEmitter(const Emission& a_emission, const std::shared_ptr<ScenarioNetwork>& a_network);

    /// Whether the scenario holds as many objects as it may
    /// (Limits::ScenarioObjects).
    [[nodiscard]] bool isFull() const;

    /// The kinds of elements that describe a schedule.
    enum class ScheduleForm { EmissionSettings, Manual };

    /// Whether this is the first element of its kind for the schedule. The first
    /// one adds to the schedule, a later one replaces its content.
    bool isFirst(ScheduleForm a_eForm, const EmissionSettings& a_settings);

    /// Resolves all recorded references, and reports those that name no element to the
    /// deviations (may be null). Returns false if the scenario has no room
    /// for all emitters that appear only in references. References to emitters without
    /// room stay empty.
    bool resolve(XmlDeviations* a_pDeviations);

private:
    /// An id that a document names, and where.
    struct Reference
    {
        explicit Reference(const XmlText& a_id)
            : id(a_id.string())
            , offset(a_id.offset)
        {}

        QString id;
        qsizetype offset;
    };
    struct Link
    {
        std::shared_ptr<SzenarioEmitter> emitter;
        Reference target;
    };
    struct EmissionEmitter
    {
        Emission emission;
        Reference emitter;
    };
    struct EmissionHead
    {
        Emission emission;
        std::shared_ptr<ScenarioNetwork> network;
    };
    struct Member
    {
        Reference emitter;
        bool isHead = false;
    };
    struct Membership
    {
        std::shared_ptr<ScenarioNetwork> network;
        std::vector<Member> members;
    };

    std::shared_ptr<SzenarioEmitter> referredEmitter(const Reference& a_reference);
    void reportInvented(const Reference& a_reference);
    void resolveMembers(const Membership& a_membership);

    QSet<std::shared_ptr<ScenarioObject>>& m_objects;
    ISignalPackageProvider* m_pProvider;
    QHash<QString, std::shared_ptr<SzenarioEmitter>> m_emitters;
    QSet<std::pair<const EmissionSettings*, int>> m_schedules; ///< with their ScheduleForm
    bool m_bDropped = false;
    XmlDeviations* m_pDeviations = nullptr; ///< while references are resolved
    QStringList m_describedIds;             ///< filled when the first unknown id is reported
    int m_iSuggestions = 0;                 ///< unknown ids for which a similar one was looked for
    std::vector<Link> m_links;
    std::vector<EmissionEmitter> m_emissionEmitters;
    std::vector<EmissionHead> m_emissionHeads;
    std::vector<Membership> m_memberships;
};

} // namespace Simulation

#endif
