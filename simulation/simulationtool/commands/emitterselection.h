#ifndef SIMULATIONTOOL_EMITTERSELECTION_H
#define SIMULATIONTOOL_EMITTERSELECTION_H

#include <QList>
#include <QString>
#include <QStringList>

#include <memory>

namespace Simulation {
class SzenarioEmitter;
} // namespace Simulation

namespace SimulationTool {

using Emitters = QList<std::shared_ptr<Simulation::SzenarioEmitter>>;

/// Keeps the emitters that the texts name by id or, when no id matches, by name.
/// Without texts, keeps all. When a text matches no emitter, returns false, leaves the
/// emitters unchanged and sets an error text that proposes a similar id or name.
[[nodiscard]] bool selectEmitters(Emitters& a_emitters, const QStringList& a_texts, QString& a_sReason);

} // namespace SimulationTool

#endif
