#include "simulationdata/emissionsettings.h"
#include "simulationdata/scenariodatabinary.h"
#include "simulationdata/scenarionetwork.h"
#include "simulationdata/simulationlimits.h"
#include "simulationdata/szenarioemitter.h"
#include "tracecollector.h"

#include <QBuffer>
#include <QFile>
#include <QtEndian>
#include <QTest>

#include <algorithm>
#include <random>
#include <vector>

using namespace Simulation;

namespace {

using EmitterPtr = std::shared_ptr<SzenarioEmitter>;

const QByteArray s_noLink = "%%NONE%%";

QByteArray number(quint32 a_uiValue)
{
    QByteArray bytes(sizeof(a_uiValue), '\0');
    qToBigEndian(a_uiValue, bytes.data());
    return bytes;
}

/// An ASCII text as it is stored in the stream: first the size (bytes), then the text in
/// UTF-16, both big-endian.
QByteArray text(const QByteArray& a_text)
{
    QByteArray bytes = number(static_cast<quint32>(2 * a_text.size()));
    for (const char cLetter : a_text) {
        bytes += '\0';
        bytes += cLetter;
    }
    return bytes;
}

QByteArray record(const QByteArray& a_id, const QByteArray& a_link, const QByteArray& a_name = "n",
                  char a_cDefault = '\0')
{
    return text(a_id) + text(a_name) + text("d") + '\1' + a_cDefault + text(a_link) + text("c");
}

/// Creates emitters from a text such as "a>b b c>x". Here a is linked to b, and c is
/// linked to an emitter that is not in the list. The other fields are those of
/// record().
QSet<EmitterPtr> emittersOf(const QString& a_sText)
{
    static const auto s_outside = std::make_shared<SzenarioEmitter>(QStringLiteral("x"), QString());
    QHash<QString, EmitterPtr> emitters;
    const QStringList words = a_sText.split(u' ');
    for (const QString& word : words) {
        const auto emitter = std::make_shared<SzenarioEmitter>(word.left(1), QStringLiteral("n"));
        emitter->setDescription(QStringLiteral("d"));
        emitter->setClass(QStringLiteral("c"));
        emitters.insert(word.left(1), emitter);
    }
    for (const QString& word : words) {
        emitters.value(word.left(1))
            ->setLinkTargetEmitter(word.size() > 1 ? emitters.value(word.mid(2), s_outside) : nullptr);
    }
    return {emitters.cbegin(), emitters.cend()};
}

/// The stream for a text as in emittersOf(). The records are in the order of the text.
QByteArray streamOf(const QString& a_sText)
{
    const QStringList words = a_sText.split(u' ');
    QByteArray bytes = number(static_cast<quint32>(words.size()));
    for (const QString& word : words) {
        bytes += record(word.left(1).toLatin1(), word.size() > 1 ? word.mid(2).toLatin1() : s_noLink);
    }
    return bytes;
}

/// The emitters as "id:name>target id:target name", sorted. "one-sided" marks a link
/// whose target does not list the emitter.
QString linksOf(const ScenarioDataBinary& a_scenario)
{
    QStringList words;
    for (const EmitterPtr& emitter : a_scenario.scenarioEmitter()) {
        const auto target = emitter->linkTargetEmitter();
        const QString sTarget = target ? u'>' + target->id() + u':' + target->name() : QString();
        words.append(emitter->id() + u':' + emitter->name() + sTarget);
        if (target && !target->linkedEmitter().contains(emitter)) {
            words.append(QStringLiteral("one-sided"));
        }
    }
    words.sort();
    return words.join(u' ');
}

/// A device that returns the head and then zeros without end. It records the largest
/// size that a read requests.
class EndlessDevice : public QIODevice
{
public:
    explicit EndlessDevice(const QByteArray& a_head)
        : m_head(a_head)
    {
        open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }
    [[nodiscard]] bool isSequential() const override { return true; }

    qint64 largest = 0;
    qint64 given = 0;

protected:
    qint64 readData(char* a_pData, qint64 a_iSize) override
    {
        largest = std::max(largest, a_iSize);
        for (qint64 i = 0; i < a_iSize; ++i, ++given) {
            a_pData[i] = given < m_head.size() ? m_head.at(given) : '\0';
        }
        return a_iSize;
    }
    qint64 writeData(const char* /*a_pData*/, qint64 /*a_iSize*/) override { return -1; }

private:
    QByteArray m_head;
};

/// Returns at most 3 bytes for each read, as connections may.
class PieceBuffer : public QBuffer
{
protected:
    qint64 readData(char* a_pData, qint64 a_iSize) override
    {
        return QBuffer::readData(a_pData, std::min<qint64>(a_iSize, 3));
    }
};

} // namespace

class TestScenarioDataBinary : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void streamBytes_data();
    void streamBytes();
    void writesInLinkOrder_data();
    void writesInLinkOrder();
    void writesEqualIdsInOrder();
    void resolvesLinks_data();
    void resolvesLinks();
    void takesOnlyItsRecords();
    void breaksOff_data();
    void breaksOff();
    void everyTruncation();
    void damagedBytes();
    void asksForLittle();
    void uselessDevices();
    void writesOnlyWhatIsRead();
    void releasesItsObjects();
    void longChain();
};

void TestScenarioDataBinary::cleanup()
{
    Limits::setValue(Limits::DocumentBytes, 0);
    Limits::setValue(Limits::ScenarioObjects, 0);
}

void TestScenarioDataBinary::streamBytes_data()
{
    QTest::addColumn<EmitterPtr>("emitter");
    QTest::addColumn<bool>("isDefault");
    QTest::addColumn<QByteArray>("hex");

    const QByteArray none = "00000010 0025 0025 004e 004f 004e 0045 0025 0025";
    const auto full = std::make_shared<SzenarioEmitter>(QStringLiteral("e1"), QStringLiteral("Bö"));
    full->setDescription(QString::fromUtf8("\xF0\x9F\x93\xA1"));
    full->setClass(QStringLiteral("C"));
    full->setActive(false);
    QTest::newRow("no emitter") << EmitterPtr() << false << QByteArray("00000000");
    QTest::newRow("all fields") << full << true
                                << "00000001 00000004 0065 0031 00000004 0042 00f6 00000004 d83d dce1 00 01" +
                                       none + "00000002 0043";
    const auto bare = std::make_shared<SzenarioEmitter>(QStringLiteral("i"), QString());
    bare->setDescription(QStringLiteral(""));
    QTest::newRow("null name and class, empty description")
        << bare << false << "00000001 00000002 0069 ffffffff 00000000 01 00" + none + "ffffffff";
}

void TestScenarioDataBinary::streamBytes()
{
    QFETCH(EmitterPtr, emitter);
    QFETCH(bool, isDefault);
    QFETCH(QByteArray, hex);

    const QByteArray bytes = QByteArray::fromHex(hex);
    ScenarioDataBinary written(nullptr);
    written.setScenarioEmitter({emitter});
    written.setDefaultEmitter(isDefault ? emitter : nullptr);
    QCOMPARE(written.toBinary().toHex(), bytes.toHex());
    QBuffer device;
    QVERIFY(device.open(QIODevice::WriteOnly) && written.toBinary(&device));
    QCOMPARE(device.data(), bytes);

    ScenarioDataBinary read(nullptr);
    QVERIFY(read.fromBinary(bytes));
    QCOMPARE(read.errorString(), QString());
    QCOMPARE(read.toBinary().toHex(), bytes.toHex());
}

void TestScenarioDataBinary::writesInLinkOrder_data()
{
    QTest::addColumn<QString>("order");
    QTest::addColumn<QString>("lost");

    const auto add = [](const char* a_szRow, const char* a_szOrder, const char* a_szLost = "") {
        QTest::newRow(a_szRow) << QString::fromLatin1(a_szOrder) << QString::fromLatin1(a_szLost);
    };
    add("by id", "a b c");
    add("target first", "b c a>c d");
    add("chain", "d c>d b>c a>b");
    add("written directly after its target", "c a>c b>c z");
    add("circle", "a>c b>a c>b d", "a>c");
    add("smaller ids after a circle", "c>d a>c d>c b>d e", "c>d");
    add("two circles", "a>d b>c c>b d>a", "a>d b>c");
    add("itself", "b>b a>b", "b>b");
    add("target elsewhere", "a>x b", "a>x");
}

void TestScenarioDataBinary::writesInLinkOrder()
{
    QFETCH(QString, order);
    QFETCH(QString, lost);

    for (int iRun = 0; iRun < 8; ++iRun) { // new objects change the order of the set
        ScenarioDataBinary scenario(nullptr);
        scenario.setScenarioEmitter(emittersOf(order));
        QCOMPARE(scenario.toBinary().toHex(), streamOf(order).toHex());
    }
    ScenarioDataBinary read(nullptr);
    QVERIFY(read.fromBinary(streamOf(order)));
    QStringList unresolved;
    for (const ScenarioDataBinary::UnresolvedLink& link : read.unresolvedLinks()) {
        unresolved.append(link.emitterId + u'>' + link.targetId);
    }
    QCOMPARE(unresolved.join(u' '), lost);
}

void TestScenarioDataBinary::writesEqualIdsInOrder()
{
    const QByteArray bytes = number(3) + record("a", s_noLink, "1", '\1') + record("a", s_noLink, "1") +
                             record("a", s_noLink, "2");
    for (int iRun = 0; iRun < 8; ++iRun) {
        ScenarioDataBinary scenario(nullptr);
        QVERIFY(scenario.fromBinary(bytes));
        QCOMPARE(scenario.toBinary(), bytes);
    }
}

void TestScenarioDataBinary::resolvesLinks_data()
{
    QTest::addColumn<QByteArray>("records");
    QTest::addColumn<QString>("links");

    QTest::newRow("one before") << record("a", s_noLink) + record("b", "a") << "a:n b:n>a:n held:h";
    QTest::newRow("one after") << record("a", "b") + record("b", s_noLink) << "a:n b:n held:h";
    QTest::newRow("itself") << record("a", "a") << "a:n held:h";
    QTest::newRow("held before") << record("a", "held") << "a:n>held:h held:h";
    QTest::newRow("read emitter before held one")
        << record("held", s_noLink) + record("a", "held") << "a:n>held:n held:h held:n";
    QTest::newRow("its own id, held by another") << record("held", "held") << "held:h held:n";
    QTest::newRow("the newest of an id")
        << record("a", s_noLink, "1") + record("a", s_noLink, "2") + record("b", "a") + record("a", "", "3")
        << "a:1 a:2 a:3 b:n>a:2 held:h";
}

void TestScenarioDataBinary::resolvesLinks()
{
    QFETCH(QByteArray, records);
    QFETCH(QString, links);

    ScenarioDataBinary scenario(nullptr);
    scenario.setScenarioEmitter(
        {std::make_shared<SzenarioEmitter>(QStringLiteral("held"), QStringLiteral("h"))});
    const auto uiCount = static_cast<quint32>(records.count(text("d") + '\1'));
    QVERIFY2(scenario.fromBinary(number(uiCount) + records), qPrintable(scenario.errorString()));
    QCOMPARE(linksOf(scenario), links);
}

void TestScenarioDataBinary::takesOnlyItsRecords()
{
    PieceBuffer device;
    device.setData(number(2) + record("a", s_noLink, "n", '\1') + record("b", s_noLink, "n", '\1') +
                   number(1) + record("c", "a") + "rest");
    QVERIFY(device.open(QIODevice::ReadOnly | QIODevice::Unbuffered));
    ScenarioDataBinary scenario(nullptr);
    for (const char* szLinks : {"a:n b:n", "a:n b:n c:n>a:n"}) {
        QVERIFY(scenario.fromBinary(&device));
        QCOMPARE(linksOf(scenario), QString::fromLatin1(szLinks));
        QCOMPARE(scenario.defaultEmitter()->id(), QStringLiteral("a"));
    }
    QCOMPARE(device.data().mid(device.pos()), QByteArray("rest"));
    scenario.setScenarioEmitter({});
    QVERIFY(!scenario.defaultEmitter());
}

void TestScenarioDataBinary::breaksOff_data()
{
    QTest::addColumn<QByteArray>("stream");
    QTest::addColumn<QString>("error");

    const QByteArray first = record("a", s_noLink);
    const auto add = [](const char* a_szRow, const QByteArray& a_stream, const char* a_szError) {
        QTest::newRow(a_szRow) << a_stream << QString::fromLatin1(a_szError);
    };
    add("negative count", number(0x80000000), "count: -2147483648 is negative");
    add("no count", {}, "count: the stream ends");
    add("largest count", number(0x7FFFFFFF) + first, "record 2 of 2147483647, id: the stream ends");
    add("odd text", number(2) + first + number(3) + "abc", "record 2 of 2, id: a text cannot have 3 bytes");
    add("2 GiB text", number(2) + first + text("b") + number(0x7FFFFFFE) + "abc",
        "record 2 of 2, name: document bytes limit of 4096 exceeded");
    add("text that ends", number(2) + first + text("b") + text("n").chopped(1),
        "record 2 of 2, name: the stream ends");
    add("invalid flag", number(2) + first + text("b") + text("n") + text("d") + '\2',
        "record 2 of 2, active flag: 2 is neither 0 nor 1");
    add("too many", number(5) + first + first + first + first + first,
        "record 4 of 5: objects of one scenario limit of 4 exceeded");
}

void TestScenarioDataBinary::breaksOff()
{
    QFETCH(QByteArray, stream);
    QFETCH(QString, error);

    Limits::setValue(Limits::DocumentBytes, 4096);
    Limits::setValue(Limits::ScenarioObjects, 4);
    ScenarioDataBinary scenario(nullptr);
    scenario.setScenarioNetworks({std::make_shared<ScenarioNetwork>(QStringLiteral("n"))});
    const TraceCollector traces;
    QVERIFY(!scenario.fromBinary(stream));
    QCOMPARE(scenario.errorString(), error);
    QCOMPARE(TraceCollector::lines().size(), 1);
    const bool bRecord = error.startsWith(QStringLiteral("record "));
    QCOMPARE(scenario.scenarioEmitter().size(), bRecord ? error.section(u' ', 1, 1).toInt() - 1 : 0);
}

void TestScenarioDataBinary::everyTruncation()
{
    const QByteArray first = number(2) + record("a", s_noLink);
    const QByteArray whole = first + record("b", "a");
    const TraceCollector traces;
    for (qsizetype iBytes = 0; iBytes < whole.size(); ++iBytes) {
        ScenarioDataBinary scenario(nullptr);
        QVERIFY(!scenario.fromBinary(whole.first(iBytes)));
        QVERIFY(scenario.errorString().endsWith(QStringLiteral(": the stream ends")));
        QCOMPARE(scenario.scenarioEmitter().size(), iBytes < first.size() ? 0 : 1);
        QCOMPARE(TraceCollector::lines().size(), iBytes + 1);
    }
}

/// Emitters that were read from damaged bytes can be written and read again.
void TestScenarioDataBinary::damagedBytes()
{
    const TraceCollector quiet(0);
    std::mt19937 random(20240229); // NOLINT(cert-msc32-c,cert-msc51-cpp): the same bytes in every run
    int iWhole = 0;
    for (int iRun = 0; iRun < 3000; ++iRun) {
        QByteArray bytes = number(3) + record("a", s_noLink) + record("b", "a") + record("c", "b");
        for (auto uiChange = random() % 3; uiChange <= 3; ++uiChange) {
            bytes[static_cast<qsizetype>(random()) % bytes.size()] = static_cast<char>(random());
        }
        ScenarioDataBinary read(nullptr);
        const bool bWhole = read.fromBinary(bytes);
        iWhole += bWhole ? 1 : 0;
        QCOMPARE(read.errorString().isEmpty(), bWhole);
        ScenarioDataBinary again(nullptr);
        QVERIFY(again.fromBinary(read.toBinary()));
        QCOMPARE(again.scenarioEmitter().size(), read.scenarioEmitter().size());
        QCOMPARE(again.toBinary(), read.toBinary());
    }
    QVERIFY(iWhole > 0 && iWhole < 3000);
}

void TestScenarioDataBinary::asksForLittle()
{
    const TraceCollector quiet(0);
    constexpr int iMebi = 1 << 20;
    const auto check = [](const QByteArray& a_head, int a_iLimit) {
        Limits::setValue(Limits::DocumentBytes, static_cast<std::uint64_t>(a_iLimit));
        EndlessDevice device(a_head);
        QVERIFY(!ScenarioDataBinary(nullptr).fromBinary(&device));
        QVERIFY2(device.largest <= iMebi, qPrintable(QString::number(device.largest)));
        QVERIFY2(device.given <= a_iLimit + 4, qPrintable(QString::number(device.given)));
    };
    check(number(1) + number(0x7FFFFFFE), iMebi);
    check(number(0x7FFFFFFF), iMebi / 16); // endless small records
    // The claimed size is within the limit. One read must not request all of it.
    check(number(1) + number(16 * iMebi) + text("x"), 16 * iMebi + 10);
}

void TestScenarioDataBinary::uselessDevices()
{
    ScenarioDataBinary scenario(nullptr);
    scenario.setScenarioEmitter({std::make_shared<SzenarioEmitter>(QStringLiteral("a"), QString())});
    QBuffer closed;
    QBuffer readable;
    QBuffer writable;
    QVERIFY(readable.open(QIODevice::ReadOnly) && writable.open(QIODevice::WriteOnly));
    QFile full(QStringLiteral("/dev/full"));
    QVERIFY(full.open(QIODevice::WriteOnly));
    const TraceCollector traces;
    QVERIFY(!scenario.toBinary(nullptr) && !scenario.toBinary(&closed) && !scenario.toBinary(&readable));
    QVERIFY(!scenario.toBinary(&full));
    QVERIFY(!scenario.fromBinary(nullptr) && !scenario.fromBinary(&closed) &&
            !scenario.fromBinary(&writable));
    QCOMPARE(TraceCollector::lines().size(), 7);
    QCOMPARE(scenario.scenarioEmitter().size(), 1);
}

void TestScenarioDataBinary::writesOnlyWhatIsRead()
{
    ScenarioDataBinary scenario(nullptr);
    scenario.setScenarioEmitter({std::make_shared<SzenarioEmitter>(QStringLiteral("a"), QString()),
                                 std::make_shared<SzenarioEmitter>(QStringLiteral("b"), QString())});
    const auto uiBytes = static_cast<std::uint64_t>(scenario.toBinary().size());
    for (const auto& [eLimit, uiFits] :
         {std::pair(Limits::DocumentBytes, uiBytes), std::pair(Limits::ScenarioObjects, std::uint64_t{2})}) {
        Limits::setValue(eLimit, uiFits);
        ScenarioDataBinary read(nullptr);
        QVERIFY(read.fromBinary(scenario.toBinary()));
        Limits::setValue(eLimit, uiFits - 1);
        const TraceCollector traces;
        QCOMPARE(scenario.toBinary(), QByteArray());
        QCOMPARE(TraceCollector::lines().size(), 1);
        Limits::setValue(eLimit, 0);
    }
}

void TestScenarioDataBinary::releasesItsObjects()
{
    const auto named = [](const QString& a_sId) {
        auto emitter = std::make_shared<SzenarioEmitter>(a_sId, QString());
        const auto emission = EmissionSettings::createEmission();
        emission->emitter = emitter; // the emitter holds itself
        emitter->emissionSettings()->addEmission(emission);
        return emitter;
    };
    const EmitterPtr kept = named(QStringLiteral("kept"));
    for (const bool bReplaced : {true, false}) {
        auto scenario = std::make_unique<ScenarioDataBinary>(nullptr);
        auto network = std::make_shared<ScenarioNetwork>(QStringLiteral("n"));
        std::vector<EmitterPtr> emitters{named({}), named({}), named({})};
        const std::vector<std::weak_ptr<SzenarioEmitter>> dropped(emitters.cbegin(), emitters.cend());
        network->addEmitter(emitters[0]);
        scenario->setScenarioNetworks({std::move(network), nullptr});
        scenario->setScenarioEmitter({emitters[1], kept, nullptr});
        scenario->setDefaultEmitter(emitters[2]);
        emitters.clear();
        if (bReplaced) {
            scenario->setScenarioEmitter({});
            scenario->setScenarioNetworks({});
            QVERIFY(!scenario->defaultEmitter());
        } else {
            scenario.reset();
        }
        for (const auto& emitter : dropped) {
            QVERIFY(emitter.expired());
        }
    }
    QCOMPARE(kept->emissionSettings()->emissions().size(), 1);
    kept->emissionSettings()->clearAll();
}

void TestScenarioDataBinary::longChain()
{
    constexpr int iCount = 20'000; // a recursion over the links would overflow the stack
    QSet<EmitterPtr> emitters;
    EmitterPtr target;
    for (int i = iCount; i > 0; --i) { // the chain starts at the smallest id
        const auto emitter = std::make_shared<SzenarioEmitter>(QString::number(iCount + i), QString());
        emitter->setLinkTargetEmitter(target);
        emitters.insert(emitter);
        target = emitter;
    }
    ScenarioDataBinary written(nullptr);
    written.setScenarioEmitter(emitters);
    ScenarioDataBinary read(nullptr);
    QVERIFY(read.fromBinary(written.toBinary()));
    QCOMPARE(read.scenarioEmitter().size(), iCount);
    QCOMPARE(read.unresolvedLinks().size(), 0);
}

QTEST_GUILESS_MAIN(TestScenarioDataBinary)
#include "tst_scenariodatabinary.moc"
