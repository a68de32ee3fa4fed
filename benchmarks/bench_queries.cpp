#include "simulationdata/emissionsettings.h"
#include "simulationdata/frequencysettings_fasthopper.h"
#include "simulationdata/frequencysettings_slowhopper.h"
#include "simulationdata/positionsettingsptp.h"

#include <benchmark/benchmark.h>

// Measures how long one query for a scenario time takes with growing numbers of
// steps, points and emissions. The query time must grow much more slowly than these
// numbers.

using namespace Simulation;

namespace {

constexpr unsigned int s_uiStepMs = 10;
constexpr unsigned int s_uiTimeStride = 2'654'435'761U; // spreads the query times over the whole range

void slowHopperFrequency(benchmark::State& a_state)
{
    FrequencySettings_SlowHopper hopper;
    hopper.setFrequencySteps(QList<FrequencyStep>(a_state.range(0), FrequencyStep{25e6, s_uiStepMs}));
    unsigned int uiTime = 0;
    for ([[maybe_unused]] auto iteration : a_state) {
        benchmark::DoNotOptimize(hopper.getFrequencyAt(uiTime));
        uiTime += s_uiTimeStride;
    }
}
BENCHMARK(slowHopperFrequency)->RangeMultiplier(100)->Range(10, 1'000'000);

void fastHopperFrequency(benchmark::State& a_state)
{
    FrequencySettings_FastHopper hopper;
    hopper.setHoppCount(static_cast<unsigned int>(a_state.range(0)));
    unsigned int uiTime = 0;
    for ([[maybe_unused]] auto iteration : a_state) {
        benchmark::DoNotOptimize(hopper.getFrequencyAt(uiTime));
        uiTime += s_uiTimeStride;
    }
}
BENCHMARK(fastHopperFrequency)->RangeMultiplier(100)->Range(10, 1'000'000);

void movementPosition(benchmark::State& a_state)
{
    QVector<MovementPoint> points(a_state.range(0));
    for (qsizetype i = 0; i < points.size(); ++i) {
        points[i].position = TPos{8.0 + static_cast<double>(i) * 1e-5, 54.0};
        points[i].major = true;
    }
    PositionSettingsPtp movement(TPos{}, 0.01);
    movement.setMovements(points);
    unsigned int uiTime = 0;
    for ([[maybe_unused]] auto iteration : a_state) {
        benchmark::DoNotOptimize(movement.getPositionAt(uiTime));
        uiTime += s_uiTimeStride;
    }
}
BENCHMARK(movementPosition)->RangeMultiplier(100)->Range(10, 1'000'000);

void scheduleEmission(benchmark::State& a_state)
{
    QList<boost::shared_ptr<EmissionSettings::Emission>> emissions;
    for (std::int64_t i = 0; i < a_state.range(0); ++i) {
        emissions.append(EmissionSettings::createEmission());
        emissions.last()->start = i * s_uiStepMs;
        emissions.last()->duration = s_uiStepMs / 2;
    }
    EmissionSettings settings;
    settings.setDuration(a_state.range(0) * s_uiStepMs);
    settings.addEmissions(emissions);
    unsigned int uiTime = 0;
    for ([[maybe_unused]] auto iteration : a_state) {
        benchmark::DoNotOptimize(settings.emissionAt(uiTime));
        uiTime += s_uiTimeStride;
    }
}
BENCHMARK(scheduleEmission)->RangeMultiplier(100)->Range(10, 1'000'000);

} // namespace
