#include "simulationtool/toolrun.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

using namespace Qt::StringLiterals;

namespace {

const QByteArray s_known = "b696e61d-dcae-42b4-b794-4a4adb8476c0";
const QByteArray s_default = "c0d40372-37c8-4ad4-9fb1-97bfc477769c";

QByteArray contentOf(const QString& a_sFile)
{
    QFile file(a_sFile);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("cannot be read");
}

/// The reference document, one of whose three emissions names a known package.
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

class tst_Check : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void file_data();
    void file();
    void repair_data();
    void repair();
    void cleansUp();

private:
    [[nodiscard]] QString path(const QString& a_sName) const { return m_dir.filePath(a_sName); }
    [[nodiscard]] bool write(const QString& a_sName, const QByteArray& a_data) const
    {
        QFile file(path(a_sName));
        return file.open(QIODevice::WriteOnly) && file.write(a_data) == a_data.size();
    }
    /// Checks what stands in the folder; "r" there is a repository.
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

void tst_Check::initTestCase()
{
    QCOMPARE(runTool({u"repository"_s, u"init"_s, path(u"r"_s)}).code, 0);
    QVERIFY(QDir().mkpath(path(u"empty"_s)));
    QVERIFY(document().contains(s_known) && repaired(document()).count(s_default) == 2);
}

void tst_Check::file_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<int>("code");
    QTest::addColumn<QStringList>("out");
    QTest::addColumn<QString>("err");

    const QStringList clean{u"1 file checked: 0 findings"_s};
    const QStringList repository{u"--repository"_s, u"r"_s};
    const QString sUnnamed =
        u"a.sce: c (Net): 1 emission, at -9223372036854775808 ms, names no signal package: "
        "it gets the default package \""_s +
        QString::fromLatin1(s_default) + u"\". [invalid-signal-package]"_s;
    const QByteArray bare = "<Scenario Uid='u'><Emitter ID='e\x7f' Name='x&#10;y'><Class>Boat</Class>"
                            "<Frequency/></Emitter>";
    const QString sSettings = u"a.sce: e\\u{7f} (x\\ny): The frequency settings are missing: those of a new "
                              "object take their place. [missing-settings]"_s;

    QTest::newRow("clean") << repaired(document()) << repository << 0 << clean << QString();
    QTest::newRow("packages without a repository") << document() << QStringList() << 0 << clean << QString();
    const QString sUnknown =
        u"a.sce: a (Pulses): 1 emission, at 0 ms, uses the signal package \"p-1\", which the "
        "provider does not know: it gets the default package \"%1\". "
        "[invalid-signal-package]"_s.arg(QString::fromLatin1(s_default));
    QTest::newRow("packages") << document() << repository << 1
                              << QStringList{sUnknown, sUnnamed, u"1 file checked: 2 findings"_s}
                              << QString();
    QTest::newRow("known class") << document() << QStringList{u"--class=Radar"_s, u"--class="_s} << 0 << clean
                                 << QString();
    QTest::newRow("unknown class, no settings, control characters")
        << bare + "</Scenario>" << QStringList{u"--class=Radar"_s} << 1
        << QStringList{u"a.sce: e\\u{7f} (x\\ny): The class \"Boat\" is not known: it stays as it is. "
                       "[invalid-class]"_s,
                       sSettings, u"1 file checked: 2 findings"_s}
        << QString();
    QTest::newRow("an id three times")
        << QByteArray("<Scenario><Emitter ID='a'/><ElintEmitter ID='a'/><Network ID='a'/>"
                      "<Emitter ID='a' Name='A'/></Scenario>")
        << QStringList() << 1
        << QStringList{u"a.sce: a (A): 3 emitters of the document have this id: they were read as one "
                       "emitter. Give every emitter its own id. [duplicate-id]"_s,
                       u"1 file checked: 1 finding"_s}
        << QString();
    QTest::newRow("broken off")
        << bare << QStringList() << 1
        << QStringList{u"a.sce: broke off: line 1, column 91: Premature end of document. [broken-off]"_s,
                       sSettings, u"1 file checked: 2 findings"_s}
        << QString();
    const QStringList nothing{u"0 files checked, 1 not readable: 0 findings"_s};
    QTest::newRow("deployment") << QByteArray("<SimulationDeployment/>") << QStringList() << 2 << nothing
                                << u"the root element is \"SimulationDeployment\""_s;
    QTest::newRow("compact form") << QByteArray("\0\0\0\1\0\0\0\4\0e\0", 11) << QStringList() << 2 << nothing
                                  << u"a.sce: cannot be read as a scenario document"_s;
    QTest::newRow("several files") << repaired(document())
                                   << QStringList{u"none"_s, u"r"_s, u"a.sce"_s} + repository << 2
                                   << QStringList{u"2 files checked, 2 not readable: 0 findings"_s}
                                   << u"No such file"_s;
    QTest::newRow("several files to repair") << document() << QStringList{u"b"_s, u"--repair"_s, u"c"_s} << 2
                                             << QStringList() << u"--repair needs one FILE, 2 given"_s;
    QTest::newRow("no repository") << document() << QStringList{u"--repository"_s, u"none"_s} << 2
                                   << QStringList() << u"simulationtool: none: "_s;
    QTest::newRow("repository without packages")
        << document() << QStringList{u"--repository"_s, u"empty"_s} << 2 << QStringList()
        << u"simulationtool: empty: holds no signal packages\n"_s;
    QTest::newRow("no file name") << document() << QStringList{u""_s} << 2 << QStringList()
                                  << u"a FILE is needed"_s;
}

void tst_Check::file()
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

void tst_Check::repair_data()
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
        u"check: a.sce broke off, and what did not come through would be lost: give another --repair"_s;
    QTest::newRow("the same file, broken off") << cut << cut << u"a.sce"_s << 2 << sLost;
    QTest::newRow("a link to it, broken off") << cut << cut << u"link.sce"_s << 2 << sLost;
    const QByteArray twice = "<Scenario><Emitter ID='a' Name='1'/><Emitter ID='a'/></Scenario>";
    QTest::newRow("the same file, an id twice")
        << twice << twice << u"a.sce"_s << 2
        << u"check: a.sce holds several emitters of one id, and all but one of them would be lost: give "
           "another --repair"_s;
    const QByteArray nothing = "cannot be read";
    QTest::newRow("in no folder") << whole << nothing << u"none/out.sce"_s << 2
                                  << u"none/out.sce: No such file or directory"_s;
    QTest::newRow("a folder") << whole << nothing << u"r"_s << 2 << u"r: is a folder"_s;
}

/// Nothing but what was found changes, to the last byte.
void tst_Check::repair()
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
    QCOMPARE(contentOf(path(file)), written);
    QVERIFY(file == u"a.sce" || file == u"link.sce" || contentOf(path(u"a.sce"_s)) == content);
    QVERIFY(QFileInfo(path(u"link.sce"_s)).isSymLink());
    QVERIFY(code == 2 || check({file, u"--repository"_s, u"r"_s}).code == 0);
}

/// More findings than a pipe holds: the check waits for its reader.
void tst_Check::cleansUp()
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

QTEST_GUILESS_MAIN(tst_Check)

#include "tst_check.moc"
