#include "filesizelimit.h"
#include "simulationdata/pdwfile.h"
#include "tracecollector.h"

#include <array>
#include <optional>

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

struct CPackedPDW
{
    std::array<char, PDWFile::s_uiRecordBytes> bytes{};
};

class TestPDWFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_traces.reset(); }
    void blocks();
    void emptyBlocks();
    void readsRecords();
    void otherDirection();
    void refused();
    void unreadable();
    void fullDisk();

private:
    [[nodiscard]] QString path() const { return m_folder.filePath(QStringLiteral("pulses.pdw")); }
    [[nodiscard]] QByteArray content() const;

    QTemporaryDir m_folder;
    std::optional<TraceCollector> m_traces;
};

namespace {

QByteArray recordBytes(int a_iNumber)
{
    return QByteArray::number(a_iNumber).rightJustified(PDWFile::s_uiRecordBytes, '.');
}

CPackedPDW record(int a_iNumber)
{
    CPackedPDW pulse;
    std::copy_n(recordBytes(a_iNumber).constData(), pulse.bytes.size(), pulse.bytes.begin());
    return pulse;
}

QByteArray records(int a_iFrom, int a_iTo)
{
    QByteArray bytes;
    for (int i = a_iFrom; i < a_iTo; ++i) {
        bytes += recordBytes(i);
    }
    return bytes;
}

int addRecords(PDWFile& a_file, int a_iFrom, int a_iTo)
{
    int iBuffered = 0;
    for (int i = a_iFrom; i < a_iTo; ++i) {
        CPackedPDW pulse = record(i);
        iBuffered = a_file.addPDW(&pulse);
    }
    return iBuffered;
}

} // namespace

void TestPDWFile::init()
{
    m_traces.emplace();
}

QByteArray TestPDWFile::content() const
{
    QFile file(path());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void TestPDWFile::blocks()
{
    for (const bool bHeaders : {true, false}) {
        {
            PDWFile file(path(), true, bHeaders);
            QVERIFY(file.is_open());
            QCOMPARE(addRecords(file, 0, 1000), 1000);
            QCOMPARE(addRecords(file, 1000, 1001), 1);
        }
        const QByteArray first("726574fb481f000000000000000200000200000000000000e803000008000000");
        const QByteArray second("726574fb1000000001000000000200000200000000000000 0100000008000000");
        QCOMPARE(content(), (bHeaders ? QByteArray::fromHex(first) : QByteArray()) + records(0, 1000) +
                                (bHeaders ? QByteArray::fromHex(second) : QByteArray()) +
                                records(1000, 1001));
    }
    QVERIFY(TraceCollector::lines().isEmpty());
}

/// Without records, each call of write() writes one header. Closing the file writes
/// another header.
void TestPDWFile::emptyBlocks()
{
    for (const bool bHeaders : {true, false}) {
        {
            PDWFile file(path(), true, bHeaders);
            file.write();
            file.write();
            file.write();
        }
        QByteArray headers;
        for (const char* szNumber : {"00000000", "01000000", "02000000", "03000000"}) {
            headers += QByteArray("726574fb08000000") + szNumber + "0002000002000000000000000000000008000000";
        }
        QCOMPARE(content(), bHeaders ? QByteArray::fromHex(headers) : QByteArray());
    }
}

void TestPDWFile::readsRecords()
{
    {
        PDWFile file(path(), true, false);
        addRecords(file, 0, 3);
    }
    for (const QByteArray& tail : {QByteArray(), QByteArray("cut")}) {
        QFile file(path());
        QVERIFY(file.open(QIODevice::Append) && file.write(tail) == tail.size());
        file.close();
        PDWFile reader(path(), false, true);
        CPackedPDW pulse;
        for (int i = 0; i < 3; ++i) {
            QCOMPARE(reader.getPDW(&pulse), 32);
            QCOMPARE(QByteArray(pulse.bytes.data(), 32), recordBytes(i));
        }
        QCOMPARE(reader.getPDW(&pulse), 32);
        QCOMPARE(QByteArray(pulse.bytes.data(), 32), tail.leftJustified(32, '\0'));
        pulse = record(7);
        QCOMPARE(reader.getPDW(&pulse), 0);
        QCOMPARE(reader.getPDW(&pulse), 0);
        QCOMPARE(QByteArray(pulse.bytes.data(), 32), recordBytes(7));
    }
}

/// Reading from a writer and writing to a reader have no effect. Afterwards the writer
/// still writes and the reader still reads.
void TestPDWFile::otherDirection()
{
    CPackedPDW pulse;
    {
        PDWFile writer(path(), true, false);
        QCOMPARE(writer.getPDW(&pulse), 0);
        addRecords(writer, 0, 2);
    }
    {
        PDWFile reader(path(), false, true);
        QCOMPARE(addRecords(reader, 0, 1500), 500);
        reader.write();
        QCOMPARE(reader.getPDW(&pulse), 32);
        QCOMPARE(QByteArray(pulse.bytes.data(), 32), recordBytes(0));
        addRecords(reader, 0, 1);
    }
    QCOMPARE(content(), records(0, 2));
    QVERIFY(TraceCollector::lines().isEmpty());
}

/// A file that cannot be opened discards its records when the buffer is full.
void TestPDWFile::refused()
{
    PDWFile(path(), true, true).write();
    const QByteArray before = content();
    const QString sPipe = m_folder.filePath(QStringLiteral("pipe"));
    QCOMPARE(mkfifo(qPrintable(sPipe), 0600), 0);
    const QStringList paths{m_folder.path(), sPipe, path() + QStringLiteral("/x"),
                            path() + QChar(QChar::Null)};
    for (const QString& sPath : paths) {
        for (const bool bForWriting : {false, true}) {
            PDWFile file(sPath, bForWriting, true);
            QVERIFY(!file.is_open());
            QCOMPARE(addRecords(file, 0, 2001), 1);
            CPackedPDW pulse;
            QCOMPARE(file.getPDW(&pulse), 0);
        }
    }
    QCOMPARE(TraceCollector::lines().size(), 2 * paths.size());
    QCOMPARE(content(), before);
}

/// The file can be opened, but its beginning cannot be read.
void TestPDWFile::unreadable()
{
    PDWFile file(QStringLiteral("/proc/self/mem"), false, false);
    QVERIFY(file.is_open());
    CPackedPDW pulse = record(7);
    QCOMPARE(file.getPDW(&pulse), 0);
    QCOMPARE(file.getPDW(&pulse), 0);
    QCOMPARE(QByteArray(pulse.bytes.data(), 32), recordBytes(7));
    QCOMPARE(TraceCollector::lines().size(), 1);
}

/// In the first two cases, one block and a part of the next fit into the file. In the
/// last case, not even a header fits. The last two cases fail only when the file is
/// closed.
void TestPDWFile::fullDisk()
{
    for (const auto& [iRoom, iRecords] : {std::pair{40000, 5000}, std::pair{40000, 1900}, std::pair{16, 1}}) {
        TraceCollector::lines().clear();
        {
            const FileSizeLimit limit(static_cast<rlim_t>(iRoom));
            PDWFile file(path(), true, true);
            addRecords(file, 0, iRecords);
        }
        QCOMPARE(TraceCollector::lines().size(), 1);
        QVERIFY(TraceCollector::lines().constFirst().contains(QStringLiteral(": File too large ")));
        QVERIFY(content().size() <= iRoom);
    }
}

QTEST_GUILESS_MAIN(TestPDWFile)
#include "tst_pdwfile.moc"
