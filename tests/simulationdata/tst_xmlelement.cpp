#include "simulationdata/simulationlimits.h"
#include "simulationdata/xml/xmlencoding_p.h"
#include "simulationdata/xmlelement.h"

#include <QStringConverter>
#include <QTest>

using namespace Simulation;

class TestXmlElement : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void written_data();
    void written();
    void refused_data();
    void refused();
    void refusedBeyondLimits_data();
    void refusedBeyondLimits();
    void encodings_data();
    void encodings();
    void sharesUtf8();
    void access();
    void building();
    void textSurvives_data();
    void textSurvives();
    void nullElement();
    void copiesAndLifetime();
    void deepDocument();
    void truncated();
};

namespace {

QString u8(const char* a_szText)
{
    return QString::fromUtf8(a_szText);
}

} // namespace

void TestXmlElement::cleanup()
{
    Limits::setValue(Limits::DocumentBytes, 0);
    Limits::setValue(Limits::NestingDepth, 0);
}

void TestXmlElement::written_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("expected");

    QTest::newRow("empty") << QByteArray("<A></A>") << QByteArray("<A/>\n");
    QTest::newRow("attribute order") << QByteArray("<A z='1'\n b = \"2\"\ta='3' />")
                                     << QByteArray("<A z=\"1\" b=\"2\" a=\"3\"/>\n");
    QTest::newRow("layout") << QByteArray("<A><B>t</B><C><D/>\n</C></A>")
                            << QByteArray("<A>\n    <B>t</B>\n    <C>\n        <D/>\n    </C>\n</A>\n");
    QTest::newRow("mixed text stays as it is")
        << QByteArray("<A>x <B><C/> <D/></B>\ny</A>") << QByteArray("<A>x <B><C/> <D/></B>\ny</A>\n");
    QTest::newRow("white space alone is text") << QByteArray("<A> \n</A>") << QByteArray("<A> \n</A>\n");
    QTest::newRow("escapes") << QByteArray(
                                    "<A b='&lt;&quot;&apos;&#10;&#x9;>'>&amp;&gt;&#13;<![CDATA[<]]></A>")
                             << QByteArray("<A b=\"&lt;&quot;'&#10;&#9;&gt;\">&amp;&gt;&#13;&lt;</A>\n");
    QTest::newRow("what surrounds the root goes")
        << QByteArray("<?xml version='1.0' encoding=\"utf-8\" standalone='yes'?>\n<!-- a - b --><?p x?>"
                      "<!DOCTYPE A [<!NOTATION e SYSTEM '>'><!-- ]> -->]>\n<A/><!----><?q?>\n")
        << QByteArray("<A/>\n");
    QTest::newRow("colons and letters") << QByteArray("<Simulation::Foo \xC3\xA4.-\xC2\xB7='1'/>")
                                        << QByteArray("<Simulation::Foo \xC3\xA4.-\xC2\xB7=\"1\"/>\n");
    QTest::newRow("comment in text") << QByteArray("<A>x<!-- y --><?p z?>w</A>") << QByteArray("<A>xw</A>\n");
}

void TestXmlElement::written()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, expected);

    QString sError;
    const XmlElement root = XmlElement::parse(text, &sError);
    QCOMPARE(sError, QString());
    QCOMPARE(root.toByteArray(), expected);
    QCOMPARE(XmlElement::parse(expected).toByteArray(), expected);
}

void TestXmlElement::refused_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("reason");
    const auto row = [](const char* a_szRow, const QByteArray& a_text, const char* a_szReason) {
        QTest::newRow(a_szRow) << a_text << u8(a_szReason);
    };
    QByteArray nine("<A");
    for (int i = 0; i < 9; ++i) {
        nine += " a" + QByteArray::number(i) + "=''";
    }

    row("nothing", "", "line 1, column 1: no root element");
    row("only a comment", "<!-- -->\n", "line 2, column 1: no root element");
    row("second root", "<A/>\n<B/>", "line 2, column 1: a second root element");
    row("text before the root", "x<A/>", "line 1, column 1: text or markup outside the root element");
    row("text after the root", "<A/>x", "line 1, column 5: text or markup outside the root element");
    row("section behind the root", "<A/><![CDATA[]]>",
        "line 1, column 5: text or markup outside the root element");
    row("reference behind the root", "<A/>&#32;",
        "line 1, column 5: text or markup outside the root element");
    row("late document type", "<A/><!DOCTYPE A>",
        "line 1, column 5: text or markup outside the root element");
    row("two document types", "<!DOCTYPE A><!DOCTYPE A><A/>",
        "line 1, column 13: text or markup outside the root element");
    row("attribute twice", "<A b='' c='' b=''/>", "line 1, column 14: attribute \"b\" occurs twice");
    row("attribute twice among many", nine + "\n a3=''/>", "line 2, column 2: attribute \"a3\" occurs twice");
    row("mismatched tags", "<A><B></A></B>", "line 1, column 7: end tag \"A\" where \"B\" is open");
    row("open at the end", "<A><B/>", "line 1, column 8: element \"A\" does not end");
    row("end tag with attributes", "<A></A b=''>", "line 1, column 8: malformed end tag \"A\"");
    row("unknown entity", "<A>\n &nbsp;</A>", "line 2, column 2: unknown entity \"nbsp\"");
    row("own entity", "<!DOCTYPE A [ <!-- '<!ENTITY' --> <!ELEMENT A ANY><!ENTITY e 'x'>]><A/>",
        "line 1, column 1: entity declarations limit of 0 exceeded");
    row("foreign entity", "<!DOCTYPE A SYSTEM 'a.dtd'   ><A b='&e;'/>",
        "line 1, column 37: unknown entity \"e\"");
    row("bare ampersand", "<A>a & b</A>", "line 1, column 6: malformed reference");
    row("reference without end", "<A>&amp</A>", "line 1, column 4: malformed reference");
    row("empty reference", "<A>&#;</A>", "line 1, column 4: malformed reference");
    row("forbidden reference", "<A>&#0;</A>",
        "line 1, column 4: reference to an invalid or forbidden character \"#0\"");
    row("reference with a colon", "<A>&#x4:;</A>",
        "line 1, column 4: reference to an invalid or forbidden character \"#x4:\"");
    row("surrogate reference", "<A>&#xD800;</A>",
        "line 1, column 4: reference to an invalid or forbidden character \"#xD800\"");
    row("reference that wraps round", "<A>&#4294967361;</A>",
        "line 1, column 4: reference to an invalid or forbidden character \"#4294967361\"");
    row("digits of another base", "<A>&#1F;</A>",
        "line 1, column 4: reference to an invalid or forbidden character \"#1F\"");
    row("control", "<A>\n\x01</A>", "line 2, column 1: forbidden character, code 1");
    row("zero", QByteArray("<A>\0</A>", 8), "line 1, column 4: forbidden character, code 0");
    row("non-character", "<A>\xC3\xA4\xEF\xBF\xBF</A>", "line 1, column 5: forbidden character, code 65535");
    row("invalid UTF-8", "<A>\n\xC3\xA4\xE4</A>", "line 2, column 2: the bytes are not valid UTF-8");
    row("overlong UTF-8", "<A>\xC0\xAF</A>", "line 1, column 4: the bytes are not valid UTF-8");
    row("surrogate in UTF-8", "<A>\xED\xA0\x80</A>", "line 1, column 4: the bytes are not valid UTF-8");
    row("claimed UTF-8", "<?xml version='1.0' encoding='UTF-8'?><A>\xE4</A>",
        "line 1, column 42: the bytes are not valid UTF-8");
    row("no blank between attributes", "<A b=''c=''/>",
        "line 1, column 8: white space is missing before an attribute");
    row("no quotes", "<A b=1/>", "line 1, column 6: the value of attribute \"b\" has no quotes");
    row("no value", "<A b/>", "line 1, column 5: attribute \"b\" has no value");
    row("value without end", "<A b='/>", "line 1, column 7: the value of attribute \"b\" does not end");
    row("tag in a value", "<A b='<'/>", "line 1, column 7: \"<\" in the value of attribute \"b\"");
    row("bad name", "<1/>", "line 1, column 2: a name is missing or malformed");
    row("bad character in a name", "<A><B\xC3\x97/></A>",
        "line 1, column 6: white space is missing before an attribute");
    row("bad attribute name", "<A -b=''/>", "line 1, column 4: a name is missing or malformed");
    row("slash in a tag", "<A / >", "line 1, column 4: malformed tag \"A\"");
    row("section end in text", "<A>]]></A>", "line 1, column 4: \"]]>\" in text");
    row("section without end", "<A><![CDATA[</A>", "line 1, column 17: a CDATA section does not end");
    row("dashes in a comment", "<A><!-- -- --></A>", "line 1, column 4: \"--\" inside a comment");
    row("comment without end", "<A><!-- </A>", "line 1, column 13: a comment does not end");
    row("comment with its own dashes", "<A><!--></A>", "line 1, column 13: a comment does not end");
    row("instruction without target", "<A><? x?></A>", "line 1, column 6: a name is missing or malformed");
    row("declaration inside", "<A><?XML version='1.0'?></A>",
        "line 1, column 4: an XML declaration that is not at the start");
    row("declaration after a blank", " <?xml version='1.0'?><A/>",
        "line 1, column 2: an XML declaration that is not at the start");
    row("declaration without version", "<?xml encoding='UTF-8'?><A/>",
        "line 1, column 1: malformed XML declaration");
    row("declaration of no version", "<?xml version='2.0'?><A/>",
        "line 1, column 1: malformed XML declaration");
    row("declaration out of order", "<?xml version='1.0' standalone='no' encoding='UTF-8'?><A/>",
        "line 1, column 1: malformed XML declaration");
    row("document type without end", "<!DOCTYPE A [ ']>'",
        "line 1, column 1: the document type does not end");
    row("declaration in the root", "<A><!ELEMENT></A>", "line 1, column 5: a name is missing or malformed");
    row("unknown encoding", "<?xml version='1.0' encoding='EBCDIC'?><A/>",
        "line 1, column 1: cannot decode the encoding \"EBCDIC\"");
    row("false claim of wide characters", "<?xml version='1.0' encoding='UTF-16'?><A/>",
        "line 1, column 1: cannot decode the encoding \"UTF-16\"");
    row("not ASCII", "<?xml version='1.0' encoding='US-ASCII'?>\n<A>\xC3\xA4</A>",
        "line 2, column 4: the bytes are not valid US-ASCII");
    row("lone surrogate in UTF-16", QByteArray("\xFE\xFF\0<\0A\0>\xD8\0\0<\0/\0A\0>", 18),
        "line 1, column 1: the bytes are not valid UTF-16BE");
}

void TestXmlElement::refused()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, reason);

    QString sError;
    const XmlElement root = XmlElement::parse(text, &sError);
    QCOMPARE(sError, reason);
    QVERIFY(root.isNull());
}

void TestXmlElement::refusedBeyondLimits_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("reason");

    QTest::newRow("depth") << QByteArray("<A>\n") + QByteArray("<B>").repeated(1000000)
                           << u8("line 2, column 766: nesting depth limit of 256 exceeded");
    QTest::newRow("attributes") << "<A" + QByteArray(" b=''").repeated(100000) + "/>"
                                << u8("line 1, column 1: attributes of one element limit of 4096 exceeded");
    QTest::newRow("document type") << "<!DOCTYPE A [" + QByteArray(5000, ' ') + "]><A/>"
                                   << u8("line 1, column 1: bytes of a document type limit of 4096 exceeded");
    QTest::newRow("elements") << "<A>" + QByteArray("<B/>").repeated(262144) + "</A>"
                              << u8("line 1, column 1048576: elements of a record limit of 262144 exceeded");
    QTest::newRow("size") << "<A>" + QByteArray(600000, 'x') + "</A>"
                          << u8("document bytes limit of 600000 exceeded");
}

void TestXmlElement::refusedBeyondLimits()
{
    constexpr std::uint64_t uiSize = 600000;
    if (u8(QTest::currentDataTag()) == u8("size")) {
        Limits::setValue(Limits::DocumentBytes, uiSize);
    }
    refused();
}

void TestXmlElement::encodings_data()
{
    QTest::addColumn<QByteArray>("text");

    const QString sPlain = u8("<A>\xC3\xA4\xF0\x9D\x84\x9E</A>");
    const QString sDeclared = u8("<?xml version='1.0' encoding='UTF-16' standalone='no'?>") + sPlain;
    const auto encoded = [](QStringConverter::Encoding a_eEncoding, const QString& a_sText, bool a_bMark) {
        QStringEncoder encoder(a_eEncoding,
                               a_bMark ? QStringConverter::Flag::WriteBom : QStringConverter::Flag::Default);
        return QByteArray(encoder.encode(a_sText));
    };
    QTest::newRow("UTF-8") << sPlain.toUtf8();
    QTest::newRow("UTF-8 with mark") << "\xEF\xBB\xBF" + sPlain.toUtf8();
    QTest::newRow("UTF-8 with mark, false claim") << "\xEF\xBB\xBF" + sDeclared.toUtf8();
    QTest::newRow("UTF-16BE") << encoded(QStringConverter::Utf16BE, sDeclared, true);
    QTest::newRow("UTF-16LE") << encoded(QStringConverter::Utf16LE, sDeclared, true);
    QTest::newRow("UTF-16LE without mark") << encoded(QStringConverter::Utf16LE, sDeclared, false);
    QTest::newRow("UTF-32LE") << encoded(QStringConverter::Utf32LE, sPlain, true);
    QTest::newRow("ISO-8859-1") << QByteArray(
        "<?xml version='1.0'\n encoding = \"iso-8859-1\" ?><A>\xE4&#x1D11E;</A>");
    QTest::newRow("US-ASCII") << QByteArray(
        "<?xml version='1.0' encoding='us-ascii'?><A>&#228;&#119070;</A>");
}

void TestXmlElement::encodings()
{
    QFETCH(QByteArray, text);

    QString sError;
    const XmlElement root = XmlElement::parse(text, &sError);
    QCOMPARE(sError, QString());
    QCOMPARE(root.childText(), u8("\xC3\xA4\xF0\x9D\x84\x9E"));
    // The converted text declares no encoding, so that a stream reader does not decode
    // it again.
    const QByteArray utf8 = toUtf8Xml(text, &sError);
    QCOMPARE(sError, QString());
    QVERIFY(!utf8.contains("encoding"));
    QCOMPARE(XmlElement::parse(utf8).childText(), root.childText());
}

void TestXmlElement::sharesUtf8()
{
    const QByteArray text("<?xml version='1.0' encoding='utf-8'?><A>\xC3\xA4</A>");
    QString sError;
    const QByteArray utf8 = toUtf8Xml(text, &sError);
    QCOMPARE(static_cast<const void*>(utf8.constData()), static_cast<const void*>(text.constData()));
    // The text ends inside a character, as after a write to a full disk.
    QCOMPARE(toUtf8Xml("<A>\xC3", &sError), QByteArray("<A>\xC3"));
    QCOMPARE(toUtf8Xml("<A>\xF0\x9D\x84", &sError), QByteArray("<A>\xF0\x9D\x84"));
    QCOMPARE(sError, QString());
    QCOMPARE(toUtf8Xml("<A>\xF0\x9D\x84<", &sError), QByteArray("<A>"));
    QCOMPARE(sError, u8("line 1, column 4: the bytes are not valid UTF-8"));
}

void TestXmlElement::access()
{
    const XmlElement root = XmlElement::parse(
        "<R a='' b='x'>\n <N>4294967295</N><N>2</N><Big>4294967296</Big><T>true</T><F>false</F><U>True</U>"
        "<E/>  tail <M> x<I>no</I><![CDATA[<y>]]> z </M></R>");
    QCOMPARE(root.tagName(), u8("R"));
    QVERIFY(root.hasAttribute(u8("a")));
    QVERIFY(!root.hasAttribute(QStringLiteral("a\0b"))); // a name with a NUL is another name
    QVERIFY(!root.attribute(u8("a")).isNull());
    QVERIFY(root.attribute(u8("c")).isNull());
    QVERIFY(root.hasChildText(u8("E")));
    QVERIFY(root.childText(u8("E")).isEmpty() && !root.childText(u8("E")).isNull());
    QVERIFY(!root.hasChildText(u8("I")));
    QVERIFY(root.childText(u8("I")).isNull());
    QCOMPARE(root.childText(u8("M")), u8(" x<y> z "));
    QCOMPARE(root.childText(), u8("\n   tail "));

    bool bOk = false;
    QCOMPARE(root.childUnsigned(u8("N"), &bOk), 4294967295U);
    QVERIFY(bOk);
    QCOMPARE(root.childUnsigned(u8("Big"), &bOk), 0U);
    QVERIFY(!bOk);
    QVERIFY(root.childBool(u8("T"), &bOk) && bOk);
    QVERIFY(!root.childBool(u8("F"), &bOk) && bOk);
    QVERIFY(!root.childBool(u8("U"), &bOk) && !bOk);

    QCOMPARE(root.firstChild().tagName(), u8("N"));
    QCOMPARE(root.firstChild(u8("N")).nextSibling(u8("N")).childText(), u8("2"));
    QCOMPARE(root.firstChild(u8("E")).nextSibling().tagName(), u8("M"));
    QVERIFY(root.firstChild(u8("E")).nextSibling(u8("N")).isNull());
    QVERIFY(root.nextSibling().isNull());
}

void TestXmlElement::building()
{
    XmlElement root = XmlElement::create(u8("Simulation::Foo"));
    root.setAttribute(u8("z"), u8("1"));
    root.setAttribute(u8("a"), u8("2"));
    root.setAttribute(u8("z"), u8("3"));
    root.setChildText(u8("Name"), u8("first"));
    root.setChildText(u8("Name"), u8("second"));
    root.appendChild(u8("Empty")).setChildText(u8("None"), QString());
    root.setAttribute(u8("no name"), u8("4"));
    root.setChildText(u8("1"), u8("x"));
    QVERIFY(root.appendChild(u8("<")).isNull());
    QVERIFY(XmlElement::create(QString()).isNull());
    const QByteArray expected("<Simulation::Foo z=\"3\" a=\"2\">\n"
                              "    <Name>first</Name>\n"
                              "    <Empty>\n"
                              "        <None/>\n"
                              "    </Empty>\n"
                              "</Simulation::Foo>\n");
    QCOMPARE(root.toByteArray(), expected);
    QCOMPARE(root.firstChild().toByteArray(), expected);
}

void TestXmlElement::textSurvives_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");

    QTest::newRow("blanks") << u8("  ") << u8("  ");
    QTest::newRow("line breaks and tabs") << u8("\r\n\t a \n\r") << u8("\r\n\t a \n\r");
    QTest::newRow("markup") << u8("<&>\"']]>") << u8("<&>\"']]>");
    QTest::newRow("forbidden characters")
        << u8("a\x01") + QChar(u'\0') + QChar(0xFFFE) + QChar(0xD800) + u8("b") << u8("ab");
    QTest::newRow("beyond the first plane") << u8("\xF0\x9D\x84\x9E") << u8("\xF0\x9D\x84\x9E");
}

void TestXmlElement::textSurvives()
{
    QFETCH(QString, text);
    QFETCH(QString, expected);

    XmlElement root = XmlElement::create(u8("R"));
    root.setChildText(u8("T"), text);
    root.setAttribute(u8("a"), text);
    QString sError;
    const XmlElement read = XmlElement::parse(root.toByteArray(), &sError);
    QCOMPARE(sError, QString());
    QCOMPARE(read.childText(u8("T")), expected);
    QCOMPARE(read.attribute(u8("a")), expected);
}

void TestXmlElement::nullElement()
{
    XmlElement null;
    null.setAttribute(u8("a"), u8("b"));
    null.setChildText(u8("a"), u8("b"));
    QVERIFY(null.isNull());
    QVERIFY(null.appendChild(u8("a")).isNull());
    QVERIFY(null.appendCopy(XmlElement::create(u8("A"))).isNull());
    QVERIFY(null.firstChild().isNull() && null.nextSibling().isNull());
    QVERIFY(null.childText().isNull() && null.attribute(u8("a")).isNull());
    QVERIFY(null.toByteArray().isEmpty());
}

void TestXmlElement::copiesAndLifetime()
{
    XmlElement inner;
    {
        const XmlElement root = XmlElement::parse("<R><A b='1'><B>x</B></A></R>");
        inner = root.firstChild();
    }
    XmlElement other = XmlElement::create(u8("O"));
    XmlElement copy = other.appendCopy(inner);
    copy.setAttribute(u8("b"), u8("2"));
    inner.appendCopy(inner);
    QCOMPARE(inner.toByteArray(), QByteArray("<R>\n    <A b=\"1\">\n        <B>x</B>\n        <A b=\"1\">\n"
                                             "            <B>x</B>\n        </A>\n    </A>\n</R>\n"));
    inner = XmlElement();
    QCOMPARE(other.toByteArray(), QByteArray("<O>\n    <A b=\"2\">\n        <B>x</B>\n    </A>\n</O>\n"));
}

/// Deep documents can be read and written with a raised limit: no function recurses.
void TestXmlElement::deepDocument()
{
    constexpr int iDepth = 2000;
    constexpr int iBuiltDepth = 300000;
    Limits::setValue(Limits::NestingDepth, iDepth);
    const QByteArray text = QByteArray("<A>x").repeated(iDepth) + QByteArray("</A>").repeated(iDepth) + "\n";
    QCOMPARE(XmlElement::parse(text).toByteArray(), text);

    // The text in the root prevents indentation. The size of the indentation would be
    // quadratic.
    XmlElement root = XmlElement::parse("<R>x</R>");
    XmlElement element = root;
    for (int i = 0; i < iBuiltDepth; ++i) {
        element = element.appendChild(u8("A"));
    }
    XmlElement copy = XmlElement::create(u8("C"));
    QVERIFY(!copy.appendCopy(root).isNull());
    QVERIFY(root.toByteArray().endsWith("</A></A></R>\n"));
}

void TestXmlElement::truncated()
{
    const QByteArray text(
        "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"UTF-8\"?><!DOCTYPE A [<!ELEMENT A ANY>]>"
        "<!-- c --><A b='&lt;'><?p q?>\xC3\xA4&#228;<![CDATA[x]]><B/></A>");
    QVERIFY(!XmlElement::parse(text).isNull());
    for (qsizetype i = 0; i < text.size(); ++i) {
        QString sError;
        QVERIFY2(XmlElement::parse(text.first(i), &sError).isNull(), text.first(i).constData());
        QVERIFY(sError.startsWith(u8("line 1, column ")));
    }
}

QTEST_GUILESS_MAIN(TestXmlElement)
#include "tst_xmlelement.moc"
