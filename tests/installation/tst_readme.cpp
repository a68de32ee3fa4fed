#include <QDir>
#include <QFile>
#include <QMap>
#include <QProcess>
#include <QRegularExpression>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <memory>
#include <vector>

namespace {

constexpr int s_iCommandTimeout = 240'000; ///< ms; an instrumented build of the programs is slow
constexpr int s_iOutputTimeout = 60'000;   ///< ms

/// The way in which the test runs a command of README.md.
enum class Way {
    Foreground,
    Background, ///< runs until the test ends
    Environment,
    Script, ///< not run, because the script changes the source folder
    Preset, ///< not run, because the command rebuilds the library
};

struct Expectation
{
    Way way = Way::Foreground;
    int code = 0;
    const char* szOutput = "."; ///< regular expression for the output
};

/// The commands that need more than the default check. The default check runs a command
/// and expects some output and the exit code 0. A command of another program than
/// simulationtool, monitor or cmake always needs an entry here.
const QMap<QString, Expectation> s_expectations{
    {QStringLiteral("./scripts/demo.sh"), {Way::Script}},
    {QStringLiteral("./scripts/test.sh"), {Way::Script}},
    {QStringLiteral("./scripts/setup.sh build"), {Way::Script}},
    {QStringLiteral("cmake --preset release"), {Way::Preset}},
    {QStringLiteral("cmake --build --preset release"), {Way::Preset}},
    {QStringLiteral("export PATH=~/simulation/bin:$PATH"), {Way::Environment}},
    {QStringLiteral("build/author"), {Way::Foreground, 0, "^harbour.sce.exp: saved$"}},
    {QStringLiteral("build/play"),
     {Way::Foreground, 0,
      "boat-7: 1 emission, at 2000 ms, has no signal package: (.|\n)*"
      "Pilot boat sends on 156.8 MHz, level [1-9]"}},
    {QStringLiteral("simulationtool service"), {Way::Background, 0, "Listening on port"}},
    {QStringLiteral("build/receiver"), {Way::Background, 0, "registered rx-7(.|\n)*received Harbour"}},
    {QStringLiteral("build/editor"), {Way::Foreground, 0, "registered: Pier(.|\n)*loaded by rx-7"}},
    {QStringLiteral("simulationtool schema scenario scenario.xsd"), {Way::Foreground, 0, "^$"}},
    {QStringLiteral("simulationtool new scenario my.sce.exp"), {Way::Foreground, 0, "^$"}},
    {QStringLiteral("simulationtool new deployment my.deployment"), {Way::Foreground, 0, "^$"}},
    {QStringLiteral("simulationtool new package packages/SignalPackages/Voice --wave "
                    "packages/SignalPackages/TuK-Default/Default/Signal.wav --modulation AM"),
     {Way::Foreground, 0, "^Signal package made$"}},
    {QStringLiteral("simulationtool inspect --json - < harbour.sce.exp"),
     {Way::Foreground, 0, "\"verdict\": \"whole\""}},
    {QStringLiteral("simulationtool check harbour.sce.exp --repository packages --repair mended.sce.exp"),
     {Way::Foreground, 1, "1 error, 0 warnings, 1 repaired"}},
    {QStringLiteral(
         "simulationtool check harbour.sce.exp --repository packages --repair harbour.sce.exp --force"),
     {Way::Foreground, 1, "1 error, 0 warnings, 1 repaired, written to harbour.sce.exp$"}},
    {QStringLiteral("simulationtool play mended.sce.exp --repository packages --csv harbour.csv"),
     {Way::Foreground, 0, ""}},
    {QStringLiteral(
         "simulationtool play mended.sce.exp --from 2s --to 0.1min --step 500ms --emitter boat-7 --csv -"),
     {Way::Foreground, 0, "^2500,boat-7,true,(.|\n)*^5500,boat-7,true,.*\n$"}},
    {QStringLiteral("simulationtool device --id rx-1 --type Receiver --station pier --longitude 9.95 "
                    "--latitude 53.54 --repository packages"),
     {Way::Background, 0, "scenario .Harbour."}},
    {QStringLiteral("simulationtool control devices"),
     {Way::Foreground, 0, "rx-1 .* Receiver +pier .* 9.95 +53.54\n(.|\n)*rx-7 +Pier"}},
    {QStringLiteral("simulationtool control watch"), {Way::Background, 0, "rx-1: loaded, .*stopped"}},
    {QStringLiteral("simulationtool control load mended.sce.exp"),
     {Way::Foreground, 0, "loaded by 2 of 2 devices"}},
    {QStringLiteral("simulationtool control start 2s"), // the example receiver does not answer a start
     {Way::Foreground, 1, "rx-1 .*plays from 2000 ms(.|\n)*confirmed by 1 of 2 devices"}},
    {QStringLiteral("simulationtool control pause"),
     {Way::Foreground, 0, "Pause at [0-9]+ ms sent to 2 devices"}},
};

/// The files that README.md contains. The first line of each file gives its name.
const QStringList s_files{QStringLiteral("CMakeLists.txt"), QStringLiteral("author.cpp"),
                          QStringLiteral("play.cpp"), QStringLiteral("receiver.cpp"),
                          QStringLiteral("editor.cpp")};

/// A file or command of README.md.
struct Item
{
    int iLine = 0;
    QString sFile; ///< empty for a command
    QString sText;
};

QString readmeText()
{
    QFile file(QStringLiteral(SOURCE_DIR "/README.md"));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

/// Returns all items of README.md in their order: files, the lines of shell blocks, and
/// the programs' commands in the text.
QList<Item> readmeItems()
{
    static const QRegularExpression fenceOrSpan(
        QStringLiteral("^```(\\w*)\n(.*?)^```$|`((?:simulationtool|monitor) [^`\n]+)`"),
        QRegularExpression::MultilineOption | QRegularExpression::DotMatchesEverythingOption);
    static const QRegularExpression comment(QStringLiteral(" +#.*$"));
    static const QRegularExpression name(QStringLiteral("^(?://|#) ([^:\n]+):"));
    const QString sReadme = readmeText();
    QList<Item> items;
    auto matches = fenceOrSpan.globalMatch(sReadme);
    while (matches.hasNext()) {
        const auto match = matches.next();
        int iLine = static_cast<int>(sReadme.left(match.capturedStart()).count(u'\n')) + 1;
        if (match.hasCaptured(3)) {
            items.append({iLine, {}, match.captured(3)});
        } else if (match.captured(1) == u"sh") {
            for (QString sCommand : match.captured(2).split(u'\n', Qt::SkipEmptyParts)) {
                items.append({++iLine, {}, sCommand.remove(comment)});
            }
        } else {
            const QString sName = name.match(match.captured(2)).captured(1);
            items.append({iLine, sName.isEmpty() ? QStringLiteral("unnamed") : sName, match.captured(2)});
        }
    }
    return items;
}

} // namespace

/// Follows README.md from beginning to end, as a new user would. Installs into a
/// temporary home folder and runs the commands in a new folder below the home folder.
class TestReadme : public QObject
{
    Q_OBJECT

private:
    struct Background
    {
        std::unique_ptr<QProcess> process;
        QString sText;
    };

    [[nodiscard]] QString workFolder() const { return m_home.filePath(QStringLiteral("harbour")); }

    /// A shell that runs a command and ends with its exit code.
    [[nodiscard]] std::unique_ptr<QProcess> shell(const QString& a_sCommand) const
    {
        auto process = std::make_unique<QProcess>();
        process->setWorkingDirectory(workFolder());
        process->setProcessEnvironment(m_environment);
        process->setProcessChannelMode(QProcess::MergedChannels);
        process->start(QStringLiteral("bash"), {QStringLiteral("-c"), m_sExports + a_sCommand});
        return process;
    }

    void runForeground(const QString& a_sCommand, const Expectation& a_expectation) const
    {
        // The command installs the build under test instead of "build/release".
        QString sHere = a_sCommand;
        sHere.replace(QStringLiteral("--install build/release"), QStringLiteral("--install '" BUILD_DIR "'"));
        const auto process = shell(sHere);
        const bool bFinished = process->waitForFinished(s_iCommandTimeout);
        const QString sOutput = QString::fromUtf8(process->readAll());
        QVERIFY2(bFinished && process->exitStatus() == QProcess::NormalExit, qPrintable(sOutput));
        QVERIFY2(process->exitCode() == a_expectation.code,
                 qPrintable(QStringLiteral("code %1: %2").arg(process->exitCode()).arg(sOutput)));
        QVERIFY2(isExpected(sOutput, a_expectation), qPrintable(sOutput));
    }

    static bool isExpected(const QString& a_sOutput, const Expectation& a_expectation)
    {
        const QRegularExpression expected(QLatin1String(a_expectation.szOutput),
                                          QRegularExpression::MultilineOption);
        return expected.match(a_sOutput).hasMatch();
    }

    /// Starts a background program, unless it runs already, and waits for its first
    /// line.
    void runBackground(const QString& a_sCommand)
    {
        if (m_background.contains(a_sCommand)) {
            return;
        }
        Background& started = m_background[a_sCommand];
        started.process = shell(QStringLiteral("exec ") + a_sCommand);
        QVERIFY(QTest::qWaitFor(
            [&] {
                started.sText += QString::fromUtf8(started.process->readAll());
                return started.sText.contains(u'\n');
            },
            s_iOutputTimeout));
    }

    QTemporaryDir m_home;
    QProcessEnvironment m_environment = QProcessEnvironment::systemEnvironment();
    QString m_sExports; ///< export commands of README.md so far
    std::map<QString, Background> m_background;

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_home.isValid() && QDir().mkpath(workFolder()));
        // The settings contain a free port, because the default port may be in use.
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        QFile settings(m_home.filePath(QStringLiteral("Simulation.ini")));
        QVERIFY(settings.open(QIODevice::WriteOnly));
        settings.write("[Ports]\nSimulationService=" + QByteArray::number(server.serverPort()) + '\n');
        m_environment.insert(QStringLiteral("HOME"), m_home.path());
        m_environment.insert(QStringLiteral("SIMULATION_CONFIG_DIR"), m_home.path());
        m_environment.insert(QStringLiteral("CXXFLAGS"), QStringLiteral(COMPILER_FLAGS));
        m_environment.insert(QStringLiteral("CMAKE_BUILD_PARALLEL_LEVEL"), QStringLiteral("2"));
        m_environment.remove(QStringLiteral("LD_LIBRARY_PATH"));
        m_environment.remove(QStringLiteral("DESTDIR"));
    }

    void readme_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("text");
        for (const Item& item : readmeItems()) {
            QTest::addRow("line %d: %s", item.iLine,
                          qPrintable(item.sFile.isEmpty() ? item.sText : item.sFile))
                << item.sFile << item.sText;
        }
    }
    void readme()
    {
        QFETCH(const QString, file);
        QFETCH(QString, text);
        if (!file.isEmpty()) {
            QVERIFY2(s_files.contains(file), "README.md has a file that this test does not run: add it");
            QFile made(workFolder() + u'/' + file);
            QVERIFY(made.open(QIODevice::WriteOnly | QIODevice::NewOnly) && made.write(text.toUtf8()) > 0);
            return;
        }
        if (text.endsWith(QStringLiteral(" &"))) {
            text.chop(2);
        }
        const bool bKnown =
            s_expectations.contains(text) || text.startsWith(QStringLiteral("simulationtool ")) ||
            text.startsWith(QStringLiteral("monitor ")) || text.startsWith(QStringLiteral("cmake "));
        QVERIFY2(bKnown, "README.md has a command that this test does not know: add what it gives");
        const Expectation expectation = s_expectations.value(text);
        switch (expectation.way) {
        case Way::Foreground:
            return runForeground(text, expectation);
        case Way::Background:
            return runBackground(text);
        case Way::Environment:
            m_sExports += text + u'\n';
            return;
        case Way::Script:
            QVERIFY(QFileInfo(QStringLiteral(SOURCE_DIR "/") + text.section(u' ', 0, 0)).isExecutable());
            return;
        case Way::Preset:
            QProcess presets;
            presets.setWorkingDirectory(QStringLiteral(SOURCE_DIR));
            presets.start(QStringLiteral("bash"),
                          {QStringLiteral("-c"),
                           text.section(u' ', 0, -2)
                               .replace(QStringLiteral("--preset"), QStringLiteral("--list-presets"))});
            QVERIFY(presets.waitForFinished());
            QVERIFY(presets.readAll().contains('"' + text.section(u' ', -1).toUtf8() + '"'));
        }
    }

    /// The background programs have printed the effects of the other commands. An
    /// interrupt signal ends each background program.
    void background()
    {
        QCOMPARE(m_background.size(), 4U);
        for (auto& [command, started] : m_background) {
            const Expectation expectation = s_expectations.value(command);
            const bool bExpected = QTest::qWaitFor(
                [&text = started.sText, &process = *started.process, &expectation] {
                    text += QString::fromUtf8(process.readAll());
                    return isExpected(text, expectation);
                },
                s_iOutputTimeout);
            QVERIFY2(bExpected, qPrintable(started.sText));
            QCOMPARE(started.process->state(), QProcess::Running);
            ::kill(static_cast<pid_t>(started.process->processId()), SIGINT);
            QVERIFY(started.process->waitForFinished(s_iOutputTimeout));
        }
    }

    /// Every entry of s_files and s_expectations is still in README.md.
    void expectations()
    {
        QStringList seen;
        for (const Item& item : readmeItems()) {
            seen += item.sFile.isEmpty() ? QString(item.sText).remove(QStringLiteral(" &")) : item.sFile;
        }
        for (const QString& expected : s_files + s_expectations.keys()) {
            QVERIFY2(seen.contains(expected), qPrintable(expected));
        }
        // A command of README.md has removed the installation.
        QVERIFY(!QFileInfo::exists(m_home.filePath(QStringLiteral("simulation"))));
    }
};

QTEST_GUILESS_MAIN(TestReadme)
#include "tst_readme.moc"
