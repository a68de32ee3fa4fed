#include "playcommand.h"

#include "console/inputfile.h"
#include "console/interruption.h"
#include "console/jsonreport.h"
#include "console/output.h"
#include "console/outputfile.h"
#include "console/progress.h"
#include "describe/documentremarks.h"
#include "describe/scenariofile.h"
#include "describe/verdict.h"
#include "emitterselection.h"
#include "programs/playsink.h"
#include "programs/repositorypackages.h"

#include "simulationdata/scenariodataxml.h"
#include "simulationdata/simulationlimits.h"
#include "simulationdata/szenarioemitter.h"
#include "simulationdata/unresolvedsignalpackageprovider.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <optional>

#include <unistd.h>

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

/// Whether the rows are shown on a terminal, which makes a progress line unnecessary.
bool showsRows(const PlayOptions& a_options)
{
    const bool bStandardOutput = a_options.csvFile.isEmpty() || isStandardStreamName(a_options.csvFile);
    return bStandardOutput && ::isatty(STDOUT_FILENO) == 1;
}

/// Plays all steps into the sink. False when rows could not be written, or when
/// interrupted.
bool playInto(Sink& a_sink, const PlayOptions& a_options, std::uint32_t a_uiTo, const Emitters& a_emitters,
              RepositoryPackages* a_pPackages)
{
    if (!a_sink.begin()) {
        return false;
    }
    std::atomic<std::uint64_t> uiNow = a_options.from; // also read by the thread of the progress line
    std::optional<Progress> progress;
    if (!showsRows(a_options)) {
        catchInterruptions(); // so that an interruption erases the progress line
        progress.emplace(QStringLiteral("playing"),
                         [&] { return QStringLiteral("%1 of %2 ms").arg(uiNow.load()).arg(a_uiTo); });
    }
    for (std::uint64_t uiTime = a_options.from; uiTime < a_uiTo; uiTime += a_options.step) {
        uiNow = uiTime;
        for (const std::shared_ptr<Simulation::SzenarioEmitter>& emitter : a_emitters) {
            const Moment moment(*emitter, static_cast<std::uint32_t>(uiTime), a_pPackages);
            if (isInterrupted() || !a_sink.add(emitter->id(), moment)) {
                return false;
            }
        }
    }
    return true;
}

/// The header of the report for programs.
QJsonObject headerOf(const PlayOptions& a_options, const InputFile& a_file, std::uint32_t a_uiTo)
{
    return {{QStringLiteral("scenario"), a_file.name()},
            {QStringLiteral("from_ms"), jsonCount(a_options.from)},
            {QStringLiteral("to_ms"), jsonCount(a_uiTo)},
            {QStringLiteral("step_ms"), jsonCount(a_options.step)}};
}

/// One play: loads the scenario, and writes the rows of its window and emitters to a
/// sink. The packages are null without a repository. Owns the scenario only.
class Play
{
public:
    Play(const PlayOptions& a_options, const InputFile& a_file, RepositoryPackages* a_pPackages,
         Output& a_output)
        : m_options(a_options)
        , m_file(a_file)
        , m_pPackages(a_pPackages)
        , m_output(a_output)
        , m_report(a_output, a_options.form)
    {}

    [[nodiscard]] ExitCode run(Simulation::ISignalPackageProvider& a_provider);

private:
    [[nodiscard]] bool prepare();
    [[nodiscard]] std::unique_ptr<Sink> makeSink();
    [[nodiscard]] QJsonObject summary(const Verdict& a_verdict) const;

    const PlayOptions& m_options;
    const InputFile& m_file;
    RepositoryPackages* m_pPackages;
    Output& m_output;
    Report m_report;
    /// Declared before m_emitters, so that the scenario is destroyed last. Its destructor
    /// releases only objects without another owner.
    std::unique_ptr<Simulation::ScenarioDataXml> m_scenario;
    Emitters m_emitters;
    std::uint32_t m_uiTo = 0; ///< ms
};

/// Sets the window and the emitters. False after one line on standard error.
bool Play::prepare()
{
    m_uiTo = windowEnd(m_options, m_scenario->getDuration());
    m_emitters = emittersOf(*m_scenario);
    QString sError;
    if (m_uiTo <= m_options.from) {
        sError = QStringLiteral("the window would end at %1 ms, not after its begin at %2 ms: give a later "
                                "--to")
                     .arg(QString::number(m_uiTo), QString::number(m_options.from));
    } else {
        static_cast<void>(selectEmitters(m_emitters, m_options.emitters, sError));
    }
    if (!sError.isEmpty()) {
        complain(QStringLiteral("play: ") + sError);
    }
    return sError.isEmpty();
}

std::unique_ptr<Sink> Play::makeSink()
{
    const bool bLevels = m_pPackages != nullptr;
    const QJsonObject header = headerOf(m_options, m_file, m_uiTo);
    if (!m_options.csvFile.isEmpty()) {
        return makeCsvSink(m_report, m_output, {m_options.csvFile, header}, bLevels);
    }
    if (m_options.form == ReportForm::Json) {
        return makeJsonSink(m_output, header, bLevels);
    }
    QStringList ids;
    std::transform(m_emitters.cbegin(), m_emitters.cend(), std::back_inserter(ids),
                   [](const auto& a_emitter) { return a_emitter->id(); });
    return makeTableSink(m_report, ids, m_uiTo, bLevels);
}

QJsonObject Play::summary(const Verdict& a_verdict) const
{
    const QStringList problems = m_pPackages != nullptr ? m_pPackages->messages() : QStringList();
    return {{QStringLiteral("verdict"), a_verdict.text},
            {QStringLiteral("problems"), QJsonArray::fromStringList(problems)}};
}

/// `a_provider` is the object of m_pPackages, unless m_pPackages is null.
ExitCode Play::run(Simulation::ISignalPackageProvider& a_provider)
{
    m_scenario = std::make_unique<Simulation::ScenarioDataXml>(&a_provider);
    const std::optional<Verdict> loaded = loadScenario(*m_scenario, m_file);
    if (!loaded) {
        return ExitCode::Unusable;
    }
    if (complainAbout(m_scenario->report(), m_options.scenario) && m_options.strict) {
        return ExitCode::Findings;
    }
    if (!prepare()) {
        return ExitCode::Unusable;
    }
    const std::unique_ptr<Sink> sink = makeSink();
    const bool bPlayed = playInto(*sink, m_options, m_uiTo, m_emitters, m_pPackages);
    // After an interruption, neither an error text nor the summary is written: main()
    // ends the process by the signal.
    return !isInterrupted() && sink->end(bPlayed, summary(*loaded)) ? loaded->code : ExitCode::Unusable;
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
        return Play(a_options, file, nullptr, a_output).run(unresolved);
    }
    catchInterruptions(); // so that an interrupted play removes a temporary cache
    RepositoryPackages packages;
    if (!packages.open(a_options.repository, a_options.cache)) {
        return ExitCode::Unusable;
    }
    const ExitCode eCode = Play(a_options, file, &packages, a_output).run(packages);
    return worse(eCode, packages.finish());
}

} // namespace SimulationTool
