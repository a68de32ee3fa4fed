#ifndef BENCHMARKS_SERVICEATTACKS_H
#define BENCHMARKS_SERVICEATTACKS_H

#include <QByteArray>

#include <atomic>
#include <cstdint>
#include <functional>
#include <thread>
#include <vector>

/// The actions of one attacking peer. The actions run on their own thread until `a_bEnd`
/// is set.
using Attack = std::function<void(std::uint16_t a_uiPort, const std::atomic<bool>& a_bEnd)>;

/// Several peers that run the same attack, each on its own thread. The threads end with
/// the object.
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

/// Sends `a_once` once and then `a_always` repeatedly. Reconnects when the service has
/// dropped the peer. `a_bRead` selects whether the peer reads the received bytes.
[[nodiscard]] Attack repeat(const QByteArray& a_once, const QByteArray& a_always, bool a_bRead);

/// Sends a document of this size (bytes) without its end, and waits.
[[nodiscard]] Attack unfinished(std::int64_t a_iBytes);

/// Connects many sockets at the same time, waits until all are connected, closes all,
/// and repeats that. Stores the time that each socket needs to connect (ms) in
/// `*a_pTimes`. No lock protects `*a_pTimes`: use a single attacker, and read the times
/// after it has ended.
[[nodiscard]] Attack burst(int a_iConnections, std::vector<double>* a_pTimes);

/// Connects and registers this number of devices. Then the first device sends
/// `a_always` repeatedly and reads the received bytes, unless `a_always` is empty. The
/// other devices do not read. Use a single attacker, because the ids of the devices are
/// fixed.
[[nodiscard]] Attack crowd(int a_iDevices, const QByteArray& a_always);

// Commands of attackers. bomb() is a scenario that grows to `a_iBytes` bytes when the
// service uncompresses it.
[[nodiscard]] QByteArray registration(const QByteArray& a_id, const char* a_szName = "");
[[nodiscard]] QByteArray stateUpdate(const char* a_szId, int a_iState);
[[nodiscard]] QByteArray bomb(std::int64_t a_iBytes);

#endif
