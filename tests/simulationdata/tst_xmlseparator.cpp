#include "kpbase/errorhandler.h"
#include "simulationdata/io/inflate_p.h"
#include "simulationdata/simulationlimits.h"
#include "simulationdata/xmlseparator_p.h"

#include <QMetaMethod>
#include <QRandomGenerator>
#include <QTcpSocket>
#include <QtEndian>
#include <QTest>

#include <algorithm>
#include <cstring>
#include <ctime>
#include <memory>

using namespace Simulation;

class TestXmlSeparator : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { ErrorHandler::Instance().setTraceMask(0); }
    void cleanup();
    void metaObject();
    void documents_data();
    void documents();
    void cuts_data();
    void cuts();
    void plainDocuments_data();
    void plainDocuments();
    void plainDeliveries();
    void longStretches();
    void errors_data();
    void errors();
    void millionLevels();
    void pausing();
    void lifetimes();
    void framings_data();
    void framings();
    void compression();
    void frameErrors();
    void pausedBetweenFrames();
    void sending();
    void inflating();
};

namespace {

constexpr qsizetype s_iMebi = 1'048'576;

/// A device whose incoming bytes the test provides. The test also sets the number of
/// bytes that one write accepts.
class ScriptedDevice : public QIODevice
{
public:
    ScriptedDevice() { open(QIODevice::ReadWrite | QIODevice::Unbuffered); }

    [[nodiscard]] bool isSequential() const override { return true; }
    [[nodiscard]] qint64 bytesAvailable() const override { return m_incoming.size(); }
    [[nodiscard]] qint64 bytesToWrite() const override { return m_iPending; }

    void arrive(const QByteArray& a_bytes)
    {
        m_incoming += a_bytes;
        Q_EMIT readyRead();
    }

    QByteArray m_incoming;
    QByteArray m_written;
    qint64 m_iPending = 0;
    qint64 m_iAccepted = s_iMebi; ///< bytes that one write accepts

protected:
    qint64 readData(char* a_pData, qint64 a_iMost) override
    {
        const qsizetype iBytes = std::min<qint64>(a_iMost, m_incoming.size());
        std::memcpy(a_pData, m_incoming.constData(), static_cast<std::size_t>(iBytes));
        m_incoming.remove(0, iBytes);
        return iBytes;
    }
    qint64 writeData(const char* a_pData, qint64 a_iBytes) override
    {
        const qint64 iBytes = std::min(a_iBytes, m_iAccepted);
        m_written.append(a_pData, iBytes);
        return iBytes;
    }
};

struct Peer
{
    explicit Peer(XmlSeparator::FramingMode a_eMode = XmlSeparator::PlainXml)
        : separator(&device, a_eMode, nullptr)
    {
        QObject::connect(&separator, &XmlSeparator::xmlReceived, &separator,
                         [this](const QByteArray& a_xml) { documents += a_xml; });
        QObject::connect(&separator, &XmlSeparator::errorOccured, &separator,
                         [this](const QString& a_sError) { errors += a_sError; });
    }

    void arrive(const QByteArray& a_bytes, qsizetype a_iSegment = s_iMebi)
    {
        for (qsizetype i = 0; i < a_bytes.size(); i += a_iSegment) {
            device.arrive(a_bytes.mid(i, a_iSegment));
        }
        QCoreApplication::processEvents();
    }

    ScriptedDevice device;
    XmlSeparator separator;
    QByteArrayList documents;
    QStringList errors;
};

/// Returns the documents and then the errors of a stream. The stream arrives in pieces
/// that end at the given offsets.
QByteArrayList outcome(const QByteArray& a_stream, const QList<qsizetype>& a_ends,
                       XmlSeparator::FramingMode a_eMode = XmlSeparator::PlainXml)
{
    Peer peer(a_eMode);
    qsizetype iFrom = 0;
    for (const qsizetype iEnd : a_ends) {
        peer.arrive(a_stream.sliced(iFrom, iEnd - iFrom));
        iFrom = iEnd;
    }
    peer.arrive(a_stream.sliced(iFrom));
    for (const QString& sError : peer.errors) {
        peer.documents += sError.toUtf8();
    }
    return peer.documents;
}

QByteArray bigEndian(qsizetype a_iLength)
{
    const auto uiLength = qToBigEndian(static_cast<quint32>(a_iLength));
    return {reinterpret_cast<const char*>(&uiLength), sizeof uiLength};
}

QByteArray frame(const QByteArray& a_payload, XmlSeparator::FramingMode a_eMode)
{
    QByteArray length = bigEndian(a_payload.size());
    if (a_eMode == XmlSeparator::LengthPrefixedLittleEndian) {
        std::reverse(length.begin(), length.end());
    }
    return length + a_payload;
}

/// A compressed content whose header claims the given length.
QByteArray claiming(qsizetype a_iLength, const QByteArray& a_content)
{
    return bigEndian(a_iLength) + qCompress(a_content).sliced(4);
}

} // namespace

void TestXmlSeparator::cleanup()
{
    for (int i = 0; i < Limits::LimitCount; ++i) {
        Limits::setValue(static_cast<Limits::Limit>(i), 0);
    }
}

void TestXmlSeparator::metaObject()
{
    const QMetaObject& meta = XmlSeparator::staticMetaObject;
    QCOMPARE(meta.className(), "XmlSeparator");
    QByteArray methods;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        methods += meta.method(i).methodSignature() + meta.method(i).parameterNames().join() + ' ';
    }
    QCOMPARE(methods, QByteArray("xmlReceived(QByteArray)Xml errorOccured(QString)sErrorString "
                                 "queued_xmlReceived(QByteArray)Xml sendXml(QByteArray)Xml "
                                 "setEnabled(bool)bEnabled setDisabled(bool)bDisabled "
                                 "pause() resume() reset() readNewData() "));
}

void TestXmlSeparator::documents_data()
{
    QTest::addColumn<QByteArrayList>("parts"); // documents at odd indexes, other bytes at even ones
    const auto row = [](const char* a_szRow, const QByteArrayList& a_parts) {
        QTest::newRow(a_szRow) << a_parts;
    };
    row("one", {"", "<a>x</a>"});
    row("back to back", {"", "<a/>", "", "<b></b>", "", "<?xml version=\"1.0\"?><c d='/>'/>", "\n"});
    row("blanks between and inside", {"\r\n\t ", "<a> \n<b/>\t</a>", "\n\n", "<c/>", " "});
    row("UTF-8", {"", "<\xC3\xA4 b='\xE2\x82\xAC'>\xF0\x9F\x93\xA1</\xC3\xA4>", "\n", "<a>\xC3\xBC</a>"});
    row("marks", {"", "\xEF\xBB\xBF<a>\xC3\xBC</a>", " ", "\xEF\xBB\xBF\n<b/>", "", "<c/>"});
    row("declared Latin-1",
        {"", "<?xml version='1.0' encoding='ISO-8859-1'?><a>\xFC</a>", "", "<a>\xC3\xBC</a>"});
    row("tags in comments", {"", "<!-- <a> --><a><!-- </a> ->--></a>", "", "<b><!----></b>"});
    row("tags in sections", {"", "<a><![CDATA[</a>]]]]></a>", "", "<a><![CDATA[]]>]&gt;</a>"});
    row("tags in instructions", {"", "<a><?p </a>?></a>", "\n", "<?p <b>? ?><a/>"});
    row("tags in values", {"", "<a b='/>' c=\"'>\"></a >", "", "<b c='a/'/>"});
    row("document type", {"", "<!DOCTYPE a [<!ELEMENT a ANY><!-- ]> -->]><a/>", "", "<b/>"});
    row("references", {"", "<a b='&lt;'>&#60;/a&#x3E;&amp;</a>"});
}

void TestXmlSeparator::documents()
{
    QFETCH(QByteArrayList, parts);
    QByteArrayList expected;
    for (qsizetype i = 1; i < parts.size(); i += 2) {
        expected += parts[i];
    }
    const QByteArray stream = parts.join();
    for (qsizetype i = 0; i <= stream.size(); ++i) {
        Peer peer;
        peer.arrive(stream.first(i));
        peer.arrive(stream.sliced(i));
        QCOMPARE(peer.errors, QStringList());
        QCOMPARE(peer.documents, expected);
    }
    for (const qsizetype iSegment : {1, 3}) {
        Peer peer;
        peer.arrive(stream.repeated(2), iSegment);
        QCOMPARE(peer.errors, QStringList());
        QCOMPARE(peer.documents, expected + expected);
    }
}

void TestXmlSeparator::cuts_data()
{
    constexpr quint32 uiRandomRows = 100;
    constexpr int iMostTokens = 14;
    const QByteArray zero(1, '\0');
    QTest::addColumn<QByteArray>("stream");
    QTest::addColumn<int>("results"); // number of documents and errors; -1 = any
    const auto row = [](const char* a_szRow, const QByteArray& a_stream, int a_iResults) {
        QTest::newRow(a_szRow) << a_stream << a_iResults;
    };
    row("zero in a text after brackets", "<l>]]]]m]]]<l>]]]" + zero + "0]]]</l></l><b/><c/>", 1);
    row("zero after a document", "<b/><l>x]]" + zero + "</l><c/>", 2);
    row("zeros after brackets", "<l>mm]]]" + zero + zero + "m]]]" + zero + "</l>", 1);
    row("zero instead of a document", "<b/>" + zero + "<c/>", 2);
    row("zero in a tag", "<b/><l a='" + zero + "'/>", 2);
    row("end of a section in a text", "<b/><l>x]]]></l>", 2);
    row("section in brackets", "<l>]]<![CDATA[]]]]>]]</l><c/>", 2);
    row("error before an entity", "<!DOCTYPE a [<&<!ENTITY b 'b'>]><a/>", 1);
    row("error after a document type", "<b/><!DOCTYPE a []<!ENTITY b 'b'>", 2);
    row("error before an attribute too many", "<l a='1'b='2' c='3'/>", 1);
    row("broken UTF-8", "<b/><l>\xF0\x9F\x93</l>", 2);
    row("reference without end", "<b/><l>&#x41</l><c/>", 2);

    const QByteArrayList tokens{"<l>",
                                "</l>",
                                "<l>",
                                "</l>",
                                "<b/>",
                                "<c a='1'/>",
                                "]",
                                "]]",
                                "]]>",
                                ">",
                                "<",
                                "&",
                                "&lt;",
                                "&#x4",
                                "1;",
                                "\xC3",
                                "\xA4",
                                "\xEF\xBF\xBF",
                                zero,
                                zero,
                                "\x01",
                                "m",
                                "\n",
                                "<!--",
                                "--",
                                "-->",
                                "<![CDATA[",
                                "<?p",
                                "?>",
                                "'",
                                "=",
                                "<a b='",
                                "<!DOCTYPE a [",
                                "<!ENTITY b ",
                                "\xEF\xBB\xBF",
                                "<?xml version='1.0' encoding='ISO-8859-1'?>"};
    for (quint32 uiSeed = 1; uiSeed <= uiRandomRows; ++uiSeed) {
        QRandomGenerator random(uiSeed);
        QByteArray stream = "<l>";
        for (int i = random.bounded(iMostTokens); i >= 0; --i) {
            stream += tokens[random.bounded(tokens.size())];
        }
        row(QByteArray("random ").append(QByteArray::number(uiSeed)).constData(), stream, -1);
    }
}

/// The result does not depend on the pieces in which a stream arrives.
void TestXmlSeparator::cuts()
{
    Limits::setValue(Limits::ElementAttributes, 2);
    QFETCH(QByteArray, stream);
    QFETCH(int, results);
    const QByteArrayList whole = outcome(stream, {});
    QVERIFY(results < 0 || whole.size() == results);
    QList<qsizetype> everywhere;
    for (qsizetype i = 1; i < stream.size(); ++i) {
        QCOMPARE(outcome(stream, {i}), whole);
        everywhere += i;
    }
    QCOMPARE(outcome(stream, everywhere), whole);

    constexpr auto eMode = XmlSeparator::LengthPrefixedBigEndian;
    const QByteArray framed = frame(stream, eMode);
    for (qsizetype i = 1; i < framed.size(); ++i) {
        QCOMPARE(outcome(framed, {i}, XmlSeparator::AutoDetect), QByteArrayList{stream});
    }
}

void TestXmlSeparator::plainDocuments_data()
{
    QTest::addColumn<QByteArray>("stream");
    QTest::addColumn<bool>("plain"); // whether the first document is plain
    QTest::addColumn<int>("limit");  // largest size of a document, bytes
    const auto plain = [](const char* a_szRow, const QByteArray& a_stream, int a_iLimit = 20'000) {
        QTest::newRow(a_szRow) << a_stream << true << a_iLimit;
    };
    const auto other = [](const char* a_szRow, const QByteArray& a_stream, int a_iLimit = 20'000) {
        QTest::newRow(a_szRow) << a_stream << false << a_iLimit;
    };
    plain("shortest", "<a/>");
    plain("blanks before", "\r\n\t <a/>");
    plain("attributes", "<a b='/>\"' c = \"'&lt;\xC3\xA4\" />");
    plain("texts", "<a>]]\n><b.-_1>\xF0\x9F\x93\xA1</b.-_1>\xEF\xBF\xBD&amp;</a\n>");
    plain("references", "<a>&#65;&#x3e;&#x10FFFF;&#0000065;</a>");
    other("reference with a colon", "<a>&#x4:;</a>");
    plain("markup of the next document", "<a/><!-- <b> --><?p?><c:d/>");
    plain("error after the document", "<a></a>x");
    plain("as deep as allowed", "<a><b><c></c></b></a>");
    other("one too deep", "<a><b><c><d/></c></b></a>");
    plain("as many attributes as allowed", "<a b='' c=''/>");
    other("one attribute too many", "<a b='' c='' d=''/>");
    plain("as many elements as allowed", "<a><b/><b/><b/></a>");
    other("one element too many", "<a><b/><b/><b/><b/></a>");
    plain("as large as allowed", "<a>" + QByteArray(100, 'x') + "</a>", 107);
    other("one byte too large", "<a>" + QByteArray(101, 'x') + "</a>", 107);
    plain("as large as a piece", "<a>" + QByteArray(16'377, 'x') + "</a>");
    other("larger than a piece", "<a>" + QByteArray(16'378, 'x') + "</a>");
    plain("long name", "<" + QByteArray(1000, 'x') + "/>");
    other("longer name", "<" + QByteArray(1001, 'x') + "/>");
    other("name that the reader refuses", "<" + QByteArray(5000, 'x') + "/>");
    plain("long reference", "<a>&#" + QByteArray(4200, '0') + "65;</a>");
    plain("long value", "<a b='" + QByteArray(4200, 'x') + "'/>");

    other("prefix", "<a:b/>");
    other("attribute with a prefix", "<a xmlns:b='c' b:d=''/>");
    other("name beyond ASCII", "<\xC3\xA4/>");
    other("comment", "<a><!-- --></a>");
    other("section", "<a><![CDATA[<b>]]></a>");
    other("instruction", "<a><?p?></a>");
    other("declaration", "<?xml version='1.0'?><a/>");
    other("document type", "<!DOCTYPE a><a/>");
    other("byte-order mark", "\xEF\xBB\xBF<a/>");
    other("no end", "<a><b></b>");
    other("text before", "x<a/>");
    other("wrong end tag", "<a></b>");
    other("attribute twice", "<a b='' b=''/>");
    other("no blank between attributes", "<a b=''c=''/>");
    other("less-than sign in a value", "<a b='<'/>");
    other("end of a section", "<a>]]></a>");
    other("unknown entity", "<a>&b;</a>");
    other("reference to a forbidden character", "<a>&#xFFFE;</a>");
    other("forbidden character", "<a>\xEF\xBF\xBF</a>");
    other("control character", "<a b='\x01'/>");
    other("control character after a long text", "<a>" + QByteArray(200, 'x') + "\x1F</a>");
    other("zero", QByteArray("<a>\0</a>", 8));
    other("invalid UTF-8", "<a>\xC3</a>");
}

/// A plain document is recognised. If its first byte arrives alone, it is not read as a
/// plain document, but the result is the same.
void TestXmlSeparator::plainDocuments()
{
    Limits::setValue(Limits::NestingDepth, 3);
    Limits::setValue(Limits::ElementAttributes, 2);
    Limits::setValue(Limits::RecordElements, 4);
    QFETCH(QByteArray, stream);
    QFETCH(bool, plain);
    QFETCH(int, limit);
    Limits::setValue(Limits::DocumentBytes, static_cast<std::uint64_t>(limit));
    XmlDocumentSplitter splitter;
    splitter.append(stream);
    QCOMPARE(splitter.takeDocument().has_value() && splitter.isPlain(), plain);

    const qsizetype iAfterFirst = stream.indexOf('<') + 1;
    QCOMPARE(outcome(stream + "<z/>", {}), outcome(stream + "<z/>", {iAfterFirst}));
}

/// isPlain() returns true only for a plain document, even if a slot causes the delivery
/// of further documents. For a copy of the bytes, isPlain() returns false.
void TestXmlSeparator::plainDeliveries()
{
    for (const bool bNested : {false, true}) {
        Peer peer;
        QByteArrayList plain;
        connect(&peer.separator, &XmlSeparator::xmlReceived, this, [&](const QByteArray& a_document) {
            if (bNested) {
                QCoreApplication::sendPostedEvents(&peer.separator);
            }
            QVERIFY(!peer.separator.isPlain(a_document.first(a_document.size() - 1) + '>'));
            if (peer.separator.isPlain(a_document)) {
                plain += a_document;
            }
        });
        peer.arrive("<a/><?p?><b/><c/><!-- --><d/>");
        QCOMPARE(peer.documents, QByteArrayList({"<a/>", "<?p?><b/>", "<c/>", "<!-- --><d/>"}));
        QCOMPARE(plain, bNested ? QByteArrayList({"<c/>", "<a/>"}) : QByteArrayList({"<a/>", "<c/>"}));
        QVERIFY(
            std::none_of(peer.documents.cbegin(), peer.documents.cend(),
                         [&](const QByteArray& a_document) { return peer.separator.isPlain(a_document); }));
    }
}

/// A document that arrives byte by byte takes linear time: four times the length takes
/// four times the work. It would take 16 times the work if every byte caused a scan of
/// all bytes before it.
void TestXmlSeparator::longStretches()
{
    constexpr qsizetype iShort = 32'768;
    constexpr double dMostGrowth = 10.0;
    const auto ticks = [](const QByteArray& a_document) {
        Peer peer;
        const std::clock_t start = std::clock();
        peer.arrive(a_document, 1);
        const std::clock_t stop = std::clock();
        return peer.documents == QByteArrayList{a_document} ? static_cast<double>(stop - start) : -1.0;
    };
    for (const QByteArray form :
         {"<a>%</a>", "<a b='%'/>", "<a><!--%--></a>", "<a><![CDATA[%]]></a>", "<a><?p %?></a>"}) {
        const double dShort = ticks(QByteArray(form).replace('%', QByteArray(iShort, 'x')));
        const double dLong = ticks(QByteArray(form).replace('%', QByteArray(4 * iShort, 'x')));
        QVERIFY2(dShort > 0.0 && dLong > 0.0 && dLong < dMostGrowth * dShort, form.constData());
    }
}

void TestXmlSeparator::errors_data()
{
    QTest::addColumn<QByteArray>("stream");
    QTest::addColumn<QString>("error"); // empty = the error text of QXmlStreamReader
    const auto row = [](const char* a_szRow, const QByteArray& a_stream, const QString& a_sError = {}) {
        QTest::newRow(a_szRow) << a_stream << a_sError;
    };
    row("garbage", "hello world");
    row("zeros", QByteArray("<a>\0</a>", 8));
    row("stray end tag", "</a>");
    row("comment with dashes", "<a><!-- -- --></a>");
    row("end of a section", "<a>]]></a>");
    row("unknown entity", "<a>&b;</a>");
    row("unknown encoding", "<?xml version='1.0' encoding='none'?><a/>");
    row("error before the limits", "<a b='1'c='2'>" + QByteArray("<b>").repeated(8));

    const QString sWide = QStringLiteral("The document is not in UTF-8 or a single-byte encoding.");
    const QString sUndecoded = QStringLiteral("Encountered incorrectly encoded content.");
    row("UTF-16 with a mark", QByteArray("\xFF\xFE<\0a\0", 6), sWide);
    row("UTF-16, big-endian", QByteArray("\0<\0a", 4), sWide);
    row("UTF-16 without a mark", QByteArray("<\0a\0", 4), sWide);
    row("tags in another encoding", "<?xml version='1.0' encoding='UTF-7'?><a>+ADw-/a+AD4-</a>",
        QStringLiteral("Encoding UTF-7 is unsupported in a stream of documents."));
    row("invalid UTF-8", "<a>\xC3(", sUndecoded);
    row("not in its encoding", "<?xml version='1.0' encoding='US-ASCII'?><a>\xFC</a>", sUndecoded);

    const auto beyond = [&](const char* a_szRow, const QByteArray& a_stream, const char* a_szLimit) {
        row(a_szRow, a_stream, QLatin1String(a_szLimit) + QStringLiteral(" exceeded"));
    };
    beyond("levels", QByteArray("<a>").repeated(s_iMebi), "nesting depth limit of 6");
    beyond("attributes", "<a" + QByteArray(" b='1'").repeated(4097),
           "attributes of one element limit of 4096");
    beyond("elements", "<a>" + QByteArray("<b/>").repeated(20), "elements of a record limit of 20");
    beyond("text", "<a>" + QByteArray(40'000, 'x'), "document bytes limit of 30000");
    beyond("comment", "<a><!--" + QByteArray(40'000, '-'), "document bytes limit of 30000");
    beyond("declaration", "<!DOCTYPE a [" + QByteArray(5000, ' '), "bytes of a document type limit of 4096");
    beyond("entities", "<!DOCTYPE a [<!ENTITY b 'b'>]><a/>", "entity declarations limit of 0");
}

void TestXmlSeparator::errors()
{
    Limits::setValue(Limits::NestingDepth, 6);
    Limits::setValue(Limits::RecordElements, 20);
    Limits::setValue(Limits::DocumentBytes, 30'000);
    QFETCH(QByteArray, stream);
    QFETCH(QString, error);
    if (error.isEmpty()) {
        // U+0001 replaces a NUL, because the reader refuses U+0001 at every place.
        QXmlStreamReader reader(QByteArray(stream).replace('\0', '\x01'));
        while (!reader.atEnd()) {
            reader.readNext();
        }
        error = reader.errorString();
    }
    for (const qsizetype iSegment : {s_iMebi, qsizetype{1}}) {
        Peer peer;
        peer.arrive("<a/><b/>\n" + stream.first(std::min<qsizetype>(stream.size(), 50'000)), iSegment);
        QCOMPARE(peer.documents, QByteArrayList({"<a/>", "<b/>"}));
        QCOMPARE(peer.errors, QStringList(error));

        peer.device.m_incoming.clear();
        peer.arrive("<c/>");
        QCOMPARE(peer.errors.size(), 1);
        peer.separator.resume();
        QCOMPARE(peer.errors, QStringList({error, error}));
        QCOMPARE(peer.device.m_incoming, QByteArray("<c/>"));

        peer.separator.reset();
        peer.arrive("<d/>");
        QCOMPARE(peer.errors.size(), 2);
        QCOMPARE(peer.documents.mid(2), QByteArrayList({"<c/>", "<d/>"}));
    }
}

void TestXmlSeparator::millionLevels()
{
    Limits::setValue(Limits::NestingDepth, s_iMebi);
    Limits::setValue(Limits::RecordElements, s_iMebi);
    Peer peer;
    peer.arrive(QByteArray("<a>").repeated(s_iMebi) + QByteArray("</a>").repeated(s_iMebi), 1000);
    QCOMPARE(peer.documents.value(0).size(), 7 * s_iMebi);
}

void TestXmlSeparator::pausing()
{
    Peer peer;
    peer.arrive("<a>");
    peer.separator.pause();
    peer.arrive("</a><b/>");
    QCOMPARE(peer.device.m_incoming, QByteArray("</a><b/>"));
    peer.separator.resume();
    QCOMPARE(peer.documents, QByteArrayList()); // not emitted inside the call
    QCoreApplication::processEvents();
    QCOMPARE(peer.documents, QByteArrayList({"<a></a>", "<b/>"}));
    peer.separator.resume();
    peer.separator.setDisabled(true);
    peer.arrive("<c/>");
    peer.separator.setEnabled(false);
    QCOMPARE(peer.documents.size(), 2);
    peer.separator.setDisabled(false);
    peer.arrive("<d>");
    QCOMPARE(peer.documents.size(), 3);
    peer.separator.pause();
    peer.arrive("<e/>");
    peer.separator.reset(); // discards half a document and reads the waiting bytes
    QTRY_COMPARE(peer.documents.last(), QByteArray("<e/>"));

    ScriptedDevice device;
    device.arrive("<a/>");
    XmlSeparator late(&device, nullptr);
    QByteArrayList documents;
    connect(&late, &XmlSeparator::xmlReceived, this, [&](const QByteArray& a_xml) { documents += a_xml; });
    QTRY_COMPARE(documents, QByteArrayList({"<a/>"})); // arrived before the separator existed

    QTcpSocket socket;
    const XmlSeparator onSocket(&socket, nullptr);
    QCOMPARE(socket.readBufferSize(), qint64{65'536}); // limits the received bytes during a pause
}

void TestXmlSeparator::lifetimes()
{
    Peer resumed;
    connect(&resumed.separator, &XmlSeparator::errorOccured, &resumed.separator, &XmlSeparator::resume);
    resumed.arrive("garbage");
    QCOMPARE(resumed.errors.size(), 1);

    auto device = std::make_unique<ScriptedDevice>();
    auto separator = std::make_unique<XmlSeparator>(device.get(), nullptr);
    connect(separator.get(), &XmlSeparator::errorOccured, this, [&] { separator.reset(); });
    device->arrive("</a><a/>");
    QVERIFY(separator == nullptr);

    separator = std::make_unique<XmlSeparator>(device.get(), nullptr);
    device->arrive("<a>");
    device.reset();
    separator->resume();
    separator->reset();
    QVERIFY(!separator->sendXml("<a/>"));
}

void TestXmlSeparator::framings_data()
{
    QTest::addColumn<XmlSeparator::FramingMode>("framing");
    QTest::newRow("plain") << XmlSeparator::PlainXml;
    QTest::newRow("big endian") << XmlSeparator::LengthPrefixedBigEndian;
    QTest::newRow("little endian") << XmlSeparator::LengthPrefixedLittleEndian;
}

void TestXmlSeparator::framings()
{
    QFETCH(XmlSeparator::FramingMode, framing);
    const QByteArrayList documents{"<a/>", "<b>" + QByteArray(300, 'x') + "</b>", "<c>\n</c>"};
    QByteArray stream;
    for (const QByteArray& document : documents) {
        stream += framing == XmlSeparator::PlainXml ? document : frame(document, framing);
    }
    for (const auto eOurs : {framing, XmlSeparator::AutoDetect}) {
        for (qsizetype i = 0; i <= stream.size(); ++i) {
            Peer peer(eOurs);
            QCOMPARE(peer.separator.sendXml("<a/>"), eOurs != XmlSeparator::AutoDetect);
            peer.arrive(stream.first(i), i == stream.size() ? 1 : s_iMebi);
            peer.arrive(stream.sliced(i));
            QTRY_COMPARE(peer.documents, documents);
            peer.device.m_written.clear();
            QVERIFY(peer.separator.sendXml("<a/>"));
            QCOMPARE(peer.device.m_written, stream.first(peer.device.m_written.size()));
        }
    }
}

void TestXmlSeparator::compression()
{
    constexpr auto eMode = XmlSeparator::LengthPrefixedLittleEndian;
    const QByteArray document = "<a>" + QByteArray(300, 'x') + "</a>";
    Peer peer(eMode);
    peer.separator.setCompressOutgoing(true);
    peer.separator.setCompressionLevel(9);
    peer.arrive(frame(qCompress(document), eMode));
    QCOMPARE(peer.documents.last(), document);
    QVERIFY(peer.separator.sendXml(document));
    QCOMPARE(peer.device.m_written, frame(qCompress(document, 9), eMode));

    // If a payload cannot be inflated, it and all payloads after it count as not
    // compressed.
    for (const QByteArray& payload : {qCompress(document).chopped(1), qCompress(document), QByteArray()}) {
        peer.arrive(frame(payload, eMode));
        QCOMPARE(peer.documents.last(), payload);
    }
    peer.device.m_written.clear();
    QVERIFY(peer.separator.sendXml(document));
    QCOMPARE(peer.device.m_written, frame(document, eMode));
}

void TestXmlSeparator::frameErrors()
{
    constexpr auto eMode = XmlSeparator::LengthPrefixedBigEndian;
    Limits::setValue(Limits::DocumentBytes, 4096);
    Limits::setValue(Limits::InflatedBytes, s_iMebi - 1);
    const QString sTooLong = QStringLiteral("document bytes limit of 4096 exceeded");
    const QString sBomb = QStringLiteral("inflated bytes limit of 1048575 exceeded");
    const std::pair<QByteArray, QString> cases[] = {{"\xFF\xFF\xFF\xFF", sTooLong},
                                                    {QByteArray("\0\0\x10\x01", 4), sTooLong},
                                                    {frame(qCompress(QByteArray(s_iMebi, 0)), eMode), sBomb}};
    for (const auto& [stream, sError] : cases) {
        Peer peer(eMode);
        peer.arrive(stream);
        QCOMPARE(peer.errors, QStringList(sError));
        QCOMPARE(peer.documents, QByteArrayList());
    }
}

void TestXmlSeparator::pausedBetweenFrames()
{
    constexpr auto eMode = XmlSeparator::LengthPrefixedBigEndian;
    Peer peer(eMode);
    peer.device.arrive(frame("<a/>", eMode) + frame("<b/>", eMode) + frame("<c/>", eMode) +
                       frame("<d/>", eMode));
    peer.separator.pause();
    QTest::qWait(10);
    QCOMPARE(peer.documents, QByteArrayList({"<a/>"}));
    peer.separator.resume();
    // The new frame stays in the device while complete frames wait.
    peer.device.arrive(frame("<e/>", eMode));
    QTRY_COMPARE(peer.documents, QByteArrayList({"<a/>", "<b/>", "<c/>", "<d/>", "<e/>"}));
}

void TestXmlSeparator::sending()
{
    Peer peer;
    QVERIFY(peer.separator.sendXml("<a/>"));
    QVERIFY(peer.separator.sendXml("<b/>"));
    QCOMPARE(peer.device.m_written, QByteArray("<a/><b/>"));
    Limits::setValue(Limits::PendingBytes, 100);
    peer.device.m_iPending = 96;
    QVERIFY(peer.separator.sendXml("<c/>"));
    QVERIFY(!peer.separator.sendXml("<dd/>"));
    QCOMPARE(peer.device.m_written, QByteArray("<a/><b/><c/>"));
    peer.device.m_iPending = 0;
    peer.device.m_iAccepted = 3;
    QVERIFY(!peer.separator.sendXml("<e/>"));
    peer.device.close();
    QVERIFY(!peer.separator.sendXml("<f/>"));
}

void TestXmlSeparator::inflating()
{
    Limits::setValue(Limits::InflatedBytes, s_iMebi);
    const QByteArray content = QByteArray("a content that varies ").repeated(10'000);
    const QByteArray most(s_iMebi, 'm');
    const QByteArray beyond = "inflated bytes limit of 1048576 exceeded";
    const std::pair<QByteArray, QByteArray> cases[] = {
        // the bytes, and the expected content or error text
        {qCompress(QByteArray()), {}},
        {qCompress(most), most},
        {qCompress(most + "m"), beyond},
        {claiming(0, content) + "more", content},
        {claiming(0, QByteArray(64 * s_iMebi, 0)), beyond},
        {claiming(0xFFFFFFFF, content), content},
        {{}, "0 bytes are too short for compressed content"},
        {"<?xml version=\"1.0\"?><a/>", "the content is not a zlib stream"},
        {qCompress(content).chopped(4), "the zlib stream ends early, after 220000 bytes of content"},
        {qCompress(content).chopped(1) + '!', "the zlib stream is damaged, after 220000 bytes of content"}};
    for (const auto& [bytes, expected] : cases) {
        QString sReason;
        const auto inflated = inflateBounded(bytes, &sReason);
        QCOMPARE(inflated.has_value(), sReason.isEmpty());
        QCOMPARE(inflated.value_or(sReason.toUtf8()), expected);
    }
}

QTEST_GUILESS_MAIN(TestXmlSeparator)
#include "tst_xmlseparator.moc"
