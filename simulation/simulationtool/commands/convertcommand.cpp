#include "convertcommand.h"

#include "console/commandparser.h"
#include "console/inputfile.h"
#include "console/output.h"
#include "console/outputfile.h"
#include "console/progress.h"
#include "console/report.h"
#include "conversionreport.h"
#include "describe/compactdetails.h"
#include "describe/scenariofile.h"
#include "describe/verdict.h"

#include "simulationdata/scenariodatabinary.h"
#include "simulationdata/scenariodataxml.h"
#include "simulationdata/simulationlimits.h"
#include "simulationdata/szenarioemitter.h"
#include "simulationdata/unresolvedsignalpackageprovider.h"

namespace SimulationTool {

namespace {

const char s_szConvert[] =
    "Writes the compact form of a scenario document to OUT, or a document of a\n"
    "compact scenario: the content of SCENARIO shows which it is.\n"
    "\n"
    "The compact form carries of every emitter the id, name, description, active\n"
    "flag, default mark, link and class, and nothing else. What it does not carry\n"
    "of the scenario at hand is listed, and so are links that a reader will not find;\n"
    "the other way, what the document holds at its defaults.\n"
    "\n"
    "OUT is replaced only when all of it is written.";

const char s_szConvertExamples[] = "\n"
                                   "Examples:\n"
                                   "  simulationtool convert harbour.sce.exp harbour.compact\n"
                                   "  simulationtool convert harbour.compact emitters.sce.exp\n"
                                   "\n"
                                   "Exit codes:\n"
                                   "  0  Written.\n"
                                   "  1  Written, but SCENARIO broke off or holds more than it should: what\n"
                                   "     could be read of it was written.\n"
                                   "  2  Wrong usage, or something could not be read or written.\n";

using EmitterSet = QSet<std::shared_ptr<Simulation::SzenarioEmitter>>;

ExitCode fail(const QString& a_sFile, const QString& a_sReason)
{
    complain(QStringLiteral("%1: %2").arg(a_sFile, a_sReason));
    return ExitCode::Unusable;
}

/// The error text for an output that is not written, because a reader would refuse it.
/// `a_sReason` is that reader's error text. An empty reason means that the output
/// exceeded the document limit.
QString errorText(const QString& a_sReason)
{
    return QStringLiteral("not written: ") +
           (a_sReason.isEmpty() ? Simulation::Limits::exceeded(Simulation::Limits::DocumentBytes)
                                : a_sReason);
}

ExitCode toCompact(Simulation::ScenarioDataXml& a_scenario, const QString& a_sOut, Report& a_report)
{
    const auto emitters = emittersOf(a_scenario);
    Simulation::ScenarioDataBinary compact(nullptr);
    compact.setScenarioEmitter(EmitterSet(emitters.cbegin(), emitters.cend()));
    compact.setDefaultEmitter(a_scenario.getDefaultEmitter());
    const QByteArray data = compact.toBinary();
    Simulation::ScenarioDataBinary readBack(nullptr);
    if (data.isEmpty() || !readBack.fromBinary(data)) {
        return fail(a_sOut, errorText(readBack.errorString()));
    }
    const ExitCode eWritten = replaceFile(a_sOut, data);
    if (eWritten != ExitCode::Ok) {
        return eWritten;
    }
    describeWritten(a_report, QStringLiteral("Compact scenario"), emitters.size(), data.size());
    describeUncarried(a_report, a_scenario);
    describeDifferences(a_report, emitters, emittersOf(readBack));
    return ExitCode::Ok;
}

ExitCode toDocument(Simulation::ScenarioDataBinary& a_compact, const QString& a_sOut, Report& a_report)
{
    const auto emitters = emittersOf(a_compact);
    Simulation::UnresolvedSignalPackageProvider provider;
    Simulation::ScenarioDataXml document(&provider);
    document.setScenarioObjects(
        QSet<std::shared_ptr<Simulation::ScenarioObject>>(emitters.cbegin(), emitters.cend()));
    document.setDefaultEmitter(a_compact.defaultEmitter());
    const QByteArray data = document.toXml();
    Simulation::ScenarioDataXml readBack(&provider);
    if (data.isEmpty() || !readBack.fromXml(data) || !readBack.errorString().isEmpty()) {
        return fail(a_sOut, errorText(readBack.errorString()));
    }
    const ExitCode eWritten = replaceFile(a_sOut, data);
    if (eWritten != ExitCode::Ok) {
        return eWritten;
    }
    describeWritten(a_report, QStringLiteral("Scenario document"), emitters.size(), data.size());
    describeDefaults(a_report, readBack);
    describeUnresolvedLinks(a_report, a_compact);
    describeDifferences(a_report, emitters, emittersOf(readBack));
    return ExitCode::Ok;
}

ExitCode runConvert(InputFile& a_scenario, const QString& a_sOut, Report& a_report)
{
    if (a_scenario.isSameAs(a_sOut)) {
        return fail(QStringLiteral("convert"),
                    QStringLiteral("%1 is the scenario itself: give another OUT").arg(a_sOut));
    }
    if (!a_scenario.prepare(Simulation::Limits::value(Simulation::Limits::DocumentBytes))) {
        return ExitCode::Unusable;
    }
    const Progress progress(QStringLiteral("converting ") + a_scenario.name());
    Simulation::ScenarioDataBinary compact(nullptr);
    if (const std::optional<Verdict> verdict = loadCompact(compact, a_scenario.path())) {
        if (verdict->code != ExitCode::Ok) {
            complain(QStringLiteral("%1: %2").arg(a_scenario.name(), verdict->text));
        }
        return worse(verdict->code, toDocument(compact, a_sOut, a_report));
    }
    Simulation::UnresolvedSignalPackageProvider provider;
    Simulation::ScenarioDataXml scenario(&provider);
    const std::optional<Verdict> verdict = loadScenario(scenario, a_scenario);
    return verdict ? worse(verdict->code, toCompact(scenario, a_sOut, a_report)) : ExitCode::Unusable;
}

} // namespace

ExitCode convert(const QStringList& a_arguments, Output& a_output)
{
    CommandParser parser(QStringLiteral("convert"), QStringLiteral("SCENARIO|- OUT [--json]"), s_szConvert,
                         s_szConvertExamples);
    parser.get().addPositionalArgument(QStringLiteral("SCENARIO"),
                                       QStringLiteral("The document or compact scenario to read; - is "
                                                      "standard input."));
    parser.get().addPositionalArgument(QStringLiteral("OUT"), QStringLiteral("The file to write."));
    addJsonOption(parser.get());
    if (const auto done = parser.parse(a_arguments, a_output)) {
        return *done;
    }
    const QStringList files = parser.get().positionalArguments();
    if (files.size() != 2 || files.contains(QString())) {
        return parser.refuse(QStringLiteral("a SCENARIO and an OUT are needed, %1 given")
                                 .arg(files.size() - files.count(QString())));
    }
    if (isStandardStreamName(files.constLast())) {
        return parser.refuse(QStringLiteral("OUT must be a file (./- is one that is called so)"));
    }
    InputFile scenario(files.constFirst());
    Report report(a_output, reportForm(parser.get()));
    const ExitCode eCode = runConvert(scenario, files.constLast(), report);
    if (eCode != ExitCode::Unusable) {
        report.value("file", scenario.name());
        report.value("out", files.constLast());
        report.finish();
    }
    return eCode;
}

} // namespace SimulationTool
