#include "documentkind.h"

#include "console/inputfile.h"
#include "scenariofile.h"

#include "simulationdata/scenariodatabinary.h"

#include <array>

namespace SimulationTool {

namespace {

/// A kind of XML document.
struct XmlKind
{
    DocumentKind kind;
    const char* root;
    const char* part; ///< in the names of root elements that were probably meant, in lower case
    std::array<const char*, 3> endings; ///< of file names, in any case; null = none
};

constexpr std::array<XmlKind, 3> s_xmlKinds{{
    {DocumentKind::Descriptor, "SignalPackage", "signalpackage", {"/Signal.xml", nullptr, nullptr}},
    {DocumentKind::Deployment, "SimulationDeployment", "deployment", {".deployment", nullptr, nullptr}},
    {DocumentKind::Scenario, "Scenario", "scenario", {".sce", ".sce.exp", ".scexml"}},
}};

std::optional<DocumentKind> kindOfRoot(const QString& a_sRoot)
{
    for (const XmlKind& kind : s_xmlKinds) {
        if (a_sRoot == QLatin1String(kind.root)) {
            return kind.kind;
        }
    }
    const QString sRoot = a_sRoot.toLower();
    for (const XmlKind& kind : s_xmlKinds) {
        if (sRoot.contains(QLatin1String(kind.part))) {
            return kind.kind;
        }
    }
    return std::nullopt;
}

std::optional<DocumentKind> kindOfName(const QString& a_sName)
{
    for (const XmlKind& kind : s_xmlKinds) {
        for (const char* szEnding : kind.endings) {
            if (szEnding != nullptr && a_sName.endsWith(QLatin1String(szEnding), Qt::CaseInsensitive)) {
                return kind.kind;
            }
        }
    }
    return std::nullopt;
}

} // namespace

const char* kindName(DocumentKind a_eKind)
{
    switch (a_eKind) {
    case DocumentKind::Deployment:
        return "deployment";
    case DocumentKind::Descriptor:
        return "signal package descriptor";
    case DocumentKind::Compact:
        return "compact scenario";
    default:
        return "scenario";
    }
}

std::optional<DocumentKind> recognisedKind(const InputFile& a_file)
{
    if (const auto kind = kindOfRoot(documentRoot(a_file.head()))) {
        return kind;
    }
    if (const auto kind = kindOfName(a_file.name())) {
        return kind;
    }
    Simulation::ScenarioDataBinary scenario(nullptr);
    const bool bCompact = loadCompact(scenario, a_file.path()) && !scenario.scenarioEmitter().isEmpty();
    return bCompact ? std::make_optional(DocumentKind::Compact) : std::nullopt;
}

DocumentKind kindOf(const InputFile& a_file)
{
    if (const auto kind = kindOfRoot(documentRoot(a_file.head()))) {
        return *kind;
    }
    Simulation::ScenarioDataBinary scenario(nullptr);
    return loadCompact(scenario, a_file.path()) ? DocumentKind::Compact
                                                : kindOfName(a_file.name()).value_or(DocumentKind::Scenario);
}

} // namespace SimulationTool
