#include "simulationdata/xml/xmlstreamadapter_p.h"
#include "simulationdata/xml/xmltext_p.h"
#include "simulationdata/xml/xmltextreader_p.h"
#include "simulationdata/xml/xmlwriter_p.h"

#include <QRandomGenerator>
#include <QTest>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <cmath>
#include <cstring>

using namespace Simulation;

namespace {

constexpr quint32 s_uiSeed = 20'261'123;
constexpr int s_iNumbers = 200'000;

/// All that a reader returns of a document: names, attributes and the texts of elements
/// that are called "t".
QStringList contentOf(XmlReader& a_reader)
{
    QStringList content;
    int iDepth = 0;
    do {
        if (!a_reader.nextChild()) {
            content.append(QStringLiteral("/"));
            --iDepth;
            continue;
        }
        content.append(QString::fromUtf8(a_reader.name()));
        for (const XmlAttribute& attribute : a_reader.attributes()) {
            content.append(QString::fromUtf8(attribute.name) + u'=' + attribute.value.string());
        }
        if (a_reader.name() == "t") {
            const auto text = a_reader.text();
            content.append(text ? u'"' + text->string() + u'"' : QStringLiteral("none"));
        } else {
            ++iDepth;
        }
    } while (iDepth > 0 && content.size() < 100);
    return content;
}

/// A random number of any magnitude, often one with few digits or on the boundary between
/// two decimals.
double randomNumber(QRandomGenerator& a_random)
{
    const quint64 uiBits = a_random.generate64();
    double dNumber = 0.0;
    switch (a_random.bounded(3)) {
    case 0:
        std::memcpy(&dNumber, &uiBits, sizeof dNumber);
        return std::isfinite(dNumber) ? dNumber : 0.0;
    case 1:
        return std::ldexp(static_cast<double>(uiBits >> 11), a_random.bounded(-80, 20));
    default:
        return static_cast<double>(uiBits >> a_random.bounded(20, 64)) /
               std::pow(10.0, a_random.bounded(0, 8)) * (a_random.bounded(2) == 0 ? 1 : -1);
    }
}

} // namespace

/// The readers and writers of documents against those of Qt.
class TestXmlReader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sameContent_data();
    void sameContent();
    void cutOff();
    void sameNumbers();
    void readNumbers_data();
    void readNumbers();
    void sameText();
};

void TestXmlReader::sameContent_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addRow("elements") << QByteArray("<r a=\"1\" b='2'><e/><e c=\"3\" ></e ><t>x</t></r>");
    QTest::addRow("prolog and blanks") << QByteArray(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!-- <x> -->\n<?p <y>?> <r \n a = \"1\"\t>\n</r>\n");
    QTest::addRow("markup between elements")
        << QByteArray("<r><!-- <e> --><e/><![CDATA[<e/>]]><?p <e>?><e><!----></e></r>");
    QTest::addRow("references") << QByteArray(
        "<r a='&lt;&#65;&#x1F600;&amp;amp;'><t>&gt;&quot;&apos;&#10;</t></r>");
    QTest::addRow("line ends") << QByteArray("<r a='1\r\n2\r3\n4\t5'><t>1\r\n2\r3\n4\t5&#13;</t></r>");
    QTest::addRow("text with markup inside")
        << QByteArray("<r><t>a<!-- b -->c<![CDATA[<&]]>d<?p e?>&amp;f</t><t><x y='>'>no<t/></x>yes</t></r>");
    QTest::addRow("characters above ASCII")
        << QByteArray("<r a='\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80'><t>\xEF\xBB\xBF\xC3\xA9</t></r>");
    QTest::addRow("quotes and brackets in values") << QByteArray("<r a='\">/' b=\"'/>\"><t a='/>'>x</t></r>");
    QTest::addRow("empty texts") << QByteArray("<r a=''><t/><t></t><t><![CDATA[]]></t><t> </t></r>");
}

void TestXmlReader::sameContent()
{
    QFETCH(const QByteArray, document);
    QXmlStreamReader stream(document);
    stream.setNamespaceProcessing(false);
    XmlStreamReader expected(stream);
    XmlTextReader reader(document);
    const QStringList content = contentOf(expected);
    QVERIFY(!stream.hasError());
    QCOMPARE(contentOf(reader), content);
    QCOMPARE(reader.nextChild(), false);
}

/// A text that is cut off anywhere ends, and no byte outside it is read.
void TestXmlReader::cutOff()
{
    const QByteArray document(
        "<?xml version='1.0'?><r a='1&amp;'><!-- c --><t>x<![CDATA[y]]>&lt;<e/></t><e b=\"2\"/></r>");
    for (qsizetype i = 0; i < document.size(); ++i) {
        const QByteArray bytes(document.constData(), i); // a copy of its own, which a sanitizer guards
        XmlTextReader reader(bytes);
        QVERIFY(contentOf(reader).size() < 100);
        QVERIFY(reader.position() <= i);
    }
}

/// Numbers are written as QString::number() writes them, also those that lie between two
/// decimals, and read as QString::toDouble() reads them.
void TestXmlReader::sameNumbers()
{
    QRandomGenerator random(s_uiSeed);
    for (int i = 0; i < s_iNumbers; ++i) {
        const double dNumber = i == 0 ? -0.0 : i == 1 ? 3865265.0 : randomNumber(random);
        for (const int iDigits : {s_iNumberDigits, s_iCoordinateDigits}) {
            NumberBuffer buffer;
            const QByteArray written(buffer.data(), writeNumber(dNumber, iDigits, buffer));
            QCOMPARE(written, QByteArray::number(dNumber, 'g', iDigits));
        }
        const QByteArray text = QByteArray::number(dNumber, 'g', 17);
        bool bOk = false;
        QCOMPARE(readDouble(text, &bOk), QString::fromLatin1(text).toDouble());
        QVERIFY(bOk);
    }
}

void TestXmlReader::readNumbers_data()
{
    QTest::addColumn<QByteArray>("text");
    for (const char* szText : {"",
                               " 7 ",
                               "+7",
                               "-7",
                               "7.",
                               ".5",
                               "1e5",
                               "1E-5",
                               "0x10",
                               "1,5",
                               "1 000",
                               "nan",
                               "inf",
                               "1e999",
                               "1e-999",
                               "4294967295",
                               "4294967296",
                               "9223372036854775807",
                               "-9223372036854775808",
                               "9223372036854775808",
                               "007",
                               "-0",
                               "1.5",
                               "--1",
                               "1-",
                               "1e",
                               "\xC2\xA0\x37",
                               "\xEF\xBC\x97",
                               "\xEF\xBB\xBF\x37",
                               "7\0"}) {
        QTest::addRow("%s", szText) << QByteArray(szText);
    }
}

void TestXmlReader::readNumbers()
{
    QFETCH(const QByteArray, text);
    const QString sText = utf8String(text);
    bool bOk = false;
    bool bExpected = false;
    const double dExpected = sText.toDouble(&bExpected);
    QCOMPARE(readDouble(text, &bOk), std::isfinite(dExpected) ? dExpected : 0.0);
    QCOMPARE(bOk, bExpected && std::isfinite(dExpected));
    QCOMPARE(readUInt32(text, &bOk), sText.toUInt(&bExpected));
    QCOMPARE(bOk, bExpected);
    QCOMPARE(readInt64(text, &bOk), sText.toLongLong(&bExpected));
    QCOMPARE(bOk, bExpected);
}

/// Both writers write the same document.
void TestXmlReader::sameText()
{
    const auto write = [](XmlWriter& a_writer) {
        a_writer.startElement(QLatin1String("r"));
        a_writer.attribute(QLatin1String("a"), u"<\">&'\t\n\r\u00E9\U0001F600\u0001\uFFFE");
        a_writer.wholeAttribute(QLatin1String("b"), -5);
        a_writer.booleanAttribute(QLatin1String("c"), true);
        a_writer.textElement(QLatin1String("t"), u"<\">&'\t\n\r\u00E9\U0001F600\u0001");
        a_writer.textElement(QLatin1String("t"), u"");
        a_writer.startElement(QLatin1String("e"));
        a_writer.startElement(QLatin1String("e"));
        a_writer.endElement();
        a_writer.endElement();
        a_writer.startElement(QLatin1String("n"));
        a_writer.number(433'925'100.0);
        a_writer.endElement();
        a_writer.endElement();
    };
    QByteArray expected;
    QXmlStreamWriter stream(&expected);
    stream.setAutoFormatting(true);
    stream.writeStartDocument();
    XmlStreamWriter streamWriter(stream);
    write(streamWriter);
    stream.writeEndDocument();
    QByteArray written;
    XmlTextWriter writer(written);
    writer.startDocument();
    write(writer);
    writer.endDocument();
    QCOMPARE(written, expected);
}

QTEST_APPLESS_MAIN(TestXmlReader)

#include "tst_xmlreader.moc"
