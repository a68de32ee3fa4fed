#include "scenariochecker_objects_p.h"

#include "scenariochecker_rules_p.h"
#include "simulationdata/ifrequencysettings.h"
#include "simulationdata/ipositionsettings.h"
#include "simulationdata/transmittersettings.h"

#include <memory>

namespace Simulation {

namespace {

ScenarioFinding idFinding(qsizetype a_iEmitters, const char* a_szConsequence)
{
    return ruleFinding(ScenarioChecker::s_sDuplicateId,
                       QString::number(a_iEmitters) + QLatin1String(a_szConsequence) +
                           QStringLiteral(" Give every emitter its own id."));
}

ScenarioFinding settingsFinding(const char* a_szKind)
{
    return ruleFinding(ScenarioChecker::s_sMissingSettings,
                       QStringLiteral("The %1 settings were missing: those of a new object were set.")
                           .arg(QLatin1String(a_szKind)),
                       true);
}

} // namespace

void IdRule::check(const QString& a_sId, QList<ScenarioFinding>& a_findings)
{
    if (const qsizetype iEmitters = m_counts.take(a_sId); iEmitters > 1) {
        a_findings.append(idFinding(
            iEmitters, " emitters have this id: a reader of the saved scenario gets one emitter for them."));
    }
    if (const qsizetype iMerged = m_mergedIds.take(a_sId); iMerged > 1) {
        a_findings.append(
            idFinding(iMerged, " emitters of the document have this id: they were read as one emitter."));
    }
}

void SettingsRule::check(ScenarioObject& a_object, SzenarioEmitter* a_pEmitter,
                         QList<ScenarioFinding>& a_findings)
{
    if (a_object.frequencySettings() == nullptr) {
        a_object.setFrequencySettings(m_fresh.frequencySettings()->clone());
        a_findings.append(settingsFinding("frequency"));
    }
    if (a_pEmitter != nullptr && a_pEmitter->ownPositionSettings() == nullptr) {
        a_pEmitter->setPositionSettings(m_fresh.ownPositionSettings()->clone());
        a_findings.append(settingsFinding("position"));
    }
    if (a_pEmitter != nullptr && a_pEmitter->getTranmitterSettings() == nullptr) {
        auto settings = std::make_unique<TransmitterSettings>(*m_fresh.getTranmitterSettings());
        a_pEmitter->setTransmitterSettings(settings.release());
        a_findings.append(settingsFinding("transmitter"));
    }
}

void checkClass(const SzenarioEmitter& a_emitter, const QSet<QString>& a_knownClasses,
                QList<ScenarioFinding>& a_findings)
{
    if (!a_knownClasses.isEmpty() && !a_knownClasses.contains(a_emitter.getClass())) {
        a_findings.append(ruleFinding(ScenarioChecker::s_sInvalidClass,
                                      QStringLiteral("The class \"") + a_emitter.getClass() +
                                          QStringLiteral("\" is not known: it stays as it is.")));
    }
}

} // namespace Simulation
