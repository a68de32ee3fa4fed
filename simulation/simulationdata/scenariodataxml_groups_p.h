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

/// The groups of one "Groups" element, whose members may stand later in the
/// document than the references to them.
class EmissionGroupsReader
{
public:
    /// Reads the element on which the reader stands, up to its end.
    void readGroups(QXmlStreamReader& a_reader);

    /// Finds the members by their numbers among the emissions of the settings
    /// and the groups read, and adds the groups to the settings. A reference
    /// that would make a group hold itself, through whatever others, is refused
    /// with a trace; unknown numbers are passed over; of equal numbers the
    /// first counts.
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

/// Numbers that are unique and not 0: the record's own where it is, the next
/// free one otherwise.
template<typename Record>
[[nodiscard]] std::vector<std::uint32_t> uniqueNumbers(const QList<boost::shared_ptr<Record>>& a_records);

/// Writes element "Groups". Members that are not among the settings' emissions
/// and groups are left out.
void writeGroups(QXmlStreamWriter& a_writer, const EmissionSettings& a_settings,
                 const EmissionNumbers& a_emissionNumbers);

} // namespace Simulation

#endif
