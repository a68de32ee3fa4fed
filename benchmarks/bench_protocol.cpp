#include "comparison.h"
#include "processmemory.h"

#include "kpbase/errorhandler.h"
#include "simulationdata/simulationservicecommunication.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QFile>
#include <QRandomGenerator>
#include <QTcpServer>
#include <QTcpSocket>

#include <chrono>
#include <cstdint>
#include <memory>

using namespace Simulation;

namespace {

constexpr qsizetype s_iMebi = qsizetype(1024) * 1024;
constexpr int s_iCommands = 20'000;

/// Editor and service in one process, connected by a pair of sockets.
class Loopback
{
public:
    Loopback()
    {
        // Traces are off, because every processed command is traced as an error.
        ErrorHandler::Instance().setTraceMask(0);
        static int s_iArguments = 0;
        if (QCoreApplication::instance() == nullptr) {
            static QCoreApplication s_application(s_iArguments, nullptr);
        }
        m_server.listen(QHostAddress::LocalHost);
        m_socket.connectToHost(QHostAddress::LocalHost, m_server.serverPort());
        m_server.waitForNewConnection(-1);
        m_socket.waitForConnected();
        editor = std::make_unique<SimulationServiceCommunication>(&m_socket);
        service = std::make_unique<SimulationServiceCommunication>(m_server.nextPendingConnection());
    }

    /// Sends a scenario and returns the received bytes.
    QByteArray load(const QByteArray& a_document)
    {
        QByteArray received;
        QEventLoop loop;
        const auto connection = QObject::connect(service.get(), &SimulationServiceCommunication::loadScenario,
                                                 &loop, [&](const QByteArray& a_scenario) {
                                                     received = a_scenario;
                                                     loop.quit();
                                                 });
        editor->sendLoadScenario(a_document);
        loop.exec();
        QObject::disconnect(connection);
        return received;
    }

private:
    QTcpServer m_server;
    QTcpSocket m_socket;

public:
    std::unique_ptr<SimulationServiceCommunication> editor;
    std::unique_ptr<SimulationServiceCommunication> service;
};

/// A document like that of a scenario. Compression shrinks it to about a fifth.
QByteArray scenarioOf(qsizetype a_iBytes)
{
    QRandomGenerator random(1);
    QByteArray document("<Scenario>\n");
    while (document.size() < a_iBytes) {
        document.append("    <ScenarioObject Id=\"")
            .append(QByteArray::number(random.generate64(), 16))
            .append("\"><Longitude>")
            .append(QByteArray::number(random.generateDouble(), 'g', 14))
            .append("</Longitude><Latitude>")
            .append(QByteArray::number(random.generateDouble(), 'g', 14))
            .append("</Latitude><FrequencySettings Class=\"FrequencySettingsFixed\"/></ScenarioObject>\n");
    }
    return document.append("</Scenario>\n");
}

/// Incompressible bytes, which give the largest command for their size.
QByteArray noiseOf(qsizetype a_iBytes)
{
    QRandomGenerator random(1);
    QByteArray bytes(a_iBytes, Qt::Uninitialized);
    random.fillRange(reinterpret_cast<quint32*>(bytes.data()), a_iBytes / qsizetype(sizeof(quint32)));
    return bytes;
}

void compareLoad(benchmark::State& a_state, const QByteArray& a_document)
{
    Loopback loopback;
    compare(
        a_state, a_document.size(),
        [&] {
            const QByteArray text = qCompress(a_document, -1).toBase64();
            benchmark::DoNotOptimize(qUncompress(QByteArray::fromBase64(text)));
        },
        [&] {
            if (loopback.load(a_document) != a_document) {
                a_state.SkipWithError("other bytes arrived");
            }
        });
}

void sendScenario(benchmark::State& a_state)
{
    compareLoad(a_state, scenarioOf(a_state.range(0) * s_iMebi));
}
BENCHMARK(sendScenario)->Arg(1)->Arg(16)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(3.0);

void sendNoise(benchmark::State& a_state)
{
    compareLoad(a_state, noiseOf(a_state.range(0) * s_iMebi));
}
BENCHMARK(sendNoise)->Arg(16)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(3.0);

/// The time (s) to send the command `s_iCommands` times over a pair of sockets, without
/// the library.
double bareSeconds(const QByteArray& a_command)
{
    QTcpServer server;
    server.listen(QHostAddress::LocalHost);
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, server.serverPort());
    server.waitForNewConnection(-1);
    QTcpSocket* const pPeer = server.nextPendingConnection();
    qsizetype iLeft = a_command.size() * s_iCommands;
    QEventLoop loop;
    QObject::connect(pPeer, &QTcpSocket::readyRead, &loop, [&] {
        iLeft -= pPeer->readAll().size();
        if (iLeft <= 0) {
            loop.quit();
        }
    });
    return secondsOf([&] {
        for (int i = 0; i < s_iCommands; ++i) {
            socket.write(a_command);
        }
        loop.exec();
    });
}

void smallCommands(benchmark::State& a_state)
{
    Loopback loopback;
    double dBare = 0.0;
    double dOurs = 0.0;
    int iReceived = 0;
    QEventLoop loop;
    QObject::connect(loopback.service.get(), &SimulationServiceCommunication::startScenario, &loop, [&] {
        if (++iReceived % s_iCommands == 0) {
            loop.quit();
        }
    });
    for ([[maybe_unused]] auto iteration : a_state) {
        dBare +=
            bareSeconds("<Command>\n    <StartScenario>\n        <Timestamp>1700000000000000</Timestamp>\n"
                        "        <ScenarioTime>12345</ScenarioTime>\n    </StartScenario>\n</Command>\n");
        const double dSeconds = secondsOf([&] {
            for (int i = 0; i < s_iCommands; ++i) {
                loopback.editor->sendStartScenario(1'700'000'000'000'000U, 12'345U);
            }
            loop.exec();
        });
        dOurs += dSeconds;
        a_state.SetIterationTime(dSeconds);
    }
    const auto dCommands = static_cast<double>(a_state.iterations()) * s_iCommands;
    a_state.counters["commands_per_s"] = dCommands / dOurs;
    a_state.counters["bare_per_s"] = dCommands / dBare;
    a_state.counters["ratio"] = dOurs / dBare;
}
BENCHMARK(smallCommands)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(3.0);

/// The peak memory of both ends together, divided by the sent bytes. "process_ratio"
/// counts the whole process. "added_ratio" subtracts the memory in use before loading.
/// The kernel's peak is reset before each run.
void peakMemory(benchmark::State& a_state)
{
    Loopback loopback;
    const QByteArray document = noiseOf(a_state.range(0) * s_iMebi);
    double dProcess = 0.0;
    double dBefore = 0.0;
    for ([[maybe_unused]] auto iteration : a_state) {
        if (!resetPeakMemory()) {
            a_state.SkipWithError("the peak cannot be set back");
            break;
        }
        dBefore = processBytes("VmRSS:");
        benchmark::DoNotOptimize(loopback.load(document));
        dProcess = processBytes("VmHWM:");
    }
    const auto dPayload = static_cast<double>(document.size());
    a_state.counters["MiB"] = dPayload / static_cast<double>(s_iMebi);
    a_state.counters["process_ratio"] = dProcess / dPayload;
    a_state.counters["added_ratio"] = (dProcess - dBefore) / dPayload;
}
BENCHMARK(peakMemory)->Arg(64)->Unit(benchmark::kMillisecond)->Iterations(1);

} // namespace
