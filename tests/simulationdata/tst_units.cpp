#include "simulationdata/duration.h"
#include "simulationdata/frequency.h"
#include "simulationdata/position.h"

#include <cmath>
#include <limits>

#include <QTest>

using Units::Duration;
using Units::Frequency;
using Units::Position;
using Units::Position_t;

namespace {

constexpr double s_dNan = std::numeric_limits<double>::quiet_NaN();
constexpr double s_dInfinity = std::numeric_limits<double>::infinity();
constexpr double s_dTolerance = 1e-6; // degrees
constexpr int s_iUnknownFormat = 6;
constexpr auto s_eUnknown = static_cast<Position::Format>(s_iUnknownFormat);
constexpr double s_dEast = 8 + 30 / 60.0 + 15.25 / 3600.0;

const QLocale s_en(QLocale::English, QLocale::UnitedStates);
const QLocale s_de(QLocale::German, QLocale::Germany); // decimal comma

} // namespace

class TestUnits : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QLocale::setDefault(QLocale::c()); }
    void frequencyText_data();
    void frequencyText();
    void frequencyRead_data();
    void frequencyRead();
    void duration();
    void equality();
    void positionText_data();
    void positionText();
    void positionRead_data();
    void positionRead();
    void positionOddInput();
    void positionValid_data();
    void positionValid();
    void masksAndExpressions();
    void formats();
};

void TestUnits::frequencyText_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("fixed");
    QTest::addColumn<QString>("free");

    QTest::newRow("unit before rounding") << 999.9 << "1000 Hz"
                                          << "999.900000 Hz";
    QTest::newRow("kilo") << 12500.0 << "12.500 kHz"
                          << "12.500000 kHz";
    QTest::newRow("1 MHz in kilo") << 1e6 << "1000.000 kHz"
                                   << "1000.000000 kHz";
    QTest::newRow("mega from 10 MHz") << 1e7 << "10.000000 MHz"
                                      << "10.000000 MHz";
    QTest::newRow("negative") << -5e6 << "-5000000 Hz"
                              << "-5000000.000000 Hz";
    QTest::newRow("not a number") << s_dNan << "nan GHz"
                                  << "nan GHz";
}

void TestUnits::frequencyText()
{
    QFETCH(double, value);
    QLocale::setDefault(s_de);
    bool bOk = false;
    QTEST(Frequency::toString(value, true, &bOk), "fixed");
    QVERIFY(bOk);
    QTEST(Frequency::toString(value, false, nullptr), "free");
}

void TestUnits::frequencyRead_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("reference");
    QTest::addColumn<bool>("valid");
    QTest::addColumn<double>("expected");

    QTest::newRow("decimal comma") << "12,5k" << 0.0 << true << 12500.0;
    QTest::newRow("three decimals") << "12.500 kHz" << 0.0 << true << 12500.0;
    QTest::newRow("two decimals") << "433.92 MHz" << 0.0 << true << 433.92e6;
    QTest::newRow("unit beats reference") << "7H" << 5e9 << true << 7.0;
    QTest::newRow("junk after the unit") << "5. mhz\njunk" << 0.0 << true << 5e6;
    QTest::newRow("no unit, no reference") << "7" << 0.0 << true << 7.0;
    QTest::newRow("reference in kilo") << "7" << 5e6 << true << 7000.0;
    QTest::newRow("reference in mega") << "434" << 433.92e6 << true << 434e6;
    QTest::newRow("reference not a number") << "7" << s_dNan << true << 7e9;
    QTest::newRow("too large for a double") << QString(1'000'000, u'9') << 0.0 << true << 0.0;
    QTest::newRow("empty") << "" << 1e6 << false << 0.0;
    QTest::newRow("sign") << "-5 kHz" << 0.0 << false << 0.0;
    QTest::newRow("not ASCII") << QStringLiteral("\u03BC5") << 0.0 << false << 0.0;
}

void TestUnits::frequencyRead()
{
    QFETCH(QString, text);
    QFETCH(double, reference);
    for (const QLocale& locale : {s_en, s_de, QLocale(QLocale::Arabic, QLocale::Egypt)}) {
        QLocale::setDefault(locale);
        QTEST(Frequency::validString(text), "valid");
        QTEST(Frequency::fromString(text, reference), "expected");
    }
}

void TestUnits::duration()
{
    QCOMPARE(Duration::toString(3'723'999), QStringLiteral("01:02:03s"));
    QCOMPARE(Duration::toString(90'061'000), QStringLiteral("01:01:01s"));
    QCOMPARE(Duration::toString(0x80000000), QStringLiteral("03:28:36s"));
    QCOMPARE(Duration::toString(0xFFFFFFFF), QStringLiteral("23:59:59s"));
}

void TestUnits::equality()
{
    QVERIFY(Frequency::equal(100.0, 100.0000005));
    QVERIFY(!Frequency::equal(100.0, 100.000002));
    QVERIFY(Position::equal({0.0, 48.0}, {10.0, 48.000000009}));
    QVERIFY(!Position::equal({0.0, 48.0}, {0.0, 48.00000002}));
    QVERIFY(!Position::equal({0.0, 48.0}, {0.0, s_dNan}));
}

void TestUnits::positionText_data()
{
    QTest::addColumn<Position_t>("position");
    QTest::addColumn<int>("format");
    QTest::addColumn<QLocale>("locale");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* a_szName, const Position_t& a_position, int a_iFormat,
                        const QLocale& a_locale, const char* a_szExpected) {
        QTest::newRow(a_szName) << a_position << a_iFormat << a_locale << QString::fromUtf8(a_szExpected);
    };

    row("decimal", {8.123456, -48.25}, 0, s_en, "E008.123456° S48.250000°");
    row("decimal, comma", {-8.5, 48.25}, 0, s_de, "W008,500000° N48,250000°");
    row("minus zero", {-0.0, -0.0}, 0, s_en, "E000.000000° N00.000000°");
    row("no group separators", {12345.5, 48.0}, 0, s_en, "E12345.500000° N48.000000°");
    row("long", {s_dEast, 48.125}, 1, s_en, "E008°30'15.25\" N48°07'30.00\"");
    row("long, comma", {s_dEast, -48.125}, 1, s_de, "E008°30'15,25\" S48°07'30,00\"");
    row("long, no carry", {8.1, 0.0}, 1, s_en, "E008°05'60.00\" N00°00'00.00\"");
    row("short", {s_dEast, 48.125}, 2, s_de, "E008°30'15\" N48°07'30\"");
    row("short, no carry", {8 + 59.7 / 3600, 0.0}, 2, s_en, "E008°00'60\" N00°00'00\"");
    row("short, a half stays", {-0.03125, 1.0}, 2, s_en, "W000°01'52\" N01°00'00\"");
    row("short, huge", {1e18, -s_dInfinity}, 2, s_en, "E1000000000000000000°00'00\" Sinf°nan'nan\"");
    row("UTM", {9.0, 0.0}, 3, s_en, "32N 0500000 0000000");
    row("locator", {-72.727260, 41.714775}, 5, s_en, "FN31PR");
}

void TestUnits::positionText()
{
    QFETCH(Position_t, position);
    QFETCH(int, format);
    QFETCH(QLocale, locale);
    QTEST(Position::toString(position, static_cast<Position::Format>(format), locale), "expected");
}

void TestUnits::positionRead_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("format");
    QTest::addColumn<QLocale>("locale");
    QTest::addColumn<Position_t>("expected");
    const auto row = [](const char* a_szName, const char* a_szText, int a_iFormat, const QLocale& a_locale,
                        const Position_t& a_expected) {
        QTest::newRow(a_szName) << QString::fromUtf8(a_szText) << a_iFormat << a_locale << a_expected;
    };

    row("decimal, any case", "w008.500000° S48.250000°", 0, s_en, {-8.5, -48.25});
    row("decimal, comma", "E008,500000° N48,250000°", 0, s_de, {8.5, 48.25});
    row("decimal, another locale's", "E008,500000° N48,250000°", 0, s_en, {0.0, 0.0});
    row("decimal, cut short", "W008.500000° S", 0, s_en, {-8.5, 0.0});
    row("decimal, not finite", "Wnan      ° Sinf      °", 0, s_en, {0.0, 0.0});
    row("long", "E008°30'15.25\" S48°07'30.00\"", 1, s_en, {s_dEast, -48.125});
    row("long, comma loses seconds", "W008°30'15,25\" N48°07'30,00\"", 1, s_de, {-8.5, 48 + 7 / 60.0});
    row("long, small letters", "w008°30'00.00\" s48°00'00.00\"", 1, s_en, {8.5, 48.0});
    row("long, not finite", "Enan°30'inf  \" N48°00'00.00\"", 1, s_en, {0.0, 48.0});
    row("short", "W008°30'18\" S48°07'30\"", 2, s_en, {-8.505, -48.125});
    row("locator", "JJ00AA", 5, s_en, {1 / 24.0, 1 / 48.0});
    row("unknown format", "E008.500000° N48.250000°", s_iUnknownFormat, s_en, {0.0, 0.0});
}

void TestUnits::positionRead()
{
    QFETCH(QString, text);
    QFETCH(int, format);
    QFETCH(QLocale, locale);
    QFETCH(Position_t, expected);
    const Position_t read = Position::fromString(text, static_cast<Position::Format>(format), locale);
    QVERIFY2(std::fabs(read.longitude - expected.longitude) <= s_dTolerance &&
                 std::fabs(read.latitude - expected.latitude) <= s_dTolerance,
             qPrintable(QStringLiteral("%1 %2").arg(QString::number(read.longitude),
                                                    QString::number(read.latitude))));
}

/// Any text is read as a finite position in any format. Any number has a text in the
/// three formats that can show it.
void TestUnits::positionOddInput()
{
    const QStringList texts{QString(), QStringLiteral("W"), QString(1'000'000, u'9'),
                            QStringLiteral("\u00DF\u4E2D\u0663\u0662\U0001F30D").repeated(20)};
    for (int iFormat = -1; iFormat <= s_iUnknownFormat; ++iFormat) {
        const auto eFormat = static_cast<Position::Format>(iFormat);
        for (const QLocale& locale : {s_en, s_de, QLocale(QLocale::Arabic, QLocale::Egypt)}) {
            for (const QString& sText : texts) {
                QVERIFY(!Position::validString(sText, eFormat, locale));
                const Position_t read = Position::fromString(sText, eFormat, locale);
                QVERIFY(std::isfinite(read.longitude) && std::isfinite(read.latitude));
            }
            for (const double dOdd : {s_dNan, s_dInfinity, -s_dInfinity, 1e300, -1e300, 1e10}) {
                QCOMPARE(Position::toString(dOdd, dOdd, eFormat, locale).isEmpty(),
                         iFormat < 0 || iFormat > 2);
            }
        }
    }
}

void TestUnits::positionValid_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("format");
    QTest::addColumn<bool>("valid");

    QTest::newRow("decimal, ends") << "W180.000000° S90.000000°" << 0 << true;
    QTest::newRow("decimal, beyond 180") << "W180.000001° S90.000000°" << 0 << false;
    QTest::newRow("decimal, small letters") << "e008.500000° n48.250000°" << 0 << false;
    QTest::newRow("decimal, line feed after it") << "E008.500000° N48.250000°\n" << 0 << false;
    QTest::newRow("decimal, x for the point") << "E008x500000° N48x250000°" << 0 << false;
    QTest::newRow("long") << "E008°30'15.25\" N48°07'30.00\"" << 1 << true;
    QTest::newRow("long, 60 seconds") << "E008°05'60.00\" N48°07'30.00\"" << 1 << false;
    QTest::newRow("short, ends") << "E180°00'00\" S90°00'00\"" << 2 << true;
    QTest::newRow("UTM") << "32U 0691608 5334757" << 3 << true;
    QTest::newRow("UTM, band O") << "32O 0691608 5334757" << 3 << false;
    QTest::newRow("MGRS") << "32U-PU-916083-347572" << 4 << true;
    QTest::newRow("locator") << "jn58td" << 5 << true;
    QTest::newRow("unknown is decimal") << "E008.500000° N48.250000°" << s_iUnknownFormat << true;
}

/// Checks the text unchanged, and with a comma instead of the point.
void TestUnits::positionValid()
{
    QFETCH(QString, text);
    QFETCH(int, format);
    QFETCH(bool, valid);
    const auto eFormat = static_cast<Position::Format>(format);
    QCOMPARE(Position::validString(text, eFormat, s_en), valid);
    QCOMPARE(Position::validString(text, eFormat, s_de), valid && !text.contains(u'.'));
    QCOMPARE(Position::validString(text.replace(u'.', u','), eFormat, s_de), valid);
}

void TestUnits::masksAndExpressions()
{
    QStringList masks;
    for (int iFormat = 0; iFormat <= s_iUnknownFormat; ++iFormat) {
        masks += Position::formatMask(static_cast<Position::Format>(iFormat), s_de);
    }
    QCOMPARE(masks.join(u'\n'), QStringLiteral(">A999,999999° A99,999999°\n"
                                               ">A999°99'99,99\" A99°99'99,99\"\n"
                                               ">A999°99'99\" A99°99'99\"\n"
                                               ">99A 9999999 9999999\n"
                                               ">99A-AA-999999-999999\n"
                                               ">AA99AA<\n"
                                               ">A999,999999° A99,999999°"));
    const QString sDecimal = QStringLiteral(R"re(^(E|W)((0\d{2}|1[0-7]\d)\x002c\d{6}|180\x002c000000)°\s)re"
                                            R"re((N|S)([0-8]\d\x002c\d{6}|90\x002c000000)°$)re");
    QCOMPARE(Position::regex(Position::Decimal, s_de), sDecimal);
    QCOMPARE(Position::regex(s_eUnknown, s_de), sDecimal);
    QCOMPARE(Frequency::s_sRegex, QStringLiteral(R"re((\d+[.,]?\d*)\W*([hHkKmMgG]?).*)re"));
}

void TestUnits::formats()
{
    QStringList names;
    const QList<Position::Format> all = Position::formats() + QList<Position::Format>{s_eUnknown};
    for (const Position::Format eFormat : all) {
        names += QString::number(eFormat) + u' ' + Position::formatName(eFormat);
    }
    QCOMPARE(names.join(u','), QStringLiteral("0 Decimal,1 Geo long,2 Geo short,3 UTM,4 MGRS (NATO UTM),"
                                              "5 Maidenhead QTH,6 ERROR INVALID COORDINATES FORMAT"));
}

QTEST_GUILESS_MAIN(TestUnits)
#include "tst_units.moc"
