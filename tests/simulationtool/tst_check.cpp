#include "simulationtool/toolrun.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <csignal>
#include <cstdlib>

#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

const QByteArray s_known = "b696e61d-dcae-42b4-b794-4a4adb8476c0";
const QByteArray s_default = "c0d40372-37c8-4ad4-9fb1-97bfc477769c";

QByteArray contentOf(const QString& a_sFile)
{
    QFile file(a_sFile);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("cannot be read");
}

/// The reference document; one of its three emissions names a known package.
QByteArray document()
{
    return contentOf(QStringLiteral(TEST_DATA_DIR "/scenarios/Rich.sce")).replace("p-2", s_known);
}

QByteArray repaired(QByteArray a_document)
{
    return a_document.replace("\"p-1\"", '"' + s_default + '"')
        .replace("SignalPackage=\"\"", "SignalPackage=\"" + s_default + '"');
}

} // namespace

class TestCheck : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void file_data();
    void file();
    void deployment_data();
    void deployment();
    void damagedPackage();
    void repair_data();
    void repair();
    void forceKeepsFormerFile();
    void redirectedInput();
    void progress_data();
    void progress();
    void cleansUp();

private:
    [[nodiscard]] QString path(const QString& a_sName) const { return m_dir.filePath(a_sName); }
    [[nodiscard]] bool write(const QString& a_sName, const QByteArray& a_data) const
    {
        QFile file(path(a_sName));
        return file.open(QIODevice::WriteOnly) && file.write(a_data) == a_data.size();
    }
    /// Checks files of the test's folder. The folder contains the repository "r".
    [[nodiscard]] ToolResult check(const QStringList& a_arguments) const
    {
        QStringList arguments{u"check"_s};
        for (const QString& argument : a_arguments) {
            arguments.append(argument.isEmpty() || argument.startsWith(u"--") ? argument : path(argument));
        }
        ToolResult result = runTool(arguments);
        result.out.remove(m_dir.path() + u'/');
        result.err.remove(m_dir.path() + u'/');
        return result;
    }

    QTemporaryDir m_dir;
};

void TestCheck::initTestCase()
{
    QCOMPARE(runTool({u"repository"_s, u"init"_s, path(u"r"_s)}).code, 0);
    QVERIFY(QDir().mkpath(path(u"empty"_s)));
    QVERIFY(document().contains(s_known) && repaired(document()).count(s_default) == 2);
}

void TestCheck::file_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<int>("code");
    QTest::addColumn<QStringList>("out");
    QTest::addColumn<QString>("err");

    const QStringList clean{u"1 file checked: 0 errors, 0 warnings"_s};
    const QStringList repository{u"--repository"_s, u"r"_s};
    // Short documents lack what every writer writes.
    const QStringList brief{u"--no-rule=older-version"_s, u"--no-rule=missing-attribute"_s,
                            u"--no-rule=missing-element"_s};
    const QString sDefault = QString::fromLatin1(s_default);
    const QByteArray bare =
        "<Scenario FileFormatVersion='4'><Emitter ID='e\x7f' Name='x&#10;y'><Class>Boat</Class>"
        "<Frequency/></Emitter>";

    const QString sNote = u"a.sce:11:5: note: [range-beyond-bandwidth] a (Pulses): The frequencies cover "
                          "1e+06 Hz, the signal package \"%1\" 10000 Hz: the signal is moved through the "
                          "range and does not fill it."_s.arg(sDefault);
    QTest::newRow("clean but for a note")
        << repaired(document()) << repository << 0
        << QStringList{sNote, u"1 file checked: 0 errors, 0 warnings, 1 note"_s} << QString();
    QTest::newRow("packages without a repository") << document() << QStringList() << 0 << clean << QString();
    const QString sUnknown =
        u"a.sce:11:5: error: [invalid-signal-package] a (Pulses): 1 emission, at 0 ms, uses the signal "
        "package \"p-1\", which the provider does not know: it gets the default package \"%1\"."_s.arg(
            sDefault);
    const QString sUnnamed = u"a.sce:50:5: error: [invalid-signal-package] c (Net): 1 emission, at "
                             "-9223372036854775808 ms, has no signal package: it gets the default package "
                             "\"%1\"."_s.arg(sDefault);
    QTest::newRow("packages") << document() << repository << 1
                              << QStringList{sUnknown, sNote, sUnnamed,
                                             u"1 file checked: 2 errors, 0 warnings, 1 note"_s}
                              << QString();
    QTest::newRow("known class") << document() << QStringList{u"--class=Radar"_s, u"--class="_s} << 0 << clean
                                 << QString();
    // The missing settings are the reader's missing-element, not a finding of their own.
    QTest::newRow("unknown class, no settings, control characters")
        << bare + "</Scenario>"
        << QStringList{u"--class=Radar"_s, u"--rule=invalid-class"_s, u"--rule=missing-settings"_s} << 1
        << QStringList{u"a.sce:1:33: warning: [invalid-class] e\\u{7f} (x\\ny): The class \"Boat\" is not "
                       "known: it stays as it is."_s,
                       u"1 file checked: 0 errors, 1 warning"_s}
        << QString();
    const QString sTwice = u"a.sce:1:%1: error: [duplicate-id] \"a\": An earlier element has this id: both "
                           "are read as one object, and the values of this element replace the earlier "
                           "ones."_s;
    QTest::newRow("an id three times")
        << QByteArray("<Scenario><Emitter ID='a'/><ElintEmitter ID='a'/>"
                      "<Network ID='a'><Emitter>a</Emitter></Network>"
                      "<Emitter ID='a' Name='A'/></Scenario>")
        << brief << 1
        << QStringList{sTwice.arg(42), sTwice.arg(105), u"1 file checked: 2 errors, 0 warnings"_s}
        << QString();
    const QString sSkipped =
        u"The element is not known here: it is skipped with its content. Did you mean "_s;
    QTest::newRow("misspelt, with a comment")
        << QByteArray(
               "<Scenario><!-- mine --><Emitter ID='a' Colour='red'><Clas>x</Clas></Emitter></Scenario>")
        << brief << 1
        << QStringList{u"a.sce:1:40: error: [unknown-attribute] \"Colour\": The attribute is not known here: "
                       "its value is ignored."_s,
                       u"a.sce:1:53: error: [unknown-element] \"Clas\": "_s + sSkipped + u"\"Class\"?"_s,
                       u"1 file checked: 2 errors, 0 warnings"_s}
        << QString();
    QTest::newRow("deployment with a level too many")
        << QByteArray("<SimulationDeployment FileFormatVersion='1'><Stations><Station ID='s' Name='S'/>"
                      "</Stations></SimulationDeployment>")
        << brief << 1
        << QStringList{u"a.sce:1:45: error: [unknown-element] \"Stations\": "_s + sSkipped +
                           u"\"Station\"?"_s,
                       u"1 file checked: 1 error, 0 warnings"_s}
        << QString();
    // Both the reader and the check of the objects find this position; it is reported once.
    QTest::newRow("emitter at no place, and one that follows it")
        << QByteArray("<Scenario><Emitter ID='a'><Position><Fixed><Lon>999</Lon></Fixed></Position></Emitter>"
                      "<Emitter ID='b' LinkTarget='a'/></Scenario>")
        << brief << 1
        << QStringList{u"a.sce:1:49: warning: [out-of-range] a: \"999\": The value should be from -180 to "
                       u"180 "
                       "degrees: it is taken as it is."_s,
                       u"1 file checked: 0 errors, 1 warning"_s}
        << QString();
    QTest::newRow("broken off")
        << bare << QStringList{u"--rule=broken-off"_s} << 1
        << QStringList{u"a.sce:1:106: error: [broken-off] The document breaks off; what "
                       "stands before is kept: Premature end of document."_s,
                       u"1 file checked: 1 error, 0 warnings"_s}
        << QString();
    const QString sNothing = u"0 files checked, 1 not readable: %1 errors, 0 warnings"_s;
    QTest::newRow("other document")
        << QByteArray("<Other/>") << QStringList() << 2
        << QStringList{u"a.sce:1:1: error: [other-root] \"Other\": The root element is not \"Scenario\": "
                       "nothing is read."_s,
                       u"0 files checked, 1 not readable: 1 error, 0 warnings"_s}
        << QString();
    QTest::newRow("other document, rule not selected")
        << QByteArray("<Other/>") << QStringList{u"--no-rule=other-root"_s} << 2
        << QStringList{sNothing.arg(0)} << u"a.sce: cannot be read as a scenario: line 1, column 8: "_s;
    QTest::newRow("descriptor")
        << QByteArray("<SignalPackage FileFormatVersion='0'><ID>p</ID></SignalPackage>")
        << QStringList{u"--rule=unknown-element"_s} << 1
        << QStringList{u"a.sce:1:38: error: [unknown-element] \"ID\": The element is not known here: it is "
                       "skipped with its content."_s,
                       u"1 file checked: 1 error, 0 warnings"_s}
        << QString();
    QTest::newRow("descriptor that breaks off")
        << QByteArray("<SignalPackage><") << QStringList() << 2
        << QStringList{u"a.sce:1:17: error: [broken-off] Nothing is read: a name is "
                       "missing or malformed."_s,
                       u"0 files checked, 1 not readable: 1 error, 0 warnings"_s}
        << QString();
    QTest::newRow("compact form that breaks off")
        << QByteArray("\0\0\0\1\0\0\0\4\0e\0", 11) << QStringList() << 1
        << QStringList{u"a.sce: error: [broken-off] The compact form is not whole: broken off: record 1 of "
                       u"1, "
                       "id: the stream ends."_s,
                       u"1 file checked: 1 error, 0 warnings"_s}
        << QString();
    QTest::newRow("several files") << repaired(document())
                                   << QStringList{u"none"_s, u"empty"_s, u"a.sce"_s} + repository << 2
                                   << QStringList{sNote, sNote,
                                                  u"2 files checked, 2 not readable: 0 errors, 0 warnings, 2 "
                                                  "notes"_s}
                                   << u"No such file"_s;
    QTest::newRow("several files to repair") << document() << QStringList{u"b"_s, u"--repair"_s, u"c"_s} << 2
                                             << QStringList() << u"--repair needs one PATH, 2 given"_s;
    QTest::newRow("no repository") << document() << QStringList{u"--repository"_s, u"none"_s} << 2
                                   << QStringList() << u"simulationtool: none: "_s;
    QTest::newRow("repository without packages")
        << document() << QStringList{u"--repository"_s, u"empty"_s} << 2 << QStringList()
        << u"simulationtool: empty: holds no signal packages\n"_s;
    QTest::newRow("no file name") << document() << QStringList{u""_s} << 2 << QStringList()
                                  << u"a PATH is needed"_s;
}

void TestCheck::file()
{
    QFETCH(QByteArray, content);
    QFETCH(QStringList, options);
    QFETCH(int, code);
    QFETCH(QStringList, out);
    QFETCH(QString, err);
    QVERIFY(write(u"a.sce"_s, content));
    const ToolResult result = check(QStringList{u"a.sce"_s} + options);
    QCOMPARE(simplifiedLines(result.out), out);
    QVERIFY2(err.isEmpty() ? result.err.isEmpty() : result.err.contains(err), qPrintable(result.err));
    QCOMPARE(result.code, code);
    QCOMPARE(contentOf(path(u"a.sce"_s)), content);
}

void TestCheck::deployment_data()
{
    QTest::addColumn<QByteArray>("content"); ///< the root element's content
    QTest::addColumn<QStringList>("findings");

    const QByteArray station = "<Station ID='s'><Position><Fixed><Lon>180</Lon><Lat>-90</Lat></Fixed>"
                               "</Position></Station>";
    const QByteArray device = "<Device ID='d' Name='D'><Station>s</Station></Device>";
    const QString sTwice = u"d.xml:1:%1: error: [duplicate-id] \"%2\": An earlier element has this id: both "
                           "are read as one object, and the values of this element replace the earlier "
                           "ones."_s;
    QTest::newRow("in order") << station + device << QStringList();
    QTest::newRow("no station")
        << QByteArray("<Device ID='d' Name='D'/>")
        << QStringList{u"d.xml:1:45: error: [device-without-station] d (D): The device has neither a station "
                       "nor a position of its own: give it one of them."_s};
    QTest::newRow("ids twice") << station + device + device + station
                               << QStringList{sTwice.arg(u"196"_s, u"d"_s), sTwice.arg(u"250"_s, u"s"_s)};
}

void TestCheck::deployment()
{
    QFETCH(QByteArray, content);
    QFETCH(QStringList, findings);
    const QByteArray root = "<SimulationDeployment FileFormatVersion='1'>";
    const auto checked = [this](const QByteArray& a_document) {
        if (!write(u"d.xml"_s, a_document)) {
            return QStringList();
        }
        const ToolResult result =
            check({u"d.xml"_s, u"--no-rule=missing-element"_s, u"--no-rule=missing-attribute"_s});
        QStringList lines = simplifiedLines(result.out);
        lines.removeLast();
        lines.append(QString::number(result.code));
        return lines;
    };
    const QString sCode = findings.isEmpty() ? u"0"_s : u"1"_s;
    QCOMPARE(checked(root + content + "</SimulationDeployment>"), findings + QStringList{sCode});
    // A document of a newer version that breaks off has two findings more.
    const QStringList broken = checked(QByteArray(root).replace("'1'", "'2'") + content);
    QCOMPARE(broken.size(), findings.size() + 3);
    QVERIFY(broken.at(0).startsWith(u"d.xml:1:23: error: [newer-version] \"2\": "));
    QCOMPARE(broken.mid(1, findings.size()), findings);
    QVERIFY(broken.at(findings.size() + 1).contains(u": error: [broken-off] "));
    QCOMPARE(broken.constLast(), u"1"_s);
}

/// An error in the list of packages is also a finding for the scenarios that use the
/// package.
void TestCheck::damagedPackage()
{
    QVERIFY(write(u"a.sce"_s, repaired(document())));
    QCOMPARE(runTool({u"repository"_s, u"init"_s, path(u"bad"_s)}).code, 0);
    const QString sShape = u"bad/SignalPackages/TuK-Default/Rect 10kHz/Signal.ssf"_s;
    const QByteArray shape = contentOf(path(sShape));
    QCOMPARE(check({u"a.sce"_s, u"--repository"_s, u"bad"_s}).code, 0);
    for (const QByteArray& bytes : {shape.chopped(7), shape + "x", shape.left(9)}) {
        QVERIFY(write(sShape, bytes));
        const QString sListed =
            simplifiedLines(runTool({u"repository"_s, u"list"_s, path(u"bad"_s)}).out).value(4);
        const QString sError = sListed.mid(sListed.indexOf(u"Signal.ssf"));
        const ToolResult result = check({u"a.sce"_s, u"--repository"_s, u"bad"_s});
        const QStringList damaged = simplifiedLines(result.out).filter(u"[damaged-package]"_s);
        QCOMPARE(damaged.value(0).section(u": "_s, 3),
                 u"The signal package \"%1\" is damaged: %2. Put a whole one into the repository."_s.arg(
                     QString::fromLatin1(s_known), sError));
        QCOMPARE(result.code, 1);
    }
}

/// The former content is saved before the file is replaced. If it cannot be saved, the
/// file is not replaced.
void TestCheck::forceKeepsFormerFile()
{
    const QByteArray former = "<Scenario><Emitter ID='a'/><!-- mine --><Future/></Scenario>";
    QVERIFY(write(u"f.sce"_s, former));
    const QStringList arguments{u"f.sce"_s, u"--repair"_s, u"f.sce"_s, u"--force"_s};
    QCOMPARE(check(arguments).code, 1);
    QCOMPARE(contentOf(path(u"f.sce~"_s)), former);
    QVERIFY(contentOf(path(u"f.sce"_s)).contains("FileFormatVersion=\"4\""));
    // The second repair loses no content, so the saved copy does not change.
    QCOMPARE(check(arguments).code, 0);
    QCOMPARE(contentOf(path(u"f.sce~"_s)), former);
    QVERIFY(write(u"f.sce"_s, former));
    const ToolResult result = check(arguments);
    QCOMPARE(result.code, 2);
    QVERIFY2(result.err.contains(u"f.sce~: exists already"), qPrintable(result.err));
    QCOMPARE(contentOf(path(u"f.sce"_s)), former);
}

/// Standard input redirected from a file is recognised as that file.
void TestCheck::redirectedInput()
{
    const QByteArray cut = "<Scenario><Emitter ID='a'/>";
    QVERIFY(write(u"i.sce"_s, cut));
    QProcess process;
    process.setStandardInputFile(path(u"i.sce"_s));
    process.start(QStringLiteral(SIMULATIONTOOL_PATH), {u"check"_s, u"-"_s, u"--repair"_s, path(u"i.sce"_s)});
    QVERIFY(process.waitForFinished(s_iToolTimeout));
    QCOMPARE(process.exitCode(), 2);
    QVERIFY(process.readAllStandardError().contains("standard input: not replaced"));
    QCOMPARE(contentOf(path(u"i.sce"_s)), cut);
}

void TestCheck::progress_data()
{
    QTest::addColumn<bool>("terminal");
    QTest::addColumn<bool>("play");
    QTest::newRow("terminal") << true << false;
    QTest::newRow("play into a file") << true << true;
    QTest::newRow("file") << false << false;
}

/// A progress line is shown on a terminal after one second, and erased at the end.
void TestCheck::progress()
{
    QFETCH(bool, terminal);
    QFETCH(bool, play);
    const int iMaster = ::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK);
    QVERIFY(iMaster >= 0 && ::grantpt(iMaster) == 0 && ::unlockpt(iMaster) == 0);
    const QString sTerminal = QString::fromLocal8Bit(::ptsname(iMaster));
    // The open terminal keeps the output of the ended process.
    const int iSlave = ::open(sTerminal.toLocal8Bit().constData(), O_RDWR | O_NOCTTY);
    QProcess process;
    process.setStandardErrorFile(terminal ? sTerminal : path(u"errors"_s));
    // Two long commands: a check that waits for its input, and a play that takes hours.
    const QStringList days{u"play"_s, u"--to"_s, u"1193h"_s, u"--csv"_s, path(u"rows.csv"_s)};
    process.start(QStringLiteral(SIMULATIONTOOL_PATH),
                  play ? days : QStringList{u"check"_s, u"-"_s, u"--rule=broken-off"_s});
    QVERIFY(!process.waitForFinished(2500));
    process.write("<Scenario FileFormatVersion='4'/>");
    process.closeWriteChannel();
    if (play) {
        process.terminate();
    }
    QVERIFY(process.waitForFinished(s_iToolTimeout));
    QByteArray shown;
    const auto isErased = [&] { // a terminal passes output on with a delay
        char part[4096];
        const ssize_t iRead = ::read(iMaster, part, sizeof(part));
        shown.append(part, std::max<ssize_t>(0, iRead));
        return shown.endsWith("\r\033[K");
    };
    QTRY_COMPARE(isErased(), terminal);
    ::close(iSlave);
    ::close(iMaster);
    QCOMPARE(shown.contains("checking standard input, 1 s"), terminal && !play);
    QCOMPARE(shown.contains(" of 4294800000 ms, 1 s"), play);
    QCOMPARE(contentOf(path(u"errors"_s)), terminal ? "cannot be read" : QByteArray());
    QCOMPARE(process.readAllStandardOutput(),
             play ? "" : QByteArray("1 file checked: 0 errors, 0 warnings\n"));
}

void TestCheck::repair_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QByteArray>("written");
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("err");

    const QByteArray whole = document();
    const QByteArray cut = whole.left(whole.indexOf("<Network"));
    QTest::newRow("another file") << whole << repaired(whole) << u"out.sce"_s << 1 << QString();
    QTest::newRow("the same file") << whole << repaired(whole) << u"a.sce"_s << 1 << QString();
    QTest::newRow("a link to it") << whole << repaired(whole) << u"link.sce"_s << 1 << QString();
    QTest::newRow("nothing found") << repaired(whole) << repaired(whole) << u"out.sce"_s << 0 << QString();
    QTest::newRow("broken off") << cut << repaired(cut.trimmed() + "\n</Scenario>\n") << u"out.sce"_s << 1
                                << QString();
    const QString sLost =
        u"check: a.sce: not replaced, because it would lose %1: give --repair another file, or add "
        "--force, which keeps the former file, \"~\" added to its name"_s;
    const QString sRest = u"what follows the place where it broke off"_s;
    QTest::newRow("the same file, broken off") << cut << cut << u"a.sce"_s << 2 << sLost.arg(sRest);
    QTest::newRow("a link to it, broken off") << cut << cut << u"link.sce"_s << 2 << sLost.arg(sRest);
    const QByteArray twice = "<Scenario><Emitter ID='a' Name='1'/><Emitter ID='a'/></Scenario>";
    QTest::newRow("the same file, an id twice")
        << twice << twice << u"a.sce"_s << 2 << sLost.arg(u"all but one of several emitters with one id"_s);
    const auto addLoss = [&](const char* a_szRow, const char* a_szFrom, const char* a_szTo,
                             const QString& a_sLoss) {
        const QByteArray holds = QByteArray(whole).replace(a_szFrom, a_szTo);
        QVERIFY(holds != whole);
        QTest::newRow(a_szRow) << holds << holds << u"a.sce"_s << 2 << sLost.arg(a_sLoss);
    };
    addLoss("unknown element", "<NoiseSettings>", "<Future><a/><b c='d'/></Future><NoiseSettings>",
            u"4 parts, first of them element \"Future\" (1), element \"a\" (1), element \"b\" (1)"_s);
    addLoss("unknown attribute", "<NoiseSettings>", "<NoiseSettings Unit='dB'>",
            u"attribute \"Unit\" of \"NoiseSettings\" (1)"_s);
    addLoss("comments", "<NoiseSettings>", "<!-- 1 --><NoiseSettings><!-- 2 -->", u"comment (2)"_s);
    addLoss("element given twice", "<Transmitter>", "<Class>x</Class><Transmitter>",
            u"element \"Class\" (1), element \"Class\" (1), element \"Class\" (1)"_s);
    addLoss("emitter without an id", "<Network ", "<Emitter Name='x'/><Network ",
            u"element \"Emitter\" (1), attribute \"Name\" of \"Emitter\" (1)"_s);
    QTest::newRow("timing of an older format")
        << QByteArray("<Scenario Description='d'><Emitter ID='a'>"
                      "<Timing><Contious/></Timing></Emitter></Scenario>")
        << QByteArray() << u"a.sce"_s << 1 << QString();
    const QByteArray nothing = "cannot be read";
    QTest::newRow("in no folder") << whole << nothing << u"none/out.sce"_s << 2
                                  << u"none/out.sce: No such file or directory"_s;
    QTest::newRow("a folder") << whole << nothing << u"r"_s << 2 << u"r: is a folder"_s;
}

/// The repair changes only the values to which the findings refer. Every other byte stays
/// the same.
void TestCheck::repair()
{
    QFETCH(QByteArray, content);
    QFETCH(QByteArray, written);
    QFETCH(QString, file);
    QFETCH(int, code);
    QFETCH(QString, err);
    QVERIFY(write(u"a.sce"_s, content));
    QFile::link(path(u"a.sce"_s), path(u"link.sce"_s));
    const ToolResult result = check({u"a.sce"_s, u"--repository"_s, u"r"_s, u"--repair"_s, file});
    QCOMPARE(result.code, code);
    QCOMPARE(simplifiedLines(result.err).join(u'|'), err.isEmpty() ? err : u"simulationtool: "_s + err);
    QCOMPARE(result.out.endsWith(u" repaired, written to "_s + file + u'\n'), code != 2);
    QVERIFY(written.isEmpty() || contentOf(path(file)) == written);
    QVERIFY(file == u"a.sce" || file == u"link.sce" || contentOf(path(u"a.sce"_s)) == content);
    QVERIFY(QFileInfo(path(u"link.sce"_s)).isSymLink());
    QVERIFY(code == 2 || check({file, u"--repository"_s, u"r"_s}).code == 0);
}

/// The findings exceed the buffer of the output pipe, so the check waits until the pipe
/// is read.
void TestCheck::cleansUp()
{
    QVERIFY(write(u"a.sce"_s, document()));
    QVERIFY(QDir().mkpath(path(u"tmp"_s)));
    qputenv("TMPDIR", path(u"tmp"_s).toLocal8Bit());
    QProcess process;
    process.start(QStringLiteral(SIMULATIONTOOL_PATH),
                  QStringList{u"check"_s, u"--repository"_s, path(u"r"_s)} +
                      QStringList(1000, path(u"a.sce"_s)));
    qunsetenv("TMPDIR");
    QVERIFY(process.waitForReadyRead(s_iToolTimeout));
    QVERIFY(!QDir(path(u"tmp"_s)).isEmpty());
    QCOMPARE(::kill(static_cast<pid_t>(process.processId()), SIGTERM), 0);
    QVERIFY(process.waitForFinished(s_iToolTimeout));
    QCOMPARE(process.exitStatus(), QProcess::CrashExit);
    QCOMPARE(process.exitCode(), SIGTERM);
    QVERIFY(QDir(path(u"tmp"_s)).isEmpty());
}

QTEST_GUILESS_MAIN(TestCheck)

#include "tst_check.moc"
