#ifndef SIMULATIONDATA_SCENARIODATAXML_GROUPS_P_H
#define SIMULATIONDATA_SCENARIODATAXML_GROUPS_P_H

#include "simulationdata/emissionsettings.h"

#include <QHash>
#include <QSet>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Simulation {

class XmlReader;
struct XmlText;
class XmlWriter;

using EmissionNumbers = QHash<const EmissionSettings::Emission*, std::uint32_t>;

/// The numbers of emissions or groups read so far, to report one that occurs twice.
/// Numbers in ascending order, as writers write them, cost O(1) each.
class SeenNumbers
{
public:
    /// Reports to the reader's deviations a number that was added before. 0 stands for no
    /// number.
    void add(XmlReader& a_reader, const XmlText& a_text, std::uint32_t a_uiNumber);

private:
    std::vector<std::uint32_t> m_ascending;
    QSet<std::uint32_t> m_hashed; ///< all numbers, as soon as one is not greater than the last
};

/// Reads the groups of one "Groups" element. A group may name members that follow
/// later in the document.
class EmissionGroupsReader
{
public:
    /// Reads the current element up to its end.
    void readGroups(XmlReader& a_reader);

    /// Finds the members by their numbers among the emissions of the settings
    /// and the groups read, and adds the groups to the settings. A reference by
    /// which a group would contain itself, directly or through other groups, is
    /// dropped with a trace. Unknown numbers are skipped. When several emissions or
    /// groups have the same number, the first of them is used. All of this is reported
    /// to the reader's deviations.
    void addTo(EmissionSettings& a_settings, XmlReader& a_reader);

private:
    /// A member that a group names, and where.
    struct Member
    {
        std::uint32_t id = 0;
        qsizetype offset = -1;
    };
    struct RawGroup
    {
        boost::shared_ptr<EmissionSettings::Group> group;
        std::vector<Member> emissions;
        std::vector<Member> groups;
    };
    friend struct GroupsFormat;

    void addEmissions(const EmissionSettings& a_settings, XmlReader& a_reader);
    void addMemberGroups(XmlReader& a_reader);

    std::vector<RawGroup> m_groups;
    SeenNumbers m_numbers;
};

/// Assigns numbers that are unique and not 0: the record's own number if it is
/// free, otherwise the next free one.
template<typename Record>
[[nodiscard]] std::vector<std::uint32_t> uniqueNumbers(const QList<boost::shared_ptr<Record>>& a_records);

/// Writes element "Groups". A group's member is left out when it does not belong to the
/// emissions and groups of the settings.
void writeGroups(XmlWriter& a_writer, const EmissionSettings& a_settings,
                 const EmissionNumbers& a_emissionNumbers);

} // namespace Simulation

#endif
