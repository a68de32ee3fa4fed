#include "benchedservice.h"
#include "kpbase/errorhandler.h"
#include "serviceattacks.h"

#include <QCoreApplication>

#include <algorithm>
#include <cstdio>
#include <optional>
#include <vector>

// Measures the processor time of a service with 200 idle devices. Then measures two
// delays while other peers attack the service: until a start reaches all devices, and
// until a device's state reaches the controller.

namespace {

constexpr int s_iIdleMs = 5000;
constexpr int s_iSettleMs = 500;        ///< from the beginning of an attack to the first start
constexpr int s_iCrowdMs = 10'000;      ///< settling time when thousands of devices register first
constexpr int s_iStarts = 20;           ///< measured during one attack
constexpr int s_iIntervalMs = 100;      ///< between two starts
constexpr double s_dOverdueMs = 5000.0; ///< a measurement is given up after this time
constexpr double s_dHalf = 0.5;
constexpr std::int64_t s_iMebi = 1'048'576;
constexpr double s_dLongestMs = 100.0;  ///< goal for the longest delay
constexpr double s_dMostMemory = 256.0; ///< MiB, goal for the peak memory

struct Scene
{
    const char* name;
    int attackers;
    Attack attack;
    int settle = s_iSettleMs;
};

/// The quantile `a_dPart`, in [0, 1], of the values: 0.5 gives the median. -1 without
/// values.
double quantile(std::vector<double> a_values, double a_dPart)
{
    if (a_values.empty()) {
        return -1.0;
    }
    std::sort(a_values.begin(), a_values.end());
    const auto uiLast = static_cast<double>(a_values.size() - 1);
    return a_values[static_cast<std::size_t>(uiLast * a_dPart)];
}

/// Prints the measured times. False when the service does not accept the devices.
bool measureIdle()
{
    const BenchedService service;
    const BenchedPeers peers(service.port());
    if (!peers.isReady()) {
        return false;
    }
    const double dRegistered = service.processorTime();
    runFor(s_iIdleMs);
    std::printf("service with %d idle devices: %.0f ms of processor time in %d ms; starting and registering "
                "them: %.0f ms\n",
                BenchedPeers::s_iDevices, service.processorTime() - dRegistered, s_iIdleMs, dRegistered);
    return true;
}

/// The measured delays of one kind of message.
struct Delays
{
    std::vector<double> times; ///< ms
    int overdue = 0;

    void add(const std::optional<double>& a_time)
    {
        if (a_time) {
            times.push_back(*a_time);
        } else {
            ++overdue;
        }
    }

    [[nodiscard]] double worst() const { return overdue == 0 ? quantile(times, 1.0) : s_dOverdueMs; }

    void print(const char* a_szName) const
    {
        std::printf("  %s: median %.1f ms, worst %s%.1f ms", a_szName, quantile(times, s_dHalf),
                    overdue == 0 ? "" : "more than ", worst());
    }
};

bool measureAttack(const Scene& a_scene)
{
    const BenchedService service;
    BenchedPeers peers(service.port());
    if (!peers.isReady() || !peers.start()) {
        return false;
    }
    const Attackers attackers(a_scene.attackers, service.port(), a_scene.attack);
    runFor(a_scene.settle);
    Delays starts;
    Delays news;
    for (int i = 0; i < s_iStarts && starts.overdue + news.overdue == 0; ++i) {
        starts.add(peers.start());
        news.add(peers.news());
        runFor(s_iIntervalMs);
    }
    const double dMemory = service.peakMemory();
    const bool bGood = starts.worst() <= s_dLongestMs && news.worst() <= s_dLongestMs && dMemory >= 0.0 &&
                       dMemory <= s_dMostMemory && peers.evictions() == 0;
    std::printf("%s:\n", a_scene.name);
    starts.print("start");
    news.print("news");
    std::printf("  controller dropped %d times, peak %.0f MiB%s\n", peers.evictions(), dMemory,
                bGood ? "" : "  BEYOND THE GOAL");
    std::fflush(stdout);
    return true;
}

bool measureBurst()
{
    constexpr int iConnections = 3000;
    constexpr double dMost = 0.99;
    std::vector<double> times;
    const bool bMeasured = measureAttack({"bursts of 3,000 connections", 1, burst(iConnections, &times)});
    std::printf("  %zu connections: median %.1f ms, 99 of 100 within %.1f ms\n", times.size(),
                quantile(times, s_dHalf), quantile(times, dMost));
    return bMeasured;
}

/// Repeats the commands to about 256 KiB, so that the attacker needs few calls of
/// send().
QByteArray manyOf(const QByteArray& a_commands)
{
    constexpr qsizetype iBytes = 262'144;
    return a_commands.repeated(std::max<qsizetype>(1, iBytes / a_commands.size()));
}

std::vector<Scene> scenes()
{
    const QByteArray acquire("<Command><AcquireServer/></Command>");
    const QByteArray release("<Command><ReleaseServer/></Command>");
    const QByteArray ask("<Command><RequestSimulationDevices/></Command>");
    const QByteArray changes =
        manyOf(registration("flood", "this") + ask + registration("flood", "that") + ask);
    const QByteArray states = manyOf(stateUpdate("flood", 1) + stateUpdate("flood", 2));
    constexpr int iCrowd = 4000 - BenchedPeers::s_iDevices;
    return {
        {"no attack", 0, {}},
        {"1 acquires and releases, reads not", 1, repeat({}, manyOf(acquire + release), false)},
        {"1 acquires and releases, and reads", 1, repeat({}, manyOf(acquire + release), true)},
        {"1 device floods states", 1, repeat(registration("flood"), states, true)},
        {"5 ask for the devices, read not", 5, repeat({}, manyOf(ask), false)},
        {"1 changes a record and asks for the devices", 1, repeat({}, changes, true)},
        {"5 flood orders without control", 5, repeat({}, manyOf("<Command><StopScenario/></Command>"), true)},
        {"5 send scenarios of 340 KiB for 256 MiB", 5, repeat({}, bomb(256 * s_iMebi - 1), true)},
        {"6 leave 200 MiB unfinished", 6, unfinished(200 * s_iMebi)},
        {"4,000 devices", 1, crowd(iCrowd, {}), s_iCrowdMs},
        {"4,000 devices, 1 acquires and releases", 1, crowd(iCrowd, manyOf(acquire + release)), s_iCrowdMs},
    };
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    ErrorHandler::Instance().setTraceMask(0); // every processed command is traced as an error
    const std::vector<Scene> all = scenes();
    const bool bMeasured =
        measureIdle() && std::all_of(all.begin(), all.end(), measureAttack) && measureBurst();
    if (!bMeasured) {
        std::fputs("bench_service: the service does not accept the devices\n", stderr);
        return 1;
    }
    return 0;
}
