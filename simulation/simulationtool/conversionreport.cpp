#include "conversionreport.h"

#include "losttable.h"
#include "report.h"
#include "scenariofile.h"
#include "valuetexts.h"

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

/// What a scenario holds that is no part of the compact form.
struct Uncarried
{
    quint64 networks = 0;
    quint64 members = 0;
    quint64 emissions = 0;
    quint64 groups = 0;
    quint64 periods = 0;
    quint64 broadcasts = 0;
    quint64 frequencies = 0;
    QSet<const IPositionSettings*> positions; ///< those who are linked share one
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
    // A member's own schedule and frequency count, not again its network's.
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

/// Counts that are not 0, with their nouns, in one line.
QString countedTexts(const QList<std::pair<quint64, const char*>>& a_counts)
{
    QStringList texts;
    for (const auto& [uiCount, szNoun] : a_counts) {
        if (uiCount > 0) {
            texts.append(counted(uiCount, szNoun));
        }
    }
    return texts.join(QStringLiteral(", "));
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

/// Why an emitter is not read back as it was; empty when it is.
QString changeReason(const SzenarioEmitter& a_emitter, const SzenarioEmitter* a_pBack, bool a_bSharesId)
{
    if (a_bSharesId) {
        return QStringLiteral("shares its id: of those who do one is left");
    }
    return a_pBack != nullptr && hasSameTexts(a_emitter, *a_pBack)
               ? QString()
               : QStringLiteral("has texts that cannot be written as they are");
}

/// Why a link is not read back.
QString lossReason(const QString& a_sTargetId, bool a_bTargetThere)
{
    if (a_sTargetId == QStringLiteral("%%NONE%%")) {
        return QStringLiteral("this id stands for no link");
    }
    return a_bTargetThere ? QStringLiteral("the links run in a circle")
                          : QStringLiteral("there is no such emitter");
}

} // namespace

void describeWritten(Report& a_report, const QString& a_sForm, qsizetype a_iEmitters, qsizetype a_iBytes)
{
    a_report.heading(a_sForm + QStringLiteral(" written"));
    a_report.field(QStringLiteral("Emitters"), QString::number(a_iEmitters));
    a_report.field(QStringLiteral("Bytes"), QString::number(a_iBytes));
}

void describeUncarried(Report& a_report, const ScenarioDataXml& a_scenario)
{
    const Uncarried counts = uncarriedOf(a_scenario);
    const QList<std::pair<QString, QString>> fields{
        {QStringLiteral("Networks"),
         countedTexts({{counts.networks, "network"}, {counts.members, "member"}})},
        {QStringLiteral("Emissions"), countedTexts({{counts.emissions, "emission"},
                                                    {counts.groups, "group"},
                                                    {counts.periods, "period"},
                                                    {counts.broadcasts, "broadcast"}})},
        {QStringLiteral("Frequencies"), countedTexts({{counts.frequencies, "setting"}})},
        {QStringLiteral("Positions"),
         countedTexts({{static_cast<quint64>(counts.positions.size()), "setting"}})},
        {QStringLiteral("Transmitters"), countedTexts({{counts.transmitters, "setting"}})},
        {QStringLiteral("ELINT"),
         countedTexts({{counts.elintEmitters, "emitter"}, {counts.elintFiles, "file"}})},
        {QStringLiteral("Noise"),
         a_scenario.getNoiseSettings() == ScenarioNoiseSettings() ? QString() : QStringLiteral("settings")},
        {QStringLiteral("Header"), headerTexts(a_scenario).join(QStringLiteral(", "))}};
    const bool bNothing = std::all_of(fields.cbegin(), fields.cend(),
                                      [](const auto& a_field) { return a_field.second.isEmpty(); });
    a_report.heading(bNothing ? QStringLiteral("Everything of the scenario is carried")
                              : QStringLiteral("Not carried by the compact form"));
    for (const auto& [sLabel, sText] : fields) {
        if (!sText.isEmpty()) {
            a_report.field(sLabel, sText);
        }
    }
}

void describeDefaults(Report& a_report, const ScenarioDataXml& a_scenario)
{
    const FrequencySettingsFixed frequency;
    a_report.heading(QStringLiteral("At their defaults"));
    a_report.field(QStringLiteral("Frequencies"),
                   QStringLiteral("fixed, ") + frequencyText(frequency.getCenterFrequency()));
    a_report.field(QStringLiteral("Positions"), QStringLiteral("longitude 0, latitude 0, not moving"));
    a_report.field(QStringLiteral("Transmitters"), QStringLiteral("default antenna and power"));
    a_report.field(QStringLiteral("Emissions"), QStringLiteral("none"));
    a_report.field(QStringLiteral("Networks"), QStringLiteral("none"));
    a_report.field(QStringLiteral("Noise"), QStringLiteral("default settings"));
    a_report.field(QStringLiteral("Header"),
                   QStringLiteral("empty, with the new uid ") + a_scenario.getPersistantId());
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
    LostTable changed(QStringLiteral("Emitters that come back changed"),
                      {{QStringLiteral("Emitter")}, {QStringLiteral("Reason")}});
    LostTable lost(QStringLiteral("Links that a reader does not find"),
                   {{QStringLiteral("Emitter")}, {QStringLiteral("Linked to")}, {QStringLiteral("Reason")}});
    for (const std::shared_ptr<SzenarioEmitter>& emitter : a_emitters) {
        const QString sId = emitter->id();
        const SzenarioEmitter* pBack = readById.value(sId);
        if (const QString sReason = changeReason(*emitter, pBack, owners.value(sId) > 1);
            !sReason.isEmpty()) {
            changed.add({orDash(sId), sReason});
        }
        const QString sTarget = targetId(*emitter);
        if (emitter->isLinked() && pBack != nullptr && targetId(*pBack) != sTarget) {
            lost.add({orDash(sId), orDash(sTarget), lossReason(sTarget, readById.contains(sTarget))});
        }
    }
    changed.write(a_report);
    lost.write(a_report);
}

} // namespace SimulationTool
