#include "conversionreport.h"

#include "console/jsonreport.h"
#include "console/report.h"
#include "console/valuetexts.h"
#include "describe/losttable.h"
#include "describe/scenariofile.h"

#include "simulationdata/elintscenarioemitter.h"
#include "simulationdata/emissionsettings.h"
#include "simulationdata/frequencysettingsfixed.h"
#include "simulationdata/positionsettingsfixed.h"
#include "simulationdata/scenariodataxml.h"
#include "simulationdata/scenarionetwork.h"
#include "simulationdata/transmittersettings.h"

#include <QHash>
#include <QSet>

#include <algorithm>

namespace SimulationTool {

namespace {

using namespace Simulation;

/// The counts of a scenario's content that the compact form does not carry.
struct Uncarried
{
    quint64 networks = 0;
    quint64 members = 0;
    quint64 emissions = 0;
    quint64 groups = 0;
    quint64 periods = 0;
    quint64 broadcasts = 0;
    quint64 frequencies = 0;
    QSet<const IPositionSettings*> positions; ///< linked emitters share their position
    quint64 transmitters = 0;
    quint64 elintEmitters = 0;
    quint64 elintFiles = 0;
};

bool isDefault(const TransmitterSettings* a_pSettings)
{
    const TransmitterSettings fresh;
    return a_pSettings != nullptr && a_pSettings->getPower() == fresh.getPower() &&
           a_pSettings->getAntennaType() == fresh.getAntennaType() &&
           a_pSettings->getAntennaGain() == fresh.getAntennaGain() &&
           a_pSettings->getAntennaHeight() == fresh.getAntennaHeight() &&
           a_pSettings->getAntennaDirection() == fresh.getAntennaDirection();
}

void countObject(Uncarried& a_counts, const ScenarioObject& a_object)
{
    // Counts the object's own schedule and frequency only. Those of a network are counted
    // once, with the network.
    const EmissionSettings& schedule = *a_object.ScenarioObject::emissionSettings();
    a_counts.emissions += static_cast<quint64>(schedule.emissions().size());
    a_counts.groups += static_cast<quint64>(schedule.groups().size());
    a_counts.periods += schedule.duration() != EmissionSettings::s_iUnlimited ? 1 : 0;
    a_counts.broadcasts += schedule.isBroadcast() ? 1 : 0;
    a_counts.frequencies += FrequencySettingsFixed().equal(a_object.frequencySettings()) ? 0 : 1;
}

void countEmitter(Uncarried& a_counts, const SzenarioEmitter& a_emitter)
{
    countObject(a_counts, a_emitter);
    const IPositionSettings* pPosition = a_emitter.positionSettings();
    if (!PositionSettingsFixed(TPos{}).equal(pPosition)) {
        a_counts.positions.insert(pPosition);
    }
    a_counts.transmitters += isDefault(a_emitter.getTranmitterSettings()) ? 0 : 1;
    if (const auto* pElint = dynamic_cast<const ElintScenarioEmitter*>(&a_emitter)) {
        ++a_counts.elintEmitters;
        a_counts.elintFiles += pElint->getEDWFile().isEmpty() ? 0 : 1;
    }
}

Uncarried uncarriedOf(const ScenarioDataXml& a_scenario)
{
    Uncarried counts;
    for (const std::shared_ptr<SzenarioEmitter>& emitter : emittersOf(a_scenario)) {
        countEmitter(counts, *emitter);
    }
    for (const std::shared_ptr<ScenarioNetwork>& network : networksOf(a_scenario)) {
        countObject(counts, *network);
        ++counts.networks;
        counts.members += static_cast<quint64>(network->emitterList().size());
    }
    return counts;
}

/// One kind of content that the compact form does not carry. The text of the value is
/// empty when the scenario has no such content.
struct UncarriedField
{
    const char* key;
    QString label;
    ReportValue value;
};

QStringList headerTexts(const ScenarioDataXml& a_scenario)
{
    QStringList texts;
    const auto add = [&](const QString& a_sName, bool a_bThere) {
        if (a_bThere) {
            texts.append(a_sName);
        }
    };
    add(QStringLiteral("name"), !a_scenario.getName().isEmpty());
    add(QStringLiteral("author"), !a_scenario.getAuthor().isEmpty());
    add(QStringLiteral("description"), !a_scenario.getDescription().isEmpty());
    add(QStringLiteral("uid"), !a_scenario.getPersistantId().isEmpty());
    add(QStringLiteral("duration"), a_scenario.getDuration() != 0);
    return texts;
}

/// The counts other than 0 with their nouns, in one line or object; an empty text
/// when all are 0.
ReportValue countsValue(const QList<std::pair<quint64, const char*>>& a_counts)
{
    QStringList texts;
    QJsonObject object;
    for (const auto& [uiCount, szNoun] : a_counts) {
        if (uiCount > 0) {
            texts.append(counted(uiCount, szNoun));
            object.insert(QLatin1String(szNoun) + u's', jsonCount(uiCount));
        }
    }
    return {texts.join(QStringLiteral(", ")), object};
}

QString targetId(const SzenarioEmitter& a_emitter)
{
    const auto target = a_emitter.linkTargetEmitter();
    return target ? target->id() : QString();
}

bool hasSameTexts(const SzenarioEmitter& a_first, const SzenarioEmitter& a_second)
{
    return a_first.name() == a_second.name() && a_first.description() == a_second.description() &&
           a_first.getClass() == a_second.getClass() && a_first.isActive() == a_second.isActive();
}

/// The reason why a read-back emitter differs from the original; empty when both are
/// equal.
QString changeReason(const SzenarioEmitter& a_emitter, const SzenarioEmitter* a_pBack, bool a_bSharesId)
{
    if (a_bSharesId) {
        return QStringLiteral("shares its id with others, of which one is kept");
    }
    return a_pBack != nullptr && hasSameTexts(a_emitter, *a_pBack)
               ? QString()
               : QStringLiteral("has texts that cannot be written as they are");
}

/// The reason why a link is not read back.
QString lossReason(const QString& a_sTargetId, bool a_bTargetThere)
{
    if (a_sTargetId == QStringLiteral("%%NONE%%")) {
        return QStringLiteral("this id means no link");
    }
    return a_bTargetThere ? QStringLiteral("the links form a cycle")
                          : QStringLiteral("there is no such emitter");
}

} // namespace

void describeWritten(Report& a_report, const QString& a_sForm, qsizetype a_iEmitters, qsizetype a_iBytes)
{
    a_report.heading(a_sForm + QStringLiteral(" written"));
    a_report.value("written", a_sForm.toLower());
    a_report.field("emitter_count", QStringLiteral("Emitters"), wholeValue(a_iEmitters));
    a_report.field("size_bytes", QStringLiteral("Bytes"), wholeValue(a_iBytes));
}

void describeUncarried(Report& a_report, const ScenarioDataXml& a_scenario)
{
    const Uncarried counts = uncarriedOf(a_scenario);
    const bool bNoise = !(a_scenario.getNoiseSettings() == ScenarioNoiseSettings());
    const QStringList header = headerTexts(a_scenario);
    const QList<UncarriedField> fields{
        {"networks", QStringLiteral("Networks"),
         countsValue({{counts.networks, "network"}, {counts.members, "member"}})},
        {"emissions", QStringLiteral("Emissions"),
         countsValue({{counts.emissions, "emission"},
                      {counts.groups, "group"},
                      {counts.periods, "period"},
                      {counts.broadcasts, "broadcast"}})},
        {"frequencies", QStringLiteral("Frequencies"), countsValue({{counts.frequencies, "setting"}})},
        {"positions", QStringLiteral("Positions"),
         countsValue({{static_cast<quint64>(counts.positions.size()), "setting"}})},
        {"transmitters", QStringLiteral("Transmitters"), countsValue({{counts.transmitters, "setting"}})},
        {"elint", QStringLiteral("ELINT"),
         countsValue({{counts.elintEmitters, "emitter"}, {counts.elintFiles, "file"}})},
        {"noise", QStringLiteral("Noise"), {bNoise ? QStringLiteral("settings") : QString(), bNoise}},
        {"header",
         QStringLiteral("Header"),
         {header.join(QStringLiteral(", ")), QJsonArray::fromStringList(header)}}};
    const bool bNothing = std::all_of(fields.cbegin(), fields.cend(),
                                      [](const auto& a_field) { return a_field.value.text.isEmpty(); });
    a_report.heading(bNothing ? QStringLiteral("Everything of the scenario is carried")
                              : QStringLiteral("Not carried by the compact form"),
                     "not_carried");
    for (const UncarriedField& field : fields) {
        if (!field.value.text.isEmpty()) {
            a_report.field(field.key, field.label, field.value);
        }
    }
}

void describeDefaults(Report& a_report, const ScenarioDataXml& a_scenario)
{
    const FrequencySettingsFixed frequency;
    const double dFrequency = frequency.getCenterFrequency();
    const QString sUid = a_scenario.getPersistantId();
    a_report.heading(QStringLiteral("At their defaults"), "defaults");
    a_report.field("frequency_hz", QStringLiteral("Frequencies"),
                   {QStringLiteral("fixed, ") + frequencyText(dFrequency), jsonNumber(dFrequency)});
    a_report.field(nullptr, QStringLiteral("Positions"),
                   QStringLiteral("longitude 0, latitude 0, not moving"));
    a_report.field(nullptr, QStringLiteral("Transmitters"), QStringLiteral("default antenna and power"));
    a_report.field(nullptr, QStringLiteral("Emissions"), QStringLiteral("none"));
    a_report.field(nullptr, QStringLiteral("Networks"), QStringLiteral("none"));
    a_report.field(nullptr, QStringLiteral("Noise"), QStringLiteral("default settings"));
    a_report.field("uid", QStringLiteral("Header"),
                   {QStringLiteral("empty, with the new uid ") + sUid, jsonText(sUid)});
}

void describeDifferences(Report& a_report, const EmitterList& a_emitters, const EmitterList& a_readBack)
{
    QHash<QString, const SzenarioEmitter*> readById;
    for (const std::shared_ptr<SzenarioEmitter>& emitter : a_readBack) {
        readById.insert(emitter->id(), emitter.get());
    }
    QHash<QString, qsizetype> owners;
    for (const std::shared_ptr<SzenarioEmitter>& emitter : a_emitters) {
        ++owners[emitter->id()];
    }
    const TextColumn emitterColumn{QStringLiteral("Emitter"), false, 0, "emitter"};
    const TextColumn reasonColumn{QStringLiteral("Reason"), false, 0, "reason"};
    LostTable changed("changed_emitters", QStringLiteral("Emitters that are read back changed"),
                      {emitterColumn, reasonColumn});
    LostTable lost("lost_links", QStringLiteral("Links that cannot be read back"),
                   {emitterColumn, {QStringLiteral("Linked to"), false, 0, "linked_to"}, reasonColumn});
    for (const std::shared_ptr<SzenarioEmitter>& emitter : a_emitters) {
        const QString sId = emitter->id();
        const SzenarioEmitter* pBack = readById.value(sId);
        if (const QString sReason = changeReason(*emitter, pBack, owners.value(sId) > 1);
            !sReason.isEmpty()) {
            changed.add({sId, sReason});
        }
        const QString sTarget = targetId(*emitter);
        if (emitter->isLinked() && pBack != nullptr && targetId(*pBack) != sTarget) {
            lost.add({sId, sTarget, lossReason(sTarget, readById.contains(sTarget))});
        }
    }
    a_report.endPlace();
    changed.write(a_report);
    lost.write(a_report);
}

} // namespace SimulationTool
