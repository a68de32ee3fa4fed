#include "comparison.h"

#include "simulationdata/simulationlimits.h"
#include "simulationdata/xmlseparator_p.h"

#include <QCoreApplication>
#include <QIODevice>
#include <QXmlStreamReader>

#include <algorithm>
#include <cstring>

using namespace Simulation;

namespace {

constexpr qsizetype s_iKibi = 1024;
constexpr qsizetype s_iMebi = 1024 * s_iKibi;

/// A device that returns one segment of a text per signal. Does not own the text.
class SegmentDevice : public QIODevice
{
public:
    SegmentDevice() { open(QIODevice::ReadWrite | QIODevice::Unbuffered); }

    [[nodiscard]] bool isSequential() const override { return true; }
    [[nodiscard]] qint64 bytesAvailable() const override { return m_segment.size(); }

    void arrive(QByteArrayView a_segment)
    {
        m_segment = a_segment;
        Q_EMIT readyRead();
    }

protected:
    qint64 readData(char* a_pData, qint64 a_iMost) override
    {
        const qsizetype iBytes = std::min<qint64>(a_iMost, m_segment.size());
        std::memcpy(a_pData, m_segment.data(), static_cast<std::size_t>(iBytes));
        m_segment = m_segment.sliced(iBytes);
        return iBytes;
    }
    qint64 writeData(const char* /*a_pData*/, qint64 a_iBytes) override { return a_iBytes; }

private:
    QByteArrayView m_segment;
};

/// A document of elements and attributes like a scenario's.
QByteArray taggedDocument(qsizetype a_iBytes)
{
    const QByteArray element = "    <WayPoint Longitude=\"8.123456789\" Latitude=\"54.123456789\">\n"
                               "        <Speed>12.5</Speed>\n"
                               "        <Name>Way point</Name>\n"
                               "    </WayPoint>\n";
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Scenario>\n" +
           element.repeated(a_iBytes / element.size()) + "</Scenario>\n";
}

/// A command that carries a scenario as one long text.
QByteArray commandDocument(qsizetype a_iBytes)
{
    const QByteArray digits = "aGFyZGx5IGNvbXByZXNzaWJsZQBC/+d4nO3B";
    return "<Command>\n    <LoadScenario>\n        <Scenario>" + digits.repeated(a_iBytes / digits.size()) +
           "</Scenario>\n    </LoadScenario>\n</Command>\n";
}

double bareSeconds(const QByteArray& a_document, qsizetype a_iCopies)
{
    return secondsOf([&] {
        for (qsizetype i = 0; i < a_iCopies; ++i) {
            QXmlStreamReader reader(a_document);
            while (!reader.atEnd()) {
                benchmark::DoNotOptimize(reader.readNext());
            }
        }
    });
}

double separatorSeconds(const QByteArray& a_stream, qsizetype a_iSegment, qsizetype a_iCopies,
                        benchmark::State& a_state)
{
    SegmentDevice device;
    XmlSeparator separator(&device, nullptr);
    qsizetype iReceived = 0;
    QObject::connect(&separator, &XmlSeparator::xmlReceived, &separator, [&] { ++iReceived; });
    const double dSeconds = secondsOf([&] {
        for (qsizetype i = 0; i < a_stream.size(); i += a_iSegment) {
            device.arrive(QByteArrayView(a_stream).sliced(i, std::min(a_iSegment, a_stream.size() - i)));
            QCoreApplication::sendPostedEvents();
        }
    });
    if (iReceived != a_iCopies) {
        a_state.SkipWithError("not every document was received");
    }
    return dSeconds;
}

/// Reads a stream of equal documents of `range(0)` bytes each in segments of
/// `range(1)` bytes. "speed" is the separator's speed divided by that of a bare stream
/// reader.
void separate(benchmark::State& a_state, QByteArray (*a_pMake)(qsizetype))
{
    int iArguments = 0;
    const QCoreApplication application(iArguments, nullptr);
    Limits::setValue(Limits::RecordElements, 64 * s_iMebi);
    const auto iSegment = static_cast<qsizetype>(a_state.range(1));
    const qsizetype iTotal = iSegment == 1 ? s_iMebi : 8 * s_iMebi;
    const QByteArray document = a_pMake(static_cast<qsizetype>(a_state.range(0)));
    const qsizetype iCopies = std::max<qsizetype>(iTotal / document.size(), 1);
    const QByteArray stream = document.repeated(iCopies);
    double dBare = 0.0;
    double dOurs = 0.0;
    for ([[maybe_unused]] auto iteration : a_state) {
        dBare += bareSeconds(document, iCopies);
        const double dSeconds = separatorSeconds(stream, iSegment, iCopies, a_state);
        dOurs += dSeconds;
        a_state.SetIterationTime(dSeconds);
    }
    const double dMebi = static_cast<double>(stream.size()) * static_cast<double>(a_state.iterations()) /
                         static_cast<double>(s_iMebi);
    a_state.counters["bare_MiB/s"] = dMebi / dBare;
    a_state.counters["ours_MiB/s"] = dMebi / dOurs;
    a_state.counters["speed"] = dBare / dOurs;
    Limits::setValue(Limits::RecordElements, 0);
}

void documentsAndSegments(benchmark::internal::Benchmark* a_pBenchmark)
{
    constexpr qsizetype iPacket = 1460;
    a_pBenchmark->ArgNames({"document", "segment"})->UseManualTime()->Unit(benchmark::kMillisecond);
    for (const qsizetype iDocument : {s_iKibi, s_iMebi}) {
        for (const qsizetype iSegment : {qsizetype{1}, iPacket, 64 * s_iKibi, s_iMebi}) {
            a_pBenchmark->Args({iDocument, iSegment});
        }
    }
    a_pBenchmark->Args({64 * s_iMebi, iPacket})->Args({64 * s_iMebi, s_iMebi});
}
BENCHMARK_CAPTURE(separate, tags, taggedDocument)->Apply(documentsAndSegments);
BENCHMARK_CAPTURE(separate, payload, commandDocument)->Apply(documentsAndSegments);

} // namespace
