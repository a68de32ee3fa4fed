#include "simulationdata/commondataxml.h"
#include "simulationdata/positionsettingsfixed.h"
#include "simulationdata/positionsettingsptp.h"

#include <memory>

#include <QLocale>
#include <QTest>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

using namespace Simulation;

namespace {

/// Returns the unformatted XML of an element "a". a_write writes the element's content.
template<typename Write>
QString written(const Write& a_write)
{
    QString sXml;
    QXmlStreamWriter writer(&sXml);
    writer.writeStartElement(QStringLiteral("a"));
    a_write(writer);
    writer.writeEndElement();
    return sXml;
}

/// Movement points as text; a null name is "-".
QStringList texts(const QVector<MovementPoint>& a_points)
{
    QStringList result;
    for (const MovementPoint& point : a_points) {
        result.append(QStringLiteral("%1 %2 %3 %4 %5 %6,%7")
                          .arg(QString::number(point.dwellTime), QString::number(point.transitionTime),
                               QString::number(point.major), QString::number(point.speed),
                               point.name.isNull() ? QStringLiteral("-") : point.name,
                               QString::number(point.position.longitude, 'g', 15),
                               QString::number(point.position.latitude, 'g', 15)));
    }
    return result;
}

} // namespace

class TestCommonDataXml : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data();
    void init();
    void cleanup();
    void coordinates_data();
    void coordinates();
    void coordinateDigits();
    void positionSettings_data();
    void positionSettings();
    void writtenMovement();
    void movements_data();
    void movements();
    void movementText();
    void encodedText();
    void endBehavioursAndTruth();
};

/// Every test runs in two locales: documents do not depend on the locale.
void TestCommonDataXml::initTestCase_data()
{
    QTest::addColumn<QLocale>("locale");
    QTest::newRow("decimal point") << QLocale::c();
    QTest::newRow("decimal comma") << QLocale(QLocale::German);
}

void TestCommonDataXml::init()
{
    QFETCH_GLOBAL(QLocale, locale);
    QLocale::setDefault(locale);
}

void TestCommonDataXml::cleanup()
{
    QLocale::setDefault(QLocale::c());
}

void TestCommonDataXml::coordinates_data()
{
    QTest::addColumn<QString>("xml");
    QTest::addColumn<double>("longitude");
    QTest::addColumn<double>("latitude");
    const auto row = [](const char* a_szName, const char* a_szXml, double a_dLongitude, double a_dLatitude) {
        QTest::newRow(a_szName) << QString::fromLatin1(a_szXml) << a_dLongitude << a_dLatitude;
    };
    row("both", "<a><Lon>8.5</Lon><Lat>-48.25</Lat></a>", 8.5, -48.25);
    row("other order", "<a><Lat>48.25</Lat><Lon>-8.5</Lon></a>", -8.5, 48.25);
    row("missing longitude", "<a><Lat>48.25</Lat></a>", 0.0, 48.25);
    row("empty", "<a/>", 0.0, 0.0);
    row("decimal comma is no number", "<a><Lon>8,5</Lon><Lat>1.000,5</Lat></a>", 0.0, 0.0);
    row("not finite", "<a><Lon>nan</Lon><Lat>inf</Lat></a>", 0.0, 0.0);
    row("out of range", "<a><Lon>1e999</Lon><Lat>-1e999</Lat></a>", 0.0, 0.0);
    row("unknown children", "<a><X><Lon>1</Lon></X><Lon>2<Y>3</Y></Lon><Z/><Lat>4</Lat></a>", 2.0, 4.0);
    row("broken off", "<a><Lon>8.5</Lon>", 8.5, 0.0);
}

void TestCommonDataXml::coordinates()
{
    QFETCH(QString, xml);
    QXmlStreamReader reader(xml);
    QVERIFY(reader.readNextStartElement());
    const TPos position = CommonDataXml::readCoordinate(reader);
    QTEST(position.longitude, "longitude");
    QTEST(position.latitude, "latitude");
    QVERIFY(reader.isEndElement() || reader.hasError());
}

void TestCommonDataXml::coordinateDigits()
{
    QCOMPARE(
        written([](QXmlStreamWriter& a_writer) {
            CommonDataXml::writeCoordinate({8.123456789012345, 1e-7}, a_writer);
            CommonDataXml::writeCoordinate({-179.5, 0.0}, a_writer);
        }),
        QStringLiteral("<a><Lon>8.1234567890123</Lon><Lat>1e-07</Lat><Lon>-179.5</Lon><Lat>0</Lat></a>"));
}

void TestCommonDataXml::positionSettings_data()
{
    QTest::addColumn<QString>("xml");
    QTest::addColumn<QString>("rewritten");
    const QString sFixed = QStringLiteral("<Fixed><Lon>8.5</Lon><Lat>48.25</Lat></Fixed>");
    const QString sPoints = QStringLiteral(
        "<Position DWellTime=\"7\" TransitionTime=\"0\" Major=\"true\" Speed=\"50\" Name=\"A&amp;B\">"
        "<Lon>8</Lon><Lat>48</Lat></Position>"
        "<Position DWellTime=\"0\" TransitionTime=\"0\" Major=\"true\" Speed=\"30\" Name=\"\">"
        "<Lon>8</Lon><Lat>48</Lat></Position></Movement>");
    const auto movement = [&](const char* a_szAttributes) {
        return QStringLiteral("<Movement%1>").arg(QLatin1String(a_szAttributes)) + sPoints;
    };
    const auto row = [](const char* a_szName, const QString& a_sXml, const QString& a_sRewritten) {
        QTest::newRow(a_szName) << QStringLiteral("<a>%1</a>").arg(a_sXml) << a_sRewritten;
    };
    row("nothing", QString(), QString());
    row("nothing known", QStringLiteral("<Orbit><Fixed/></Orbit>"), QString());
    row("fixed", sFixed, sFixed);
    row("fixed, empty", QStringLiteral("<Fixed/>"),
        QStringLiteral("<Fixed><Lon>0</Lon><Lat>0</Lat></Fixed>"));
    row("movement, stop", movement(" EndBehavior=\"STOP\""), movement(" EndBehavior=\"STOP\""));
    row("movement, restart", movement(" EndBehavior=\"RESTART\""), movement(" EndBehavior=\"RESTART\""));
    row("movement, inactive", movement(" EndBehavior=\"INACTIVE\""), movement(" EndBehavior=\"INACTIVE\""));
    row("movement, unknown end", movement(" EndBehavior=\"Restart\""), movement(" EndBehavior=\"STOP\""));
    row("movement, no end", movement(""), movement(" EndBehavior=\"STOP\""));
    row("movement of one point",
        QStringLiteral(
            "<Movement EndBehavior=\"STOP\"><Position DWellTime=\"7\" TransitionTime=\"0\" "
            "Major=\"true\" Speed=\"50\" Name=\"A\"><Lon>8</Lon><Lat>48</Lat></Position></Movement>"),
        QStringLiteral(
            "<Movement EndBehavior=\"STOP\"><Position DWellTime=\"7\" TransitionTime=\"0\" "
            "Major=\"true\" Speed=\"50\" Name=\"A\"><Lon>8</Lon><Lat>48</Lat></Position></Movement>"));
    row("the last of several", movement("") + QStringLiteral("<X/>") + sFixed, sFixed);
}

void TestCommonDataXml::positionSettings()
{
    QFETCH(QString, xml);
    QFETCH(QString, rewritten);
    QXmlStreamReader reader(xml);
    QVERIFY(reader.readNextStartElement());
    const std::unique_ptr<IPositionSettings> settings(CommonDataXml::readPositionSettings(reader));
    QCOMPARE(settings == nullptr, rewritten.isEmpty());
    const QString sOut = written(
        [&](QXmlStreamWriter& a_writer) { CommonDataXml::writePositionSettings(settings.get(), a_writer); });
    QCOMPARE(sOut, rewritten.isEmpty() ? QStringLiteral("<a/>") : QStringLiteral("<a>%1</a>").arg(rewritten));
}

/// Speed and name are written for major points only. Characters that XML forbids are
/// removed.
void TestCommonDataXml::writtenMovement()
{
    MovementPoint first;
    first.position = {8.5, 48.25};
    first.major = true;
    first.speed = 12.3456789;
    first.name = QStringLiteral("A\x01\"<\r\n") + QChar(0xD800);
    first.dwellTime = 0xFFFFFFFF;
    MovementPoint second;
    second.transitionTime = 5;
    second.name = QStringLiteral("unseen");
    QCOMPARE(written([&](QXmlStreamWriter& a_writer) {
                 CommonDataXml::writeMovements({first, second}, a_writer);
             }),
             QStringLiteral(
                 "<a><Position DWellTime=\"4294967295\" TransitionTime=\"0\" Major=\"true\" "
                 "Speed=\"12.3457\" Name=\"A&quot;&lt;&#13;&#10;\"><Lon>8.5</Lon><Lat>48.25</Lat></Position>"
                 "<Position DWellTime=\"0\" TransitionTime=\"5\" Major=\"false\">"
                 "<Lon>0</Lon><Lat>0</Lat></Position></a>"));
}

void TestCommonDataXml::movements_data()
{
    QTest::addColumn<QString>("xml");
    QTest::addColumn<QStringList>("points");
    const auto row = [](const char* a_szName, const char* a_szXml, const QStringList& a_points) {
        QTest::newRow(a_szName) << QString::fromLatin1(a_szXml) << a_points;
    };
    row("major",
        "<m><Position DWellTime='3' TransitionTime='4' Major='true' Speed='1.5' Name='N'><Lon>1</Lon>"
        "<Lat>2</Lat></Position></m>",
        {QStringLiteral("3 4 1 1.5 N 1,2")});
    row("not major: speed and name are not read", "<m><Position Major='false' Speed='1.5' Name='N'/></m>",
        {QStringLiteral("0 0 0 50 - 0,0")});
    row("major in capitals, nothing else", "<m><Position Major='TRUE'/></m>",
        {QStringLiteral("0 0 1 0 - 0,0")});
    row("numbers out of range",
        "<m><Position DWellTime='4294967296' TransitionTime='-1' Major='true' Speed='nan' Name=''/></m>",
        {QStringLiteral("0 0 1 0  0,0")});
    row("others are skipped",
        "<m><X><Position/></X><Position/><Y/><Position><Position/><Lat>1</Lat></Position></m>",
        {QStringLiteral("0 0 0 50 - 0,0"), QStringLiteral("0 0 0 50 - 0,1")});
    row("no document", "", {});
    row("no XML", "hello", {});
    row("broken off", "<m><Position><Lon>1</Lon></Position><Position><Lon>2</Lon>",
        {QStringLiteral("0 0 0 50 - 1,0")});
    row("malformed", "<m><Position><Lon>1</Lon></Position></x><Position/></m>",
        {QStringLiteral("0 0 0 50 - 1,0")});
}

void TestCommonDataXml::movements()
{
    QFETCH(QString, xml);
    QTEST(texts(CommonDataXml::movementsForXml(xml)), "points");
}

void TestCommonDataXml::movementText()
{
    MovementPoint point;
    point.major = true;
    point.name = QStringLiteral("M\u00FCnchen \U0001F4E1");
    point.position = {11.5, 48.125};
    const QString sXml = CommonDataXml::xmlForMovements({point});
    QCOMPARE(sXml,
             QStringLiteral("<?xml version=\"1.0\"?>\n"
                            "<MovementsXml>\n"
                            "    <Position DWellTime=\"0\" TransitionTime=\"0\" Major=\"true\" Speed=\"50\" "
                            "Name=\"M\u00FCnchen \U0001F4E1\">\n"
                            "        <Lon>11.5</Lon>\n"
                            "        <Lat>48.125</Lat>\n"
                            "    </Position>\n"
                            "</MovementsXml>\n"));
    QCOMPARE(CommonDataXml::movementsForXml(sXml), QVector<MovementPoint>{point});
    QVERIFY(CommonDataXml::movementsForXml(CommonDataXml::xmlForMovements({})).isEmpty());
}

/// A QString is already decoded, so the encoding in its XML declaration is ignored.
void TestCommonDataXml::encodedText()
{
    for (const char* szEncoding : {"ISO-8859-1", "UTF-16", "UTF-8", "Klingon"}) {
        const auto points = CommonDataXml::movementsForXml(
            QStringLiteral(
                "<?xml version='1.0' encoding='%1'?><m><Position Major='true' Name='\u00FC\u20AC'/></m>")
                .arg(QLatin1String(szEncoding)));
        QCOMPARE(points.size(), 1);
        QCOMPARE(points.constFirst().name, QStringLiteral("\u00FC\u20AC"));
    }
}

void TestCommonDataXml::endBehavioursAndTruth()
{
    const auto text = [](int a_iValue) {
        return CommonDataXml::endBehaviorToString(static_cast<EndBehaviourType>(a_iValue));
    };
    QCOMPARE((QStringList{text(0), text(1), text(2), text(3), text(-1)}),
             (QStringList{QStringLiteral("STOP"), QStringLiteral("RESTART"), QStringLiteral("INACTIVE"),
                          QStringLiteral("RESTART"), QStringLiteral("RESTART")}));
    for (const EndBehaviourType eType :
         {EndBehaviourType::Stop, EndBehaviourType::Restart, EndBehaviourType::Inactive}) {
        QCOMPARE(CommonDataXml::stringToEndBehavior(CommonDataXml::endBehaviorToString(eType)), eType);
    }
    for (const QStringView sOther : {u"restart", u"", u" RESTART", u"Inactive"}) {
        QCOMPARE(CommonDataXml::stringToEndBehavior(sOther), EndBehaviourType::Stop);
    }
    QVERIFY(CommonDataXml::toBool(u"true") && CommonDataXml::toBool(u"TRUE") &&
            CommonDataXml::toBool(u"untRue!"));
    QVERIFY(!CommonDataXml::toBool(u"1") && !CommonDataXml::toBool(u"yes") && !CommonDataXml::toBool({}));
}

QTEST_GUILESS_MAIN(TestCommonDataXml)

#include "tst_commondataxml.moc"
