#include "serviceattacks.h"

#include "simulationdata/simulationdeviceconfiguration.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr int s_iPollMs = 20;
constexpr auto s_betweenBursts = std::chrono::milliseconds(500); ///< lets the service handle the waiting
                                                                 ///< connections
constexpr auto s_pause = std::chrono::milliseconds(s_iPollMs);

/// Creates a connecting socket, which the caller closes.
int connectTo(std::uint16_t a_uiPort)
{
    const int iSocket = socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    const linger reset{1, 0}; // closes with a reset, so that no port stays in use
    setsockopt(iSocket, SOL_SOCKET, SO_LINGER, &reset, sizeof(reset));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(a_uiPort);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    // The connection is made asynchronously; poll() reports its result.
    static_cast<void>(connect(iSocket, reinterpret_cast<const sockaddr*>(&address), sizeof(address)));
    return iSocket;
}

/// Sends all bytes. False at the end of the attack and after an error of the socket.
bool sendAll(int a_iSocket, const QByteArray& a_bytes, bool a_bRead, const std::atomic<bool>& a_bEnd)
{
    static thread_local std::array<char, 65'536> s_received;
    qsizetype iSent = 0;
    while (iSent < a_bytes.size() && !a_bEnd) {
        pollfd poll{a_iSocket, static_cast<short>(POLLOUT | (a_bRead ? POLLIN : 0)), 0};
        ::poll(&poll, 1, s_iPollMs);
        if ((poll.revents & (POLLERR | POLLHUP)) != 0) {
            return false;
        }
        if ((poll.revents & POLLIN) != 0 && recv(a_iSocket, s_received.data(), s_received.size(), 0) == 0) {
            return false;
        }
        if ((poll.revents & POLLOUT) != 0) {
            const ssize_t iBytes =
                send(a_iSocket, a_bytes.constData() + iSent, a_bytes.size() - iSent, MSG_NOSIGNAL);
            if (iBytes < 0 && errno != EAGAIN) {
                return false;
            }
            iSent += std::max<ssize_t>(iBytes, 0);
        }
    }
    return !a_bEnd;
}

void raiseDescriptors()
{
    rlimit descriptors{};
    getrlimit(RLIMIT_NOFILE, &descriptors);
    descriptors.rlim_cur = descriptors.rlim_max;
    setrlimit(RLIMIT_NOFILE, &descriptors);
}

/// Connects all sockets at the same time and stores the time that each takes (ms).
void connectAll(std::vector<pollfd>& a_sockets, std::uint16_t a_uiPort, const std::atomic<bool>& a_bEnd,
                std::vector<double>& a_times)
{
    const auto begin = std::chrono::steady_clock::now();
    for (pollfd& each : a_sockets) {
        each = {connectTo(a_uiPort), POLLOUT, 0};
    }
    std::vector<pollfd> waiting = a_sockets;
    while (!waiting.empty() && !a_bEnd) {
        poll(waiting.data(), waiting.size(), s_iPollMs);
        const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - begin;
        const auto connected =
            std::erase_if(waiting, [](const pollfd& a_each) { return a_each.revents != 0; });
        a_times.insert(a_times.end(), connected, time.count());
    }
}

} // namespace

Attackers::Attackers(int a_iCount, std::uint16_t a_uiPort, const Attack& a_attack)
{
    for (int i = 0; i < a_iCount; ++i) {
        m_threads.emplace_back([this, a_uiPort, a_attack] { a_attack(a_uiPort, m_bEnd); });
    }
}

Attackers::~Attackers()
{
    m_bEnd = true;
    for (std::thread& thread : m_threads) {
        thread.join();
    }
}

Attack repeat(const QByteArray& a_once, const QByteArray& a_always, bool a_bRead)
{
    return [=](std::uint16_t a_uiPort, const std::atomic<bool>& a_bEnd) {
        while (!a_bEnd) {
            const int iSocket = connectTo(a_uiPort);
            bool bGood = sendAll(iSocket, a_once, a_bRead, a_bEnd);
            while (bGood) {
                bGood = sendAll(iSocket, a_always, a_bRead, a_bEnd);
            }
            close(iSocket);
            std::this_thread::sleep_for(s_pause);
        }
    };
}

Attack unfinished(std::int64_t a_iBytes)
{
    return [=](std::uint16_t a_uiPort, const std::atomic<bool>& a_bEnd) {
        const QByteArray piece(1 << 20, 'A');
        const int iSocket = connectTo(a_uiPort);
        bool bGood = sendAll(iSocket, "<Command><LoadScenario><ScenarioData>", false, a_bEnd);
        for (std::int64_t iSent = 0; bGood && iSent < a_iBytes; iSent += piece.size()) {
            bGood = sendAll(iSocket, piece, false, a_bEnd);
        }
        while (!a_bEnd) {
            std::this_thread::sleep_for(s_pause);
        }
        close(iSocket);
    };
}

Attack burst(int a_iConnections, std::vector<double>* a_pTimes)
{
    return [=](std::uint16_t a_uiPort, const std::atomic<bool>& a_bEnd) {
        raiseDescriptors();
        while (!a_bEnd) {
            std::vector<pollfd> sockets(static_cast<std::size_t>(a_iConnections));
            connectAll(sockets, a_uiPort, a_bEnd, *a_pTimes);
            for (const pollfd& each : sockets) {
                close(each.fd);
            }
            std::this_thread::sleep_for(s_betweenBursts);
        }
    };
}

Attack crowd(int a_iDevices, const QByteArray& a_always)
{
    return [=](std::uint16_t a_uiPort, const std::atomic<bool>& a_bEnd) {
        raiseDescriptors();
        std::vector<int> sockets;
        bool bGood = true;
        for (int i = 0; bGood && i < a_iDevices; ++i) {
            sockets.push_back(connectTo(a_uiPort));
            bGood = sendAll(sockets.back(), registration("crowd-" + QByteArray::number(i)), false, a_bEnd);
        }
        while (bGood && !a_always.isEmpty()) {
            bGood = sendAll(sockets.front(), a_always, true, a_bEnd);
        }
        while (!a_bEnd) {
            std::this_thread::sleep_for(s_pause);
        }
        std::for_each(sockets.begin(), sockets.end(), close);
    };
}

QByteArray registration(const QByteArray& a_id, const char* a_szName)
{
    Simulation::SimulationDeviceConfiguration configuration;
    configuration.setId(QString::fromLatin1(a_id));
    configuration.setName(QLatin1String(a_szName));
    return "<Command><RegisterSimulation Id=\"" + a_id + "\"><SimulationDevice>" +
           configuration.toXml().replace('<', "&lt;") + "</SimulationDevice></RegisterSimulation></Command>";
}

QByteArray stateUpdate(const char* a_szId, int a_iState)
{
    return QByteArray("<Command><SimulationDeveiceStateUpdate Id=\"") + a_szId +
           "\"><State>&lt;s>&lt;ScenarioDataState>" + QByteArray::number(a_iState) +
           "&lt;/ScenarioDataState>&lt;/s></State></SimulationDeveiceStateUpdate></Command>";
}

QByteArray bomb(std::int64_t a_iBytes)
{
    return "<Command><LoadScenario><ScenarioData>" + qCompress(QByteArray(a_iBytes, 'A')).toBase64() +
           "</ScenarioData></LoadScenario></Command>";
}
