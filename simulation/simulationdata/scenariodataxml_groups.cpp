#include "scenariodataxml_groups_p.h"

#include "commondataxml_names_p.h"
#include "simulationdata/io/trace_p.h"
#include "simulationdata/xml/xmltext_p.h"
#include "simulationdata/xml/xmlwalk_p.h"

#include <QSet>
#include <QXmlStreamWriter>

#include <cstddef>

namespace Simulation {

namespace {

constexpr const char* s_szSource = "simulation/simulationdata/scenariodataxml_groups";

} // namespace

void EmissionGroupsReader::readGroups(QXmlStreamReader& a_reader)
{
    forEachChild(a_reader, [&](QStringView a_sName) {
        if (a_sName != s_sGroup) {
            return false;
        }
        readGroup(a_reader);
        return true;
    });
}

void EmissionGroupsReader::readGroup(QXmlStreamReader& a_reader)
{
    RawGroup raw{EmissionSettings::createGroup(), {}, {}};
    const QXmlStreamAttributes attributes = a_reader.attributes();
    raw.group->id = readUInt32(attributes.value(s_sId));
    raw.group->name = attributes.value(s_sName).toString();
    forEachChild(a_reader, [&](QStringView a_sName) {
        if (a_sName == s_sEmissionId) {
            raw.emissionIds.push_back(readUInt32(elementText(a_reader).value_or(QString())));
        } else if (a_sName == s_sGroupId) {
            raw.groupIds.push_back(readUInt32(elementText(a_reader).value_or(QString())));
        } else {
            return false;
        }
        return true;
    });
    m_groups.push_back(std::move(raw));
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

void writeGroup(QXmlStreamWriter& a_writer, const EmissionSettings::Group& a_group,
                const EmissionNumbers& a_emissionNumbers,
                const QHash<const EmissionSettings::Group*, std::uint32_t>& a_groupNumbers)
{
    a_writer.writeStartElement(s_sGroup);
    a_writer.writeAttribute(s_sId, QString::number(a_groupNumbers.value(&a_group)));
    if (!a_group.name.isEmpty()) {
        writeXmlAttribute(a_writer, s_sName, a_group.name);
    }
    for (const auto& emission : a_group.emissions) {
        if (const std::uint32_t uiNumber = a_emissionNumbers.value(emission.get())) {
            a_writer.writeTextElement(s_sEmissionId, QString::number(uiNumber));
        }
    }
    for (const auto& group : a_group.groups) {
        if (const std::uint32_t uiNumber = a_groupNumbers.value(group.get())) {
            a_writer.writeTextElement(s_sGroupId, QString::number(uiNumber));
        }
    }
    a_writer.writeEndElement();
}

} // namespace

void writeGroups(QXmlStreamWriter& a_writer, const EmissionSettings& a_settings,
                 const EmissionNumbers& a_emissionNumbers)
{
    const auto groups = withoutDoubles(a_settings.groups());
    const std::vector<std::uint32_t> numbers = uniqueNumbers(groups);
    QHash<const EmissionSettings::Group*, std::uint32_t> groupNumbers;
    for (qsizetype i = 0; i < groups.size(); ++i) {
        groupNumbers.insert(groups.at(i).get(), numbers[static_cast<std::size_t>(i)]);
    }
    a_writer.writeStartElement(s_sGroups);
    for (const auto& group : groups) {
        writeGroup(a_writer, *group, a_emissionNumbers, groupNumbers);
    }
    a_writer.writeEndElement();
}

void EmissionGroupsReader::addTo(EmissionSettings& a_settings)
{
    if (m_groups.empty()) {
        return;
    }
    addEmissions(a_settings);
    addMemberGroups();
    for (const RawGroup& raw : m_groups) {
        a_settings.addGroup(raw.group);
    }
    m_groups.clear();
}

void EmissionGroupsReader::addEmissions(const EmissionSettings& a_settings)
{
    QHash<std::uint32_t, boost::shared_ptr<EmissionSettings::Emission>> emissions;
    for (auto emission = a_settings.emissions().crbegin(); emission != a_settings.emissions().crend();
         ++emission) {
        emissions.insert((*emission)->id, *emission);
    }
    for (const RawGroup& raw : m_groups) {
        for (const std::uint32_t uiId : raw.emissionIds) {
            if (const auto emission = emissions.value(uiId)) {
                raw.group->emissions.append(emission);
            }
        }
    }
}

void EmissionGroupsReader::addMemberGroups()
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
            if (way.back().next == raw.groupIds.size()) {
                states[group] = State::Done;
                way.pop_back();
                continue;
            }
            const auto member = indices.constFind(raw.groupIds[way.back().next++]);
            if (member == indices.constEnd()) {
                continue;
            }
            if (states[*member] == State::OnTheWay) {
                ++uiRefused;
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
