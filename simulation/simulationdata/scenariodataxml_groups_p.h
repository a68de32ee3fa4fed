#ifndef SIMULATIONDATA_SCENARIODATAXML_GROUPS_P_H
#define SIMULATIONDATA_SCENARIODATAXML_GROUPS_P_H

#include "simulationdata/emissionsettings.h"

#include <QHash>

#include <cstdint>
#include <vector>

class QXmlStreamReader;
class QXmlStreamWriter;

namespace Simulation {

using EmissionNumbers = QHash<const EmissionSettings::Emission*, std::uint32_t>;

/// Reads the groups of one "Groups" element. A group may name members that follow
/// later in the document.
class EmissionGroupsReader
{
public:
    /// Reads the current element up to its end.
    void readGroups(QXmlStreamReader& a_reader);

    /// Finds the members by their numbers among the emissions of the settings
    /// and the groups read, and adds the groups to the settings. A reference by
    /// which a group would contain itself, directly or through other groups, is
    /// dropped with a trace. Unknown numbers are skipped. When several emissions or
    /// groups have the same number, the first of them is used.
    void addTo(EmissionSettings& a_settings);

private:
    struct RawGroup
    {
        boost::shared_ptr<EmissionSettings::Group> group;
        std::vector<std::uint32_t> emissionIds;
        std::vector<std::uint32_t> groupIds;
    };

    void readGroup(QXmlStreamReader& a_reader);
    void addEmissions(const EmissionSettings& a_settings);
    void addMemberGroups();

    std::vector<RawGroup> m_groups;
};

/// Assigns numbers that are unique and not 0: the record's own number if it is
/// free, otherwise the next free one.
template<typename Record>
[[nodiscard]] std::vector<std::uint32_t> uniqueNumbers(const QList<boost::shared_ptr<Record>>& a_records);

/// Writes element "Groups". A group's member is left out when it does not belong to the
/// emissions and groups of the settings.
void writeGroups(QXmlStreamWriter& a_writer, const EmissionSettings& a_settings,
                 const EmissionNumbers& a_emissionNumbers);

} // namespace Simulation

#endif
