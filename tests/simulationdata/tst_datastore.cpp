#include "simulationdata/datastorefactory.h"
#include "simulationdata/datastorefactory_paths_p.h"
#include "simulationdata/folderoperations.h"
#include "simulationdata/io/resourcearchive_p.h"
#include "simulationdata/signalpackagefolder.h"
#include "simulationdata/simulationlimits.h"
#include "tracecollector.h"

#include "velaappstartup/cfgcenter.h"
#include "velaappstartup/icfg.h"

#include <QApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <QTimer>

#include <memory>
#include <optional>

#include <sys/stat.h>

using namespace Simulation;

namespace {

QString u8(const char* a_szText)
{
    return QString::fromUtf8(a_szText);
}

QByteArray contents(const QString& a_sFile)
{
    QFile file(a_sFile);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("cannot be read");
}

/// All entries below a folder: links with the name of their target, files with
/// their size (bytes).
QStringList tree(const QString& a_sFolder)
{
    QStringList entries;
    QDirIterator it(a_sFolder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        it.next();
        const QFileInfo info = it.fileInfo();
        entries.append(QDir(a_sFolder).relativeFilePath(it.filePath()) +
                       (info.isSymLink() ? u8(" -> ") + QFileInfo(info.symLinkTarget()).fileName()
                        : info.isFile()  ? u8(" ") + QString::number(info.size())
                                         : QString()));
    }
    entries.sort();
    return entries;
}

} // namespace

class TestDataStore : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void removesFolders();
    void namesOfOtherEncodings();
    void copiesFolders();
    void refusesToCopy_data();
    void refusesToCopy();
    void packageFolder_data();
    void packageFolder();
    void noPackage();
    void listsPackages();
    void storePaths();
    void initializes();
    void initializesAgain();
    void defaultDataInTheWay();
    void cannotInitialize_data();
    void cannotInitialize();
    void messageOnlyOnItsThread();
    void unpacksWithinBounds();

private:
    [[nodiscard]] QString path(const char* a_szName) const { return m_folder->filePath(u8(a_szName)); }
    [[nodiscard]] bool make(const char* a_szName, const QByteArray& a_contents = "x") const;
    [[nodiscard]] ICfg* configuration(const QString& a_sRepository) const;

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<QTemporaryDir> m_settings;
    std::optional<TraceCollector> m_traces;
};

void TestDataStore::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    // Relative paths are resolved in this folder; an empty path would mean the folder
    // itself.
    QVERIFY(QDir::setCurrent(m_folder->path()));
    m_settings = std::make_unique<QTemporaryDir>();
    CfgCenter::SetFolder(m_settings->path());
    m_traces.emplace();
}

void TestDataStore::cleanup()
{
    m_traces.reset();
    QVERIFY(QDir::setCurrent(QDir::rootPath()));
}

/// Creates a file and its folders, or only a folder for a name that ends in a slash.
bool TestDataStore::make(const char* a_szName, const QByteArray& a_contents) const
{
    const QString sPath = path(a_szName);
    QFile file(sPath);
    return QDir().mkpath(QFileInfo(sPath).path()) &&
           (sPath.endsWith(u'/') ||
            (file.open(QIODevice::WriteOnly) && file.write(a_contents) == a_contents.size()));
}

ICfg* TestDataStore::configuration(const QString& a_sRepository) const
{
    QFile file(m_settings->filePath(u8("Test.ini")));
    if (file.open(QIODevice::WriteOnly)) {
        file.write("[FileSystem]\nRepository=" + a_sRepository.toUtf8() + '\n');
    }
    file.close();
    return CfgCenter::CreateCfg(u8("Test"), 4, QString());
}

void TestDataStore::removesFolders()
{
    QVERIFY(make("kept/file") && make("d/a/.hidden") && make("d/a/b/file") && make("d/empty/"));
    QVERIFY(QFile::link(path("kept"), path("d/folder")) && QFile::link(path("kept/file"), path("d/link")) &&
            QFile::link(path("nowhere"), path("d/broken")) && QFile::link(path("kept"), path("itself")));
    for (const char* const szFolder : {"d/", "d", "itself/", "kept/file", ""}) {
        QVERIFY2(removeDir(u8(szFolder)), szFolder);
    }
    QCOMPARE(tree(m_folder->path()), (QStringList{u8("kept"), u8("kept/file 1")}));
}

void TestDataStore::namesOfOtherEncodings()
{
    QVERIFY(make("from/plain"));
    const QByteArray foreign = QFile::encodeName(path("from")) + "/f\xE9";
    QCOMPARE(::mkdir(foreign.constData(), 0700), 0);
    QVERIFY(!copyDir(path("from"), path("to")));
    QCOMPARE(TraceCollector::lines().size(), 1);
    QVERIFY(removeDir(path("from")) && !QDir(path("from")).exists());
}

void TestDataStore::copiesFolders()
{
    QVERIFY(make("from/a/.hidden", "1") && make("from/a/b/file", "22") && make("from/empty/") &&
            make("to/x"));
    QVERIFY(QFile::link(u8("b/file"), path("from/a/link")) && QFile::link(u8("b"), path("from/a/folder")) &&
            QFile::link(path("nowhere"), path("from/broken")));
    QVERIFY(QFile::setPermissions(path("from/a/b/file"), QFileDevice::ReadOwner));
    QVERIFY(copyDir(path("from"), path("to/new/copy")));
    QCOMPARE(tree(path("to/new/copy")), tree(path("from")));
    QCOMPARE(contents(path("to/new/copy/a/link")), QByteArray("22"));
    QVERIFY(QFile(path("from/a/b/file")).remove());
    QCOMPARE(contents(path("to/new/copy/a/link")), QByteArray("22"));

    QVERIFY(copyDir(path("missing"), path("made")));
    QVERIFY(copyDir(path("missing"), m_folder->path() + u8("\\stores\\Files")));
    QVERIFY(QDir(path("stores/Files")).exists());
    QVERIFY(removeDir(m_folder->path() + u8("\\stores")) && !QDir(path("stores")).exists());
    QVERIFY(QFileInfo(path("made")).isDir());

    TraceCollector::lines().clear();
    QVERIFY(make("other/x", "new"));
    QVERIFY(!copyDir(path("other"), path("to")));
    QCOMPARE(contents(path("to/x")), QByteArray("x"));
    QCOMPARE(TraceCollector::lines().size(), 1);
}

void TestDataStore::refusesToCopy_data()
{
    QTest::addColumn<QString>("from");
    QTest::addColumn<QString>("to");

    QTest::newRow("no source") << QString() << u8("to");
    QTest::newRow("no target") << u8("from") << QString();
    QTest::newRow("into itself") << u8("from") << u8("from");
    QTest::newRow("below itself") << u8("from") << u8("from/a/new");
    QTest::newRow("below itself by a link") << u8("from") << u8("link/new");
    QTest::newRow("file in the way") << u8("from") << u8("file");
    QTest::newRow("file for a folder") << u8("from") << u8("withfile");
    QTest::newRow("link for a folder") << u8("from") << u8("withlink");
}

void TestDataStore::refusesToCopy()
{
    QFETCH(QString, from);
    QFETCH(QString, to);
    QVERIFY(make("from/a/file") && make("file") && make("withfile/a") && make("withlink/") && make("else/"));
    QVERIFY(QFile::link(path("from"), path("link")) && QFile::link(path("else"), path("withlink/a")));
    const QStringList before = tree(m_folder->path());
    QVERIFY(!copyDir(from, to));
    QCOMPARE(tree(m_folder->path()), before);
    QCOMPARE(TraceCollector::lines().size(), 1);
}

void TestDataStore::packageFolder_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("name");

    QTest::newRow("blank") << u8("Gauss 10kHz") << u8("Gauss 10kHz");
    QTest::newRow("full stop") << u8("a.b.c") << u8("a");
    QTest::newRow("slashes at the end") << u8("a.b//") << u8("a");
    QTest::newRow("backslash") << u8("store\\a.b") << u8("a");
}

void TestDataStore::packageFolder()
{
    QFETCH(QString, folder);
    QFETCH(QString, name);
    const QString sFolder = m_folder->filePath(folder);
    const QString sReal = resolvedStorePath(sFolder);
    QVERIFY(QDir().mkpath(sReal));
    SignalPackage package;
    package.setId(u8("id"));
    package.setName(u8("of the descriptor"));
    QVERIFY(!SignalPackageFolder::isValid(sFolder));
    QVERIFY(SignalPackageFolder::setSignalPackage(sFolder, package));
    QVERIFY(SignalPackageFolder::isValid(sFolder));
    QVERIFY(QFile::copy(SignalPackageFolder::signalFilePath(sFolder), sReal + u8("/Signal.sdf")));
    QVERIFY(QDir(sReal).mkdir(u8("Signal.wav")));
    const SignalPackage read = SignalPackageFolder::signalPackage(sFolder);
    QCOMPARE(read.id(), u8("id"));
    QCOMPARE(read.name(), name);
    QCOMPARE(read.path(), QString());
    QVERIFY(read.hasSymbolDataContent() && !read.hasAudioContent() && !read.hasResultDataContent());
}

void TestDataStore::noPackage()
{
    QVERIFY(make("p/Signal.wav") && make("p/Signal.rdf") && make("Signal.xml"));
    const SignalPackage package = SignalPackageFolder::signalPackage(u8("p"));
    QVERIFY(package.id().isEmpty() && package.hasAudioContent() && package.hasResultDataContent());
    QCOMPARE(package.name(), u8("p"));
    QCOMPARE(TraceCollector::lines().size(), 1);
    QVERIFY(!SignalPackageFolder::isValid(QString()));
    QVERIFY(!SignalPackageFolder::setSignalPackage(QString(), package));
}

void TestDataStore::listsPackages()
{
    for (const char* const szFolder : {"s/b", "s/a/z", "s/a/c/d", "s/b/inner", "s/.hidden", "s", "outside"}) {
        QVERIFY(make((QByteArray(szFolder) + "/Signal.xml").constData()));
    }
    QVERIFY(make("s/e/Signal.xml/"));
    QVERIFY(QFile::link(path("outside"), path("s/link")) && QFile::link(path("s"), path("s/a/loop")));
    const QStringList expected{path("s/a/c/d"), path("s/a/z"), path("s/b")};
    QCOMPARE(SignalPackageFolder::list(path("s")), expected);
    QCOMPARE(SignalPackageFolder::list(m_folder->path() + u8("\\s")), expected);
    QCOMPARE(SignalPackageFolder::list(path("missing")), QStringList());
}

void TestDataStore::storePaths()
{
    QCOMPARE(DataStoreFactory::fileStoreDir(nullptr), QString());
    QCOMPARE(DataStoreFactory::fileStoreDir(configuration({})->openGroup(u8("Other"))), QString());
    ICfg* pCfg = configuration(u8("/srv/store/"));
    QCOMPARE(DataStoreFactory::sessionStoreDir(pCfg), u8("/srv/store/\\Sessions"));
    QCOMPARE(DataStoreFactory::defaultSignalPackage(u8("/srv\\SignalPackages")),
             u8("/srv/SignalPackages/TuK-Default/Default"));
    QVERIFY(DataStoreFactory::createSignalPackageStore(pCfg, true) == nullptr);
    // An existing folder with a backslash in its name is opened under this name.
    QVERIFY(make("a\\b/"));
    QCOMPARE(resolvedStorePath(path("a\\b")), path("a\\b"));
    QCOMPARE(resolvedStorePath(path("a\\c")), path("a/c"));
}

void TestDataStore::initializes()
{
    QVERIFY(make("Sessions/old/file") && make("SignalPackages/~tmp.zip") && make("SignalPackages/mine/f"));
    QVERIFY(QFile::setPermissions(path("SignalPackages/~tmp.zip"), QFileDevice::ReadOwner));
    ICfg* pCfg = configuration(m_folder->path() + u'/');
    QVERIFY(DataStoreFactory::initializeDataStore(pCfg));
    QVERIFY2(TraceCollector::lines().isEmpty(), qPrintable(TraceCollector::lines().join(u'\n')));
    QVERIFY(!QFile::exists(path("Sessions")) && QFile::exists(path("Icons")));
    QCOMPARE(QDir(path("SignalPackages")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden),
             (QStringList{u8("mine"), u8("TuK-Default")}));
    const QDir packages(path("SignalPackages/TuK-Default"));
    QCOMPARE(packages.entryList(QDir::Files | QDir::Hidden), (QStringList{u8(".library"), u8(".lock")}));
    QCOMPARE(SignalPackageFolder::list(DataStoreFactory::signalPackageStoreDir(pCfg)),
             (QStringList{packages.filePath(u8("Default")), packages.filePath(u8("Gauss 10kHz")),
                          packages.filePath(u8("Rect 10kHz"))}));
    QCOMPARE(QDir(packages.filePath(u8("Rect 10kHz"))).entryList(QDir::Files),
             (QStringList{u8("Signal.ssf"), u8("Signal.wav"), u8("Signal.xml")}));
    const QString sScenario = DataStoreFactory::defaultScenario(DataStoreFactory::fileStoreDir(pCfg));
    QCOMPARE(contents(sScenario), contents(u8(":/DefaultData/Default.sce.exp")));
    const auto eAccess = QFileDevice::ReadOwner | QFileDevice::WriteOwner;
    QCOMPARE(QFile::permissions(sScenario) & eAccess, eAccess);
    QVERIFY(QFile::permissions(path("Files")).testFlag(QFileDevice::ExeOwner));
}

void TestDataStore::initializesAgain()
{
    ICfg* pCfg = configuration(m_folder->path());
    QVERIFY(DataStoreFactory::initializeDataStore(pCfg));
    const QStringList before = tree(m_folder->path());
    QVERIFY(make("Sessions/new") && make("SignalPackages/TuK-Default/Default/Signal.ssf", "changed"));
    QVERIFY(DataStoreFactory::initializeDataStore(pCfg));
    QCOMPARE(tree(m_folder->path()), before);
    QVERIFY(make("Files/Tessaro/Default.scexml", "edited"));
    QVERIFY(DataStoreFactory::initializeDataStore(pCfg));
    QCOMPARE(contents(path("Files/Tessaro/Default.scexml")), QByteArray("edited"));
    QVERIFY(TraceCollector::lines().isEmpty());
}

void TestDataStore::defaultDataInTheWay()
{
    QVERIFY(make("SignalPackages/TuK-Default/Default") &&
            make("SignalPackages/TuK-Default/Rect 10kHz/Signal.wav/x"));
    QVERIFY(DataStoreFactory::initializeDataStore(configuration(m_folder->path())));
    QCOMPARE(TraceCollector::lines().size(), 1);
    QVERIFY2(TraceCollector::lines().front().startsWith(u8("4 files ")),
             qPrintable(TraceCollector::lines().front()));
    QVERIFY(QFile::exists(path("SignalPackages/TuK-Default/Rect 10kHz/Signal.xml")));
    QVERIFY(QFile::exists(path("SignalPackages/TuK-Default/Rect 10kHz/Signal.wav/x")));
}

void TestDataStore::cannotInitialize_data()
{
    QTest::addColumn<QString>("repository");
    QTest::addColumn<QString>("file");

    QTest::newRow("missing") << u8("missing") << u8("file");
    QTest::newRow("empty") << QString() << u8("file");
    QTest::newRow("file") << u8("file") << u8("file");
    QTest::newRow("file for files") << u8(".") << u8("Files");
    QTest::newRow("file for default packages") << u8(".") << u8("SignalPackages/TuK-Default");
}

void TestDataStore::cannotInitialize()
{
    QFETCH(QString, repository);
    QFETCH(QString, file);
    QVERIFY(make(file.toUtf8().constData()));
    QString sTitle;
    QString sText;
    QTimer timer; // polls until the message box is open
    timer.callOnTimeout([&] {
        if (auto* pBox = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            sTitle = pBox->windowTitle();
            sText = pBox->text();
            pBox->accept();
        }
    });
    timer.start(0);
    ICfg* pCfg = configuration(repository.isEmpty() ? QString() : m_folder->filePath(repository));
    QVERIFY(!DataStoreFactory::initializeDataStore(pCfg));
    QCOMPARE(sTitle, u8("Simulation System"));
    QCOMPARE(sText, u8("There is an error in your simulation repository configuration. The repository is "
                       "either not accessible or not writable!"));
    QVERIFY(TraceCollector::lines().size() == 1 && TraceCollector::lines().front().startsWith(sText));
    if (repository != u8(".")) {
        QCOMPARE(tree(m_folder->path()), QStringList{u8("file 1")});
    }
}

void TestDataStore::messageOnlyOnItsThread()
{
    bool bReady = true;
    const std::unique_ptr<QThread> thread(
        QThread::create([&bReady] { bReady = DataStoreFactory::initializeDataStore(nullptr); }));
    thread->start();
    QVERIFY(thread->wait(10'000));
    QVERIFY(!bReady);
    QCOMPARE(TraceCollector::lines().size(), 1);
}

void TestDataStore::unpacksWithinBounds()
{
    const auto unpack = [this] {
        return unpackResource(u8(":/DefaultData/TuK-Default.zip"), m_folder->path(), u8("/TuK-Default"),
                              path("target"));
    };
    QVERIFY(make("target/"));
    Limits::setValue(Limits::ArchiveEntries, 3);
    const bool bFew = unpack();
    Limits::setValue(Limits::ArchiveEntries, 0);
    Limits::setValue(Limits::ArchiveBytes, 10);
    const bool bSmall = unpack();
    Limits::setValue(Limits::ArchiveBytes, 0);
    QVERIFY(!bFew && !bSmall);
    QVERIFY(!unpackResource(u8(":/DefaultData/Default.sce.exp"), m_folder->path(), u8("/"), path("target")));
    QVERIFY(!unpackResource(u8(":/missing.zip"), m_folder->path(), u8("/"), path("target")));
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
             QStringList{u8("target")});
    QVERIFY(unpack());
}

QTEST_MAIN(TestDataStore)
#include "tst_datastore.moc"
