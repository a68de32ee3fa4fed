#include "kpbase/velaos.h"

#include <chrono>
#include <mutex>
#include <utility>

namespace {

struct InjectedClock
{
    std::mutex mutex;
    VelaOS::Clock clock;
};

InjectedClock& injectedClock()
{
    static InjectedClock s_clock;
    return s_clock;
}

} // namespace

VelaOS& VelaOS::Get()
{
    static VelaOS s_instance;
    return s_instance;
}

std::uint64_t VelaOS::timestamp() const
{
    Clock clock;
    {
        InjectedClock& injected = injectedClock();
        const std::lock_guard<std::mutex> lock(injected.mutex);
        clock = injected.clock;
    }
    if (clock) {
        return clock();
    }
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return static_cast<std::uint64_t>(
        std::chrono::duration_cast<std::chrono::microseconds>(sinceEpoch).count());
}

void VelaOS::setClock(Clock a_clock)
{
    InjectedClock& injected = injectedClock();
    const std::lock_guard<std::mutex> lock(injected.mutex);
    injected.clock = std::move(a_clock);
}
