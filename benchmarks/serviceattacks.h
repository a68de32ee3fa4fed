#ifndef BENCHMARKS_SERVICEATTACKS_H
#define BENCHMARKS_SERVICEATTACKS_H

#include <QByteArray>

#include <atomic>
#include <cstdint>
#include <functional>
#include <thread>
#include <vector>

/// What one misbehaving peer does, on a thread of its own, until the flag is
/// set.
using Attack = std::function<void(std::uint16_t a_uiPort, const std::atomic<bool>& a_bEnd)>;

/// A number of peers that misbehave in the same way. They end with the object.
class Attackers
{
public:
    Attackers(int a_iCount, std::uint16_t a_uiPort, const Attack& a_attack);
    ~Attackers();
    Attackers(const Attackers&) = delete;
    Attackers& operator=(const Attackers&) = delete;

private:
    std::atomic<bool> m_bEnd = false;
    std::vector<std::thread> m_threads;
};

/// Sends the first bytes once and the others over and over, and connects again
/// when it is dropped. Reads what it is sent, or does not.
[[nodiscard]] Attack repeat(const QByteArray& a_once, const QByteArray& a_always, bool a_bRead);

/// Sends a document of so many bytes without its end, and waits.
[[nodiscard]] Attack unfinished(std::int64_t a_iBytes);

/// Connects many times at once, waits until all are connected, closes all, and
/// begins again. `*a_pTimes` takes the times of the connections (ms); read it
/// when the attackers have ended. May have one attacker only.
[[nodiscard]] Attack burst(int a_iConnections, std::vector<double>* a_pTimes);

// Commands of attackers
[[nodiscard]] QByteArray registration(const char* a_szId);
[[nodiscard]] QByteArray stateUpdate(const char* a_szId, int a_iState);
[[nodiscard]] QByteArray bomb(std::int64_t a_iBytes);

#endif
