#include "simulationtool/toolrun.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QString s_sBuiltIn = u":/DefaultData/Default.sce.exp"_s;
const QString s_sPackage = u"r/SignalPackages/TuK-Default/Default"_s;

/// The value at a path of keys and indices, separated by slashes; "#" is the length
/// of a list.
QJsonValue valueAt(const QJsonDocument& a_document, const QString& a_sPath)
{
    QJsonValue value = a_document.object();
    for (const QString& step : a_sPath.split(u'/')) {
        if (step == u"#") {
            return value.isArray() ? QJsonValue(value.toArray().size()) : QJsonValue(QJsonValue::Undefined);
        }
        value = value.isArray() ? value.toArray().at(step.toInt()) : value.toObject().value(step);
    }
    return value;
}

} // namespace

class TestJsonReport : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void value_data();
    void value();
    void hostileText();
    void sameCodes_data();
    void sameCodes();

private:
    [[nodiscard]] QString path(const QString& a_sName) const { return m_dir.filePath(a_sName); }
    [[nodiscard]] bool write(const QString& a_sName, const QByteArray& a_data) const
    {
        QFile file(path(a_sName));
        return file.open(QIODevice::WriteOnly) && file.write(a_data) == a_data.size();
    }
    /// Runs a command; "@" stands for the test's folder.
    [[nodiscard]] ToolResult run(const QString& a_sCommand, const QStringList& a_options = {}) const
    {
        QStringList arguments = a_sCommand.split(u' ');
        arguments.replaceInStrings(u"@"_s, m_dir.path() + u'/');
        return runTool(arguments + a_options);
    }

    QTemporaryDir m_dir;
};

void TestJsonReport::initTestCase()
{
    QCOMPARE(runTool({u"repository"_s, u"init"_s, path(u"r"_s)}).code, 0);
    QVERIFY(QDir().mkpath(path(u"b"_s)));
    QVERIFY(QFile::copy(path(s_sPackage + u"/Signal.xml"_s), path(u"b/Signal.xml"_s)));
    QVERIFY(write(u"b/Signal.ssf"_s, "T&K"));
    QVERIFY(write(u"cut.sce"_s, "<Scenario><Emitter ID='e'/>"));
    QVERIFY(write(u"twice.xml"_s, "<SimulationDeployment><Station ID='s'/><Station ID='s'/>"
                                  "</SimulationDeployment>"));
    QVERIFY(write(u"same.sce"_s,
                  "<Scenario><Emitter ID='e'><Frequency><Fixed>nan</Fixed></Frequency>"
                  "<EmissionSettings Duration='9223372036854775807'><Emission ID='1' "
                  "StartTime='-9223372036854775807'/></EmissionSettings></Emitter></Scenario>"));
}

void TestJsonReport::value_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("place");
    QTest::addColumn<QJsonValue>("value");

    const auto add = [](const QString& a_sCommand, const QString& a_sPlace, const QJsonValue& a_value) {
        QTest::addRow("%s: %s", qPrintable(a_sCommand), qPrintable(a_sPlace))
            << a_sCommand << a_sPlace << a_value;
    };
    const QString sScenario = u"inspect "_s + s_sBuiltIn;
    add(sScenario, u"kind"_s, u"scenario"_s);
    add(sScenario, u"emitters/#"_s, 13);
    add(sScenario, u"emitters/3/frequency/frequency_hz"_s, 156.8e6);
    add(sScenario, u"emitters/3/way_points/1/speed_kmh"_s, 18);
    add(sScenario, u"emitters/3/position/at_end"_s, u"restart"_s);
    add(sScenario, u"networks/0/members/#"_s, 3);
    add(sScenario, u"noise/deviation"_s, -102);
    add(sScenario, u"verdict"_s, u"whole"_s);
    const QString sLimits = u"inspect @same.sce"_s;
    add(sLimits, u"emitters/0/name"_s, QJsonValue::Null);
    add(sLimits, u"emitters/0/period_ms"_s, QJsonValue::Null);
    add(sLimits, u"emitters/0/emissions/0/start_ms"_s, qint64{-9223372036854775807});
    add(sLimits, u"networks/#"_s, 0);
    add(u"inspect @cut.sce"_s, u"verdict"_s, u"broke off: line 1, column 27: Premature end of document."_s);
    const QString sPackage = u"inspect @"_s + s_sPackage;
    add(sPackage, u"files/1/size_bytes"_s, 206435);
    add(sPackage, u"problems/#"_s, 0);
    add(sPackage + u"/Signal.ssf"_s, u"bandwidth_hz"_s, 10000);
    add(sPackage + u"/Signal.wav"_s, u"usable_in_packages"_s, true);
    add(u"inspect @b"_s, u"problems/0"_s, u"Signal.ssf refused: the header has only 3 of 35 bytes"_s);
    add(u"repository list @r"_s, u"packages/0/duration"_s, 3000);
    add(u"repository list @b/.."_s, u"faulty_count"_s, 1);
    add(u"repository init @new"_s, u"package_count"_s, 3);
    add(u"convert "_s + s_sBuiltIn + u" @out"_s, u"not_carried/networks/members"_s, 6);
    add(u"convert "_s + s_sBuiltIn + u" @out"_s, u"emitter_count"_s, 13);
    const QString sPlay = u"play --to 201ms --step 0.1s --emitter ferry"_s;
    add(sPlay, u"rows/#"_s, 3);
    add(sPlay, u"rows/1/time_ms"_s, 100);
    add(sPlay, u"rows/0/frequency_hz"_s, 156.8e6);
    add(sPlay, u"rows/0/active"_s, false);
    add(sPlay, u"rows/0/package"_s, QJsonValue::Null);
    add(sPlay, u"verdict"_s, u"whole"_s);
    add(sPlay + u" --csv @rows.csv"_s, u"row_count"_s, 3);
    add(u"play @cut.sce --to 1 --repository @b"_s, u"verdict"_s,
        u"broke off: line 1, column 27: Premature end of document."_s);
    const QString sCheck = u"check @cut.sce @none @twice.xml --rule broken-off --rule duplicate-id"_s;
    add(sCheck, u"files/0/findings/0/rule"_s, u"broken-off"_s);
    add(sCheck, u"files/0/findings/0/object_id"_s, QJsonValue::Null);
    add(sCheck, u"files/1/error"_s, u"No such file or directory"_s);
    add(sCheck, u"files/2/findings/0/found"_s, u"s"_s);
    add(sCheck, u"files/2/findings/0/repaired"_s, false);
    add(sCheck, u"checked_count"_s, 2);
    add(sCheck, u"finding_count"_s, 2);
    add(u"check @same.sce --repair @copy.sce"_s, u"files/0/left_out"_s, QJsonValue::Null);
    add(u"demo"_s, u"steps/8/done"_s, true);
    add(u"demo"_s, u"rows/0/time_ms"_s, 0);
}

/// Standard output is one document with the value, and nothing else.
void TestJsonReport::value()
{
    QFETCH(QString, command);
    QFETCH(QString, place);
    QFETCH(QJsonValue, value);
    const ToolResult result = run(command, {u"--json"_s});
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(result.out.toUtf8(), &error);
    QVERIFY2(error.error == QJsonParseError::NoError, qPrintable(error.errorString() + result.out));
    QCOMPARE(valueAt(document, place), value);
}

/// Characters that control a terminal are escaped.
void TestJsonReport::hostileText()
{
    const QString sName = u"a\"\\ \t\x1b[31m \x7f \u009b \u202e \u2028 ö 𝄞"_s;
    QString sXml = sName;
    sXml.replace(u'"', u"&quot;"_s).replace(u'\t', u"&#9;"_s).remove(u'\x1b');
    QVERIFY(write(u"hostile.sce"_s, "<Scenario Name=\"" + sXml.toUtf8() + "\"/>"));
    const ToolResult result = run(u"inspect @hostile.sce --json"_s);
    QCOMPARE(valueAt(QJsonDocument::fromJson(result.out.toUtf8()), u"name"_s).toString(),
             QString(sName).remove(u'\x1b'));
    for (const QChar cHostile : u"\t\x7f\u009b\u202e\u2028"_s) {
        QVERIFY(!result.out.contains(cHostile));
    }
    QVERIFY(result.out.contains(u"ö 𝄞"_s));
}

void TestJsonReport::sameCodes_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<int>("code");
    QTest::addColumn<bool>("reported"); ///< whether standard output has a report

    QTest::newRow("broken off") << u"inspect @cut.sce"_s << 1 << true;
    QTest::newRow("refused") << u"inspect @b/Signal.ssf"_s << 2 << true;
    QTest::newRow("missing") << u"inspect @none"_s << 2 << false;
    QTest::newRow("no scenario") << u"convert @b/Signal.ssf @out"_s << 2 << false;
    QTest::newRow("no folder") << u"repository list @none"_s << 2 << false;
    QTest::newRow("faulty package") << u"repository list @b/.."_s << 1 << true;
    QTest::newRow("play of no emitter") << u"play --emitter none"_s << 2 << false;
    QTest::newRow("check of a missing file") << u"check @none"_s << 2 << true;
    QTest::newRow("usage") << u"repository init"_s << 2 << false;
}

/// The option --json changes neither exit code nor errors.
void TestJsonReport::sameCodes()
{
    QFETCH(QString, command);
    QFETCH(int, code);
    QFETCH(bool, reported);
    const ToolResult text = run(command);
    const ToolResult json = run(command, {u"--json"_s});
    QCOMPARE(json.code, code);
    QCOMPARE(text.code, code);
    QCOMPARE(json.err, text.err);
    QCOMPARE(!json.out.isEmpty(), reported);
}

QTEST_GUILESS_MAIN(TestJsonReport)

#include "tst_jsonreport.moc"
