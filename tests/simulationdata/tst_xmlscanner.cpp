#include "simulationdata/simulationlimits.h"
#include "simulationdata/xml/xmlscanner_p.h"

#include <QTest>

using namespace Simulation;

class TestXmlScanner : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void errors_data();
    void errors();
    void limitsInForce();
    void startsAfresh();
};

namespace {

constexpr qint64 s_iNone = -1;
constexpr int s_iDepth = 3;
constexpr int s_iAttributes = 2;
constexpr int s_iDoctype = 40;

/// The result of the scanner as text, for comparison and failure messages.
QString finding(const XmlScanner& a_scanner)
{
    if (!a_scanner.hasError()) {
        return QStringLiteral("none");
    }
    const XmlScanner::Error& error = a_scanner.error();
    return QStringLiteral("offset %1, line %2, column %3, limit %4: %5")
        .arg(QString::number(error.offset), QString::number(error.line), QString::number(error.column),
             QString::number(error.limit), error.reason);
}

QString findingInPieces(const QList<QByteArrayView>& a_pieces)
{
    XmlScanner scanner;
    for (const QByteArrayView piece : a_pieces) {
        scanner.feed(piece);
    }
    return finding(scanner);
}

} // namespace

void TestXmlScanner::init()
{
    Limits::setValue(Limits::NestingDepth, s_iDepth);
    Limits::setValue(Limits::ElementAttributes, s_iAttributes);
    Limits::setValue(Limits::DoctypeBytes, s_iDoctype);
}

void TestXmlScanner::cleanup()
{
    for (const Limits::Limit eLimit :
         {Limits::NestingDepth, Limits::ElementAttributes, Limits::DoctypeBytes}) {
        Limits::setValue(eLimit, 0);
    }
}

void TestXmlScanner::errors_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<qint64>("offset");
    QTest::addColumn<qint64>("line");
    QTest::addColumn<qint64>("column");
    QTest::addColumn<int>("limit");
    const auto good = [](const char* a_szRow, const QByteArray& a_text) {
        QTest::newRow(a_szRow) << a_text << s_iNone << s_iNone << s_iNone << 0;
    };
    const auto bad = [](const char* a_szRow, const QByteArray& a_text, Limits::Limit a_eLimit,
                        qint64 a_iOffset, qint64 a_iLine, qint64 a_iColumn) {
        QTest::newRow(a_szRow) << a_text << a_iOffset << a_iLine << a_iColumn << static_cast<int>(a_eLimit);
    };

    good("as deep as allowed", "<a><b><c>x</c></b></a>");
    bad("one too deep", "<a><b><c><d></d></c></b></a>", Limits::NestingDepth, 9, 1, 10);
    bad("one too deep, empty element", "<a><b><c><d/>", Limits::NestingDepth, 9, 1, 10);
    bad("lines", "<a>\n<b>\r\n  <c>\n\n x <d>", Limits::NestingDepth, 19, 5, 4);
    bad("characters, not bytes", "<a>\n<b>\xC3\xA4\xE2\x82\xAC<c><d>", Limits::NestingDepth, 15, 2, 9);
    good("siblings", "<a><b/><b/><b/><b/><b></b><b></b><b></b></a>");
    good("slash in a value, then the end", "<a><b><c d='/'/><c d=\"x/\"/><c/></b></a>");
    bad("slash that ends a value", "<a><b><c d='/'><d>", Limits::NestingDepth, 15, 1, 16);
    bad("slash and blank", "<a><b><c / ><d>", Limits::NestingDepth, 12, 1, 13);
    good("bracket in a value", "<a b='>' c=\"<<<>>>\"><b><c/></b></a>");
    good("other quote in a value", "<a b='\"' c=\"'\"><b><c/></b></a>");
    good("tags in a comment", "<a><!-- <b><b><b><b> -- > -> --><b><c/></b></a>");
    bad("after a comment", "<a><b><c><!-- ---><d>", Limits::NestingDepth, 18, 1, 19);
    bad("comment needs its own dashes", "<a><!--><b><b><b><b>--><b><c><d>", Limits::NestingDepth, 29, 1, 30);
    good("tags in a section", "<a><![CDATA[<b><b><b><b>]> ] ]> ]]><b><c/></b></a>");
    bad("after a section", "<a><b><c><![CDATA[]]]]><d>", Limits::NestingDepth, 23, 1, 24);
    good("tags in an instruction", "<?xml version='1.0'?><a><?p <b><b><b><b> > ? >?><b><c/></b></a>");
    bad("instruction needs its own mark", "<a><b><c><?><d>?><d>", Limits::NestingDepth, 17, 1, 18);

    good("as many attributes as allowed", "<a b='' c=''><b c='' d=''/></a>");
    bad("one attribute too many", "<a>\n <b x='' y=\"1\" z=''/></a>", Limits::ElementAttributes, 5, 2, 2);
    good("quotes in text and end tags", "<a>''''\"</a '' '' ''>");

    const QByteArray fits = "<!DOCTYPE a [<!NOTATE x 'y'><!ELEMENT>]>";
    QCOMPARE(fits.size(), s_iDoctype);
    good("document type that just fits", fits + "<a/>");
    bad("document type too long", " \n<!DOCTYPE a [<!NOTATE x 'yy'><!ELEMENT>]><a/>", Limits::DoctypeBytes, 2,
        2, 1);
    bad("two document types that do not fit", fits.first(12) + "><a>" + fits + "</a>", Limits::DoctypeBytes,
        16, 1, 17);
    bad("document type without end", "<!DOCTYPE" + QByteArray(100, ' '), Limits::DoctypeBytes, 0, 1, 1);
    bad("ends in quotes", "<!DOCTYPE a '>\">' [ ']>' ]><a><b><c><d>", Limits::NestingDepth, 36, 1, 37);
    bad("ends in a comment", "<!DOCTYPE a [<!-- ' ]> -->]><a><b><c><d>", Limits::NestingDepth, 37, 1, 38);
    bad("ends in an instruction", "<!DOCTYPE a [<?p ' ]> ?>]><a><b><c><d>", Limits::NestingDepth, 35, 1, 36);
    bad("unknown declaration", "<![CDAT>]><a><b><c><d>", Limits::NestingDepth, 19, 1, 20);

    good("garbage", "</a></b>><<>\"'&]]>--><!---->");
    bad("too many end tags", "</a></a><a><b><c><d>", Limits::NestingDepth, 17, 1, 18);
    bad("bytes that are no text", QByteArray("\0\xFF<a>\0<b>\x80<c><d>", 16), Limits::NestingDepth, 13, 1,
        13);
}

/// The result does not depend on how the text is divided into pieces.
void TestXmlScanner::errors()
{
    QFETCH(QByteArray, text);
    QFETCH(qint64, offset);
    QFETCH(qint64, line);
    QFETCH(qint64, column);
    QFETCH(int, limit);

    const QByteArrayView view(text);
    XmlScanner scanner;
    scanner.feed(view);
    QCOMPARE(scanner.hasError(), offset != s_iNone);
    if (scanner.hasError()) {
        QCOMPARE(scanner.error().offset, offset);
        QCOMPARE(scanner.error().line, line);
        QCOMPARE(scanner.error().column, column);
        QCOMPARE(static_cast<int>(scanner.error().limit), limit);
    }
    const QString sWhole = finding(scanner);
    QList<QByteArrayView> bytes;
    for (qsizetype i = 0; i < view.size(); ++i) {
        QCOMPARE(findingInPieces({view.first(i), view.sliced(i)}), sWhole);
        bytes.append(view.sliced(i, 1));
    }
    QCOMPARE(findingInPieces(bytes), sWhole);
}

void TestXmlScanner::limitsInForce()
{
    cleanup();
    XmlScanner scanner;
    scanner.feed(QByteArray("<a>").repeated(256));
    QVERIFY(!scanner.hasError());
    scanner.feed("<a>");
    QCOMPARE(scanner.error().reason, QStringLiteral("nesting depth limit of 256 exceeded"));

    scanner.reset();
    scanner.feed("<a" + QByteArray(" b=''").repeated(4097));
    QCOMPARE(scanner.error().reason, QStringLiteral("attributes of one element limit of 4096 exceeded"));
}

void TestXmlScanner::startsAfresh()
{
    XmlScanner scanner;
    scanner.feed("<a>\n<b><c><d>");
    const QString sFirst = finding(scanner);
    scanner.feed("<e><f><g>");
    QCOMPARE(finding(scanner), sFirst);

    scanner.reset();
    QVERIFY(!scanner.hasError());
    QVERIFY(scanner.error().reason.isEmpty());
    scanner.feed("<a>\n<b><c><d>");
    QCOMPARE(finding(scanner), sFirst);
}

QTEST_GUILESS_MAIN(TestXmlScanner)
#include "tst_xmlscanner.moc"
