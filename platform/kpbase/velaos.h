#ifndef KPBASE_VELAOS_H
#define KPBASE_VELAOS_H

#include "simulationdata/simulationdata_export.h"

#include <cstdint>
#include <functional>

/// The operating system services of the simulation: a wall clock that all programs
/// of the system share. One object per process; any thread may call.
class SIMULATIONDATA_EXPORT VelaOS
{
public:
    /// Returns the wall clock in microseconds since 1970-01-01 00:00 UTC.
    using Clock = std::function<std::uint64_t()>;

    static VelaOS& Get();

    VelaOS(const VelaOS&) = delete;
    VelaOS& operator=(const VelaOS&) = delete;

    /// Returns the wall clock in microseconds since 1970-01-01 00:00 UTC. It may
    /// jump when the machine's clock is set.
    [[nodiscard]] std::uint64_t timestamp() const;

    /// Replaces the clock, for tests and for replay. An empty function restores the
    /// machine's clock. The function must be callable from every thread that reads
    /// the time.
    void setClock(Clock a_clock);

private:
    VelaOS() = default;
    ~VelaOS() = default;
};

#endif
