#include <simulationdata/scenariodataxml.h>
#include <simulationdata/szenarioemitter.h>
#include <simulationdata/unresolvedsignalpackageprovider.h>

#include <climits>
#include <cstdio>

#include <limits.h>

static_assert(INT_MAX > 0, "the compiler's own limits.h is found");

/// Loads the default scenario from the library's resources. The program cannot be built
/// or ends with an error when headers, library or resources are installed in wrong places.
int main()
{
    Simulation::UnresolvedSignalPackageProvider provider;
    Simulation::ScenarioDataXml scenario(&provider);
    if (!scenario.fromXmlFile(QStringLiteral(":/DefaultData/Default.sce.exp")) ||
        !scenario.getDefaultEmitter()) {
        std::fprintf(stderr, "%s\n", qPrintable(scenario.errorString()));
        return 1;
    }
    std::printf("%lld objects\n", static_cast<long long>(scenario.scenarioObjects().size()));
    return 0;
}
