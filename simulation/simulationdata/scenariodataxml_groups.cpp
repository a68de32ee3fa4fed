#include "scenariodataxml_groups_p.h"

#include "commondataxml_names_p.h"
#include "simulationdata/io/trace_p.h"
#include "simulationdata/xml/xmltext_p.h"
#include "simulationdata/xml/xmlwalk_p.h"

#include <QSet>

#include <cstddef>

namespace Simulation {

namespace {

constexpr const char* s_szSource = "simulation/simulationdata/scenariodataxml_groups";

} // namespace

void SeenNumbers::add(XmlReader& a_reader, const XmlText& a_text, std::uint32_t a_uiNumber)
{
    if (a_uiNumber == 0 || a_reader.deviations() == nullptr) {
        return;
    }
    if (m_hashed.isEmpty() && (m_ascending.empty() || a_uiNumber > m_ascending.back())) {
        m_ascending.push_back(a_uiNumber);
        return;
    }
    if (m_hashed.isEmpty()) {
        m_hashed = QSet<std::uint32_t>(m_ascending.cbegin(), m_ascending.cend());
    }
    if (m_hashed.contains(a_uiNumber)) {
        a_reader.deviations()->add(ReadingReport::s_sDuplicateId, a_text.offset, [&](ReadingEntry& a_entry) {
            a_entry.found = shownText(a_text.bytes);
            a_entry.message = QStringLiteral(
                "An earlier one has this number: a group that names it gets the first one in time, and "
                "saving renumbers them.");
        });
    }
    m_hashed.insert(a_uiNumber);
}

/// The elements of the groups.
struct GroupsFormat
{
    using Reader = EmissionGroupsReader;
    using RawGroup = EmissionGroupsReader::RawGroup;

    /// A group and the numbers of all groups while the group is read.
    struct Reading
    {
        RawGroup& raw;
        SeenNumbers& numbers;
    };

    static void readMember(XmlReader& a_reader, std::vector<Reader::Member>& a_members)
    {
        const auto text = a_reader.text();
        // A text that breaks off names 0, as an empty one does.
        a_members.push_back(text ? Reader::Member{a_reader.unsignedNumber(*text), text->offset}
                                 : Reader::Member{});
    }

    static void readGroup(XmlReader& a_reader, Reader& a_groups);

    static const XmlAttributeField<Reading> s_attributes[2];
    static const XmlChild<RawGroup> s_members[2];
    static const XmlChild<Reader> s_groups[1];
};

const XmlAttributeField<GroupsFormat::Reading> GroupsFormat::s_attributes[2] = {
    {s_sId,
     [](XmlReader& a_reader, const XmlText& a_value, Reading& a_reading) {
         a_reading.raw.group->id = a_reader.unsignedNumber(a_value);
         a_reading.numbers.add(a_reader, a_value, a_reading.raw.group->id);
     },
     XmlOccurs::Once},
    {s_sName, [](XmlReader& /*a_reader*/, const XmlText& a_value,
                 Reading& a_reading) { a_reading.raw.group->name = a_value.string(); }},
};

const XmlChild<GroupsFormat::RawGroup> GroupsFormat::s_members[2] = {
    {s_sEmissionId, [](XmlReader& a_reader, RawGroup& a_raw) { readMember(a_reader, a_raw.emissions); },
     XmlOccurs::AnyTimes},
    {s_sGroupId, [](XmlReader& a_reader, RawGroup& a_raw) { readMember(a_reader, a_raw.groups); },
     XmlOccurs::AnyTimes},
};

const XmlChild<EmissionGroupsReader> GroupsFormat::s_groups[1] = {
    {s_sGroup, &GroupsFormat::readGroup, XmlOccurs::AnyTimes},
};

void GroupsFormat::readGroup(XmlReader& a_reader, Reader& a_groups)
{
    RawGroup raw{EmissionSettings::createGroup(), {}, {}};
    Reading reading{raw, a_groups.m_numbers};
    readXmlAttributes(a_reader, reading, s_attributes);
    readXmlChildren(a_reader, raw, s_members);
    a_groups.m_groups.push_back(std::move(raw));
}

void EmissionGroupsReader::readGroups(XmlReader& a_reader)
{
    readXmlChildren(a_reader, *this, GroupsFormat::s_groups);
}

namespace {

/// Each group once, even if it was added twice.
QList<boost::shared_ptr<EmissionSettings::Group>>
withoutDoubles(QList<boost::shared_ptr<EmissionSettings::Group>> a_groups)
{
    QSet<const EmissionSettings::Group*> seen;
    a_groups.removeIf([&](const auto& a_group) {
        const bool bAgain = seen.contains(a_group.get());
        seen.insert(a_group.get());
        return bAgain;
    });
    return a_groups;
}

void writeGroup(XmlWriter& a_writer, const EmissionSettings::Group& a_group,
                const EmissionNumbers& a_emissionNumbers,
                const QHash<const EmissionSettings::Group*, std::uint32_t>& a_groupNumbers)
{
    const auto writeMember = [&](QLatin1String a_sName, std::uint32_t a_uiNumber) {
        if (a_uiNumber != 0) {
            a_writer.startElement(a_sName);
            a_writer.whole(a_uiNumber);
            a_writer.endElement();
        }
    };
    a_writer.startElement(s_sGroup);
    a_writer.wholeAttribute(s_sId, a_groupNumbers.value(&a_group));
    if (!a_group.name.isEmpty()) {
        a_writer.attribute(s_sName, a_group.name);
    }
    for (const auto& emission : a_group.emissions) {
        writeMember(s_sEmissionId, a_emissionNumbers.value(emission.get()));
    }
    for (const auto& group : a_group.groups) {
        writeMember(s_sGroupId, a_groupNumbers.value(group.get()));
    }
    a_writer.endElement();
}

/// Reports a member that a group names and does not get.
void reportMember(XmlReader& a_reader, QLatin1String a_sRule, qsizetype a_iOffset, std::uint32_t a_uiId,
                  const char* a_szMessage)
{
    if (a_reader.deviations() != nullptr) {
        a_reader.deviations()->add(a_sRule, a_iOffset, [&](ReadingEntry& a_entry) {
            a_entry.found = QString::number(a_uiId);
            a_entry.message = QLatin1String(a_szMessage);
        });
    }
}

} // namespace

void writeGroups(XmlWriter& a_writer, const EmissionSettings& a_settings,
                 const EmissionNumbers& a_emissionNumbers)
{
    const auto groups = withoutDoubles(a_settings.groups());
    const std::vector<std::uint32_t> numbers = uniqueNumbers(groups);
    QHash<const EmissionSettings::Group*, std::uint32_t> groupNumbers;
    for (qsizetype i = 0; i < groups.size(); ++i) {
        groupNumbers.insert(groups.at(i).get(), numbers[static_cast<std::size_t>(i)]);
    }
    a_writer.startElement(s_sGroups);
    for (const auto& group : groups) {
        writeGroup(a_writer, *group, a_emissionNumbers, groupNumbers);
    }
    a_writer.endElement();
}

void EmissionGroupsReader::addTo(EmissionSettings& a_settings, XmlReader& a_reader)
{
    if (m_groups.empty()) {
        return;
    }
    addEmissions(a_settings, a_reader);
    addMemberGroups(a_reader);
    for (const RawGroup& raw : m_groups) {
        a_settings.addGroup(raw.group);
    }
    m_groups.clear();
}

void EmissionGroupsReader::addEmissions(const EmissionSettings& a_settings, XmlReader& a_reader)
{
    QHash<std::uint32_t, boost::shared_ptr<EmissionSettings::Emission>> emissions;
    for (auto emission = a_settings.emissions().crbegin(); emission != a_settings.emissions().crend();
         ++emission) {
        emissions.insert((*emission)->id, *emission);
    }
    for (const RawGroup& raw : m_groups) {
        for (const Member& member : raw.emissions) {
            if (const auto emission = emissions.value(member.id)) {
                raw.group->emissions.append(emission);
            } else {
                reportMember(a_reader, ReadingReport::s_sUnknownReference, member.offset, member.id,
                             "The schedule has no emission of this number: the group gets none for it.");
            }
        }
    }
}

void EmissionGroupsReader::addMemberGroups(XmlReader& a_reader)
{
    QHash<std::uint32_t, std::size_t> indices;
    for (std::size_t i = m_groups.size(); i-- > 0;) {
        indices.insert(m_groups[i].group->id, i);
    }
    // Walks the references depth first, in the order of the document. A reference
    // back to a group on the current path would close a circle.
    enum class State { Unseen, OnTheWay, Done };
    struct Step
    {
        std::size_t group;
        std::size_t next;
    };
    std::size_t uiRefused = 0;
    std::vector<State> states(m_groups.size(), State::Unseen);
    std::vector<Step> way;
    for (std::size_t start = 0; start < m_groups.size(); ++start) {
        if (states[start] != State::Unseen) {
            continue;
        }
        states[start] = State::OnTheWay;
        way.push_back({start, 0});
        while (!way.empty()) {
            const std::size_t group = way.back().group;
            RawGroup& raw = m_groups[group];
            if (way.back().next == raw.groups.size()) {
                states[group] = State::Done;
                way.pop_back();
                continue;
            }
            const Member& named = raw.groups[way.back().next++];
            const auto member = indices.constFind(named.id);
            if (member == indices.constEnd()) {
                reportMember(a_reader, ReadingReport::s_sUnknownReference, named.offset, named.id,
                             "The schedule has no group of this number: the group gets none for it.");
                continue;
            }
            if (states[*member] == State::OnTheWay) {
                ++uiRefused;
                reportMember(a_reader, ReadingReport::s_sCircularReference, named.offset, named.id,
                             "The group would contain itself: the reference is dropped.");
                continue;
            }
            raw.group->groups.append(m_groups[*member].group);
            if (states[*member] == State::Unseen) {
                states[*member] = State::OnTheWay;
                way.push_back({*member, 0});
            }
        }
    }
    if (uiRefused != 0) {
        traceError(s_szSource, [&] {
            return QStringLiteral("%1 references refused by which emission groups would hold themselves")
                .arg(QString::number(uiRefused));
        });
    }
}

template<typename Record>
std::vector<std::uint32_t> uniqueNumbers(const QList<boost::shared_ptr<Record>>& a_records)
{
    std::vector<std::uint32_t> numbers(static_cast<std::size_t>(a_records.size()), 0);
    QSet<std::uint32_t> taken;
    taken.insert(0);
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        const std::uint32_t uiOwn = a_records.at(static_cast<qsizetype>(i))->id;
        if (!taken.contains(uiOwn)) {
            taken.insert(uiOwn);
            numbers[i] = uiOwn;
        }
    }
    std::uint32_t uiNext = 1;
    for (std::uint32_t& uiNumber : numbers) {
        if (uiNumber == 0) {
            while (taken.contains(uiNext)) {
                ++uiNext;
            }
            uiNumber = uiNext++;
        }
    }
    return numbers;
}

template std::vector<std::uint32_t>
uniqueNumbers(const QList<boost::shared_ptr<EmissionSettings::Emission>>&);
template std::vector<std::uint32_t> uniqueNumbers(const QList<boost::shared_ptr<EmissionSettings::Group>>&);

} // namespace Simulation
