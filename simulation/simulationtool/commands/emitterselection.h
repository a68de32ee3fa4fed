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

/// Leaves only the emitters of which one of the texts is the id or, where it is
/// no id, the name; without texts all of them. False, with a reason and the
/// emitters as they were, when a text is neither: the reason proposes a similar
/// id or name.
[[nodiscard]] bool selectEmitters(Emitters& a_emitters, const QStringList& a_texts, QString& a_sReason);

} // namespace SimulationTool

#endif
