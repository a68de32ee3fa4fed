#include "playcommand.h"

#include "inputfile.h"
#include "interruption.h"
#include "output.h"
#include "outputfile.h"
#include "playsink.h"
#include "repositorypackages.h"
#include "scenariofile.h"
#include "verdict.h"

#include "simulationdata/scenariodataxml.h"
#include "simulationdata/simulationlimits.h"
#include "simulationdata/szenarioemitter.h"
#include "simulationdata/unresolvedsignalpackageprovider.h"

#include <algorithm>

namespace SimulationTool {

namespace {

constexpr std::uint32_t s_uiDefaultWindow = 10'000; ///< ms

/// The end of the window (ms).
std::uint32_t windowEnd(const PlayOptions& a_options, std::uint32_t a_uiDuration)
{
    if (a_options.to) {
        return *a_options.to;
    }
    return a_uiDuration != 0 ? std::min(a_uiDuration, s_uiDefaultWindow) : s_uiDefaultWindow;
}

using Emitters = QList<std::shared_ptr<Simulation::SzenarioEmitter>>;

/// False when the rows could not be written, or the play was interrupted.
bool playInto(Sink& a_sink, const PlayOptions& a_options, std::uint32_t a_uiTo, const Emitters& a_emitters,
              RepositoryPackages* a_pPackages)
{
    if (!a_sink.begin()) {
        return false;
    }
    for (std::uint64_t uiTime = a_options.from; uiTime < a_uiTo; uiTime += a_options.step) {
        for (const std::shared_ptr<Simulation::SzenarioEmitter>& emitter : a_emitters) {
            const Moment moment(*emitter, static_cast<std::uint32_t>(uiTime), a_pPackages);
            if (isInterrupted() || !a_sink.add(emitter->id(), moment)) {
                return false;
            }
        }
    }
    return true;
}

std::unique_ptr<Sink> makeSink(const PlayOptions& a_options, Output& a_output, std::uint32_t a_uiTo,
                               const Emitters& a_emitters)
{
    const bool bLevels = !a_options.repository.isEmpty();
    if (!a_options.csvFile.isEmpty()) {
        return makeCsvSink(a_output, a_options.csvFile, bLevels);
    }
    QStringList ids;
    std::transform(a_emitters.cbegin(), a_emitters.cend(), std::back_inserter(ids),
                   [](const auto& a_emitter) { return a_emitter->id(); });
    return makeTableSink(a_output, ids, a_uiTo, bLevels);
}

/// Plays with packages from the provider, which is the same as `a_pPackages` if
/// there is a repository.
ExitCode playWith(Simulation::ISignalPackageProvider& a_provider, RepositoryPackages* a_pPackages,
                  const InputFile& a_file, const PlayOptions& a_options, Output& a_output)
{
    Simulation::ScenarioDataXml scenario(&a_provider);
    const std::optional<Verdict> loaded = loadScenario(scenario, a_file);
    if (!loaded) {
        return ExitCode::Unusable;
    }
    const std::uint32_t uiTo = windowEnd(a_options, scenario.getDuration());
    if (uiTo <= a_options.from) {
        complain(QStringLiteral(
                     "play: the window would end at %1 ms, not after its begin at %2 ms: give a later --to")
                     .arg(QString::number(uiTo), QString::number(a_options.from)));
        return ExitCode::Unusable;
    }
    const auto emitters = emittersOf(scenario);
    const std::unique_ptr<Sink> sink = makeSink(a_options, a_output, uiTo, emitters);
    const bool bPlayed = playInto(*sink, a_options, uiTo, emitters, a_pPackages);
    // An interrupted play is nobody's fault: nothing is said.
    return !isInterrupted() && sink->end(bPlayed) ? loaded->code : ExitCode::Unusable;
}

} // namespace

ExitCode runPlay(const PlayOptions& a_options, Output& a_output)
{
    InputFile file(a_options.scenario);
    if (file.isSameAs(a_options.csvFile)) {
        complain(
            QStringLiteral("play: %1 is the scenario itself: give another --csv").arg(a_options.csvFile));
        return ExitCode::Unusable;
    }
    if (!file.prepare(Simulation::Limits::value(Simulation::Limits::DocumentBytes))) {
        return ExitCode::Unusable;
    }
    if (a_options.repository.isEmpty()) {
        Simulation::UnresolvedSignalPackageProvider unresolved;
        return playWith(unresolved, nullptr, file, a_options, a_output);
    }
    catchInterruptions(); // the cache may be a temporary one
    RepositoryPackages packages;
    if (!packages.open(a_options.repository, a_options.cache)) {
        return ExitCode::Unusable;
    }
    const ExitCode eCode = playWith(packages, &packages, file, a_options, a_output);
    return worse(eCode, packages.finish());
}

} // namespace SimulationTool
