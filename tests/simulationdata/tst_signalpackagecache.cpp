#include "filesizelimit.h"
#include "simulationdata/audiofile.h"
#include "simulationdata/emissionsettings.h"
#include "simulationdata/io/resourcearchive_p.h"
#include "simulationdata/io/wholefile_p.h"
#include "simulationdata/scenariochecker.h"
#include "simulationdata/scenariodataxml.h"
#include "simulationdata/signalpackage.h"
#include "simulationdata/signalpackagecache.h"
#include "simulationdata/signalpackagefile.h"
#include "simulationdata/signalpackagefolder.h"
#include "simulationdata/signalshapefile.h"
#include "simulationdata/simulationlimits.h"
#include "simulationdata/szenarioemitter.h"
#include "simulationdata/unresolvedsignalpackageprovider.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <optional>
#include <set>
#include <thread>
#include <vector>

#include <sys/stat.h>

using namespace Simulation;

namespace {

const QString s_sDefaultId = QStringLiteral("c0d40372-37c8-4ad4-9fb1-97bfc477769c");
constexpr const char* s_szLock = "simulationdata.lock";
constexpr qsizetype s_iPreparedFiles = 4;           ///< files of the built-in package, and the lock file
constexpr std::uint32_t s_uiNewest = 2'000'000'000; ///< later than the built-in packages

QString u8(const char* a_szText)
{
    return QString::fromUtf8(a_szText);
}

QByteArray contents(const QString& a_sFile)
{
    QFile file(a_sFile);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
}

void write(const QString& a_sFile, const QByteArray& a_data)
{
    QFile file(a_sFile);
    QVERIFY2(file.open(QIODevice::WriteOnly) && file.write(a_data) == a_data.size(), qPrintable(a_sFile));
}

/// A temporary folder with a repository and a cache folder.
class Folders
{
public:
    [[nodiscard]] QString repository() const { return m_dir.filePath(u8("repository")); }
    [[nodiscard]] QString cache() const { return m_dir.filePath(u8("cache")); }
    [[nodiscard]] QString cached(const char* a_szName) const { return cache() + u'/' + u8(a_szName); }
    [[nodiscard]] QStringList cachedNames() const
    {
        QStringList names = QDir(cache()).entryList(QDir::Files | QDir::Hidden);
        names.sort();
        return names;
    }

    /// Creates a package whose shape file holds the given bytes; the duration is in ms.
    void addPackage(const char* a_szFolder, const QString& a_sId, const QStringList& a_updateIds = {},
                    const QByteArray& a_shape = "shape", std::uint32_t a_uiTimestamp = 0,
                    std::uint32_t a_uiDuration = 3000) const
    {
        const QString sFolder = repository() + u'/' + u8(a_szFolder);
        QVERIFY(QDir().mkpath(sFolder));
        SignalPackage package;
        package.setId(a_sId);
        package.setUpdateIds(a_updateIds);
        package.setTimestamp(a_uiTimestamp);
        package.setDuration(a_uiDuration);
        QVERIFY(SignalPackageFolder::setSignalPackage(sFolder, package));
        write(SignalPackageFolder::signalShapeFilePath(sFolder), a_shape);
    }

    /// Unpacks the built-in packages into the repository, as applications do.
    void addBuiltIns() const
    {
        QVERIFY(QDir().mkpath(repository()));
        QVERIFY(unpackResource(u8(":/DefaultData/TuK-Default.zip"), repository(), u8("/TuK-Default"),
                               repository() + u8("/TuK-Default")));
    }

private:
    QTemporaryDir m_dir;
};

/// Starts this program as another process that fills the cache folder. A file of that
/// process may have at most a_iMaxBytes (0 = without limit). A write beyond the limit kills
/// the process. With a_bSurvive the write fails as on a full disk instead. The process
/// prints the number of packages that it could not copy, and the first reason.
std::unique_ptr<QProcess> startFilling(const Folders& a_folders, qint64 a_iMaxBytes, bool a_bSurvive)
{
    auto process = std::make_unique<QProcess>();
    process->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process->start(QCoreApplication::applicationFilePath(),
                   {u8("--fill"), a_folders.cache(), a_folders.repository(), QString::number(a_iMaxBytes),
                    QString::number(static_cast<int>(a_bSurvive))});
    return process;
}

int fill(const QStringList& a_arguments)
{
    const QString& sCache = a_arguments.at(2);
    SignalPackageCache cache(sCache, {});
    if (!cache.prepareCacheForUse()) {
        return 2;
    }
    const auto uiMaxBytes = static_cast<rlim_t>(a_arguments.at(4).toULongLong());
    std::optional<FileSizeLimit> limit;
    if (uiMaxBytes != 0 && a_arguments.at(5) == u"1") {
        limit.emplace(uiMaxBytes);
    } else if (uiMaxBytes != 0) {
        dieBeyondFileSize(uiMaxBytes);
    }
    cache.updateCache(a_arguments.at(3), false);
    const SignalPackageCache::CopyFailures failures = cache.copyFailures();
    std::printf("%d %s", static_cast<int>(failures.packages), qPrintable(failures.firstReason));
    return 0;
}

} // namespace

class TestSignalPackageCache : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void beforePreparing();
    void defaultPackage();
    void unusableFolders();
    void findsPackages();
    void supersededIds();
    void usurpers();
    void emptyFiles();
    void lockOutOfReach();
    void packagesOfOneId();
    void tooManyUpdateIds();
    void unreadableDescriptor();
    void readers();
    void packageDurations_data();
    void packageDurations();
    void checkedScenario();
    void checkedPlainPackage();
    void builtInGivesWay_data();
    void builtInGivesWay();
    void builtInThatCannotGiveWay();
    void healsAfterKill_data();
    void healsAfterKill();
    void addsOrTakesAnew();
    void clearsOnlyItsOwn();
    void cannotClear();
    void readersOutliveClearing();
    void manyThreads();
    void twoProcesses();
    void interruptedCopy();
    void fullDisk();
    void copyReasons_data();
    void copyReasons();
};

void TestSignalPackageCache::beforePreparing()
{
    const Folders folders;
    SignalPackageCache cache(folders.cache(), u8("source"));
    QCOMPARE(cache.sourceDir(), u8("source"));
    QVERIFY(!cache.signalPackage(u8("unknown")));
    QVERIFY(!cache.defaultSignalPackage());
    QVERIFY(!cache.signalShapeFile(nullptr));
    cache.updateCache(folders.repository(), true);
    QVERIFY(!QDir(folders.cache()).exists());
}

void TestSignalPackageCache::defaultPackage()
{
    const Folders folders;
    SignalPackageCache cache(folders.cache(), {});
    QVERIFY(cache.prepareCacheForUse());
    const QStringList prepared{u8("Signal.ssf"), u8("Signal.wav"), u8("Signal.xml"), u8(s_szLock)};
    QCOMPARE(folders.cachedNames(), prepared);

    const std::shared_ptr<SignalPackage> package = cache.defaultSignalPackage();
    QCOMPARE(package->id(), s_sDefaultId);
    QVERIFY(package->hasAudioContent());
    for (const char* szId : {"", "unknown", "a/b", "..", "x\ny", "Signal.xml"}) {
        QCOMPARE(cache.signalPackage(u8(szId)), package);
        QVERIFY2(!cache.validSignalPackageId(u8(szId)), szId);
    }
    QCOMPARE(cache.signalPackage(s_sDefaultId), package);
    QVERIFY(cache.validSignalPackageId(s_sDefaultId));

    SignalShapeFile* pShape = cache.signalShapeFile(package);
    QVERIFY(pShape != nullptr && pShape->isOpen());
    pShape->readSpectrum(100);
    QVERIFY(pShape->signalLevelInSpectrum() > 0.0F);
    QCOMPARE(cache.audioFile(package)->length(), 2999U);
    QVERIFY(cache.symbolDataFile(package) == nullptr);

    // Simulates the files that an older program left.
    write(folders.cache() + u'/' + s_sDefaultId + u8(".ssf"), "copy");
    const QByteArray shape = contents(folders.cached("Signal.ssf"));
    write(folders.cached("Signal.ssf"), "older");
    SignalPackageCache again(folders.cache(), {});
    QVERIFY(again.prepareCacheForUse());
    QCOMPARE(folders.cachedNames(), prepared);
    QVERIFY(contents(folders.cached("Signal.ssf")) == shape);
}

void TestSignalPackageCache::unusableFolders()
{
    const Folders folders;
    QVERIFY(!SignalPackageCache({}, {}).prepareCacheForUse());
    write(folders.cache(), "a file");
    SignalPackageCache cache(folders.cache(), {});
    QVERIFY(!cache.prepareCacheForUse());
    folders.addPackage("p", u8("p"));
    cache.updateCache(folders.repository(), true);
    QVERIFY(!cache.signalPackage(u8("p")));
    QCOMPARE(contents(folders.cache()), QByteArray("a file"));
}

void TestSignalPackageCache::findsPackages()
{
    const Folders folders;
    folders.addPackage("near", u8("a:b/c"));
    folders.addPackage("group/deeper/far", u8("far"));
    folders.addPackage("near/inside", u8("inside"));
    folders.addPackage("nameless", {});
    QVERIFY(QFile::link(folders.repository(), folders.repository() + u8("/group/circle")));
    SignalPackageCache cache(folders.cache(), {});
    QVERIFY(cache.prepareCacheForUse());
    cache.updateCache(folders.repository(), false);

    QVERIFY(cache.validSignalPackageId(u8("a:b/c")));
    QCOMPARE(cache.signalPackage(u8("a:b/c"))->id(), u8("a:b/c"));
    QCOMPARE(contents(folders.cached("a_b_c.ssf")), QByteArray("shape"));
    QVERIFY(cache.validSignalPackageId(u8("far")));
    QVERIFY(!cache.validSignalPackageId(u8("inside")));
    QVERIFY(!cache.validSignalPackageId({}));
    QCOMPARE(folders.cachedNames().size(), s_iPreparedFiles + qsizetype{2} * 2);
}

// There are many pairs, because the result must not depend on which package of a
// pair is found first.
void TestSignalPackageCache::supersededIds()
{
    constexpr int s_iPairs = 40;
    const Folders folders;
    for (int i = 0; i < s_iPairs; ++i) {
        const QString sOld = QStringLiteral("old%1").arg(i);
        const QString sNew = QStringLiteral("new%1").arg(i);
        folders.addPackage(qPrintable(u8(i % 2 == 0 ? "a%1" : "z%1").arg(i)), sOld, {u8("older") + sOld});
        folders.addPackage(qPrintable(QStringLiteral("m%1").arg(i)), sNew, {sOld, u8("gone") + sOld});
    }
    SignalPackageCache cache(folders.cache(), {});
    QVERIFY(cache.prepareCacheForUse());
    cache.updateCache(folders.repository(), false);
    for (int i = 0; i < s_iPairs; ++i) {
        const QString sOld = QStringLiteral("old%1").arg(i);
        const QString sNew = QStringLiteral("new%1").arg(i);
        for (const QString& sId : {sNew, sOld, u8("gone") + sOld}) {
            QVERIFY(cache.validSignalPackageId(sId));
            QCOMPARE(cache.signalPackage(sId)->id(), sNew);
        }
        QCOMPARE(cache.signalPackage(u8("older") + sOld)->id(), sOld);
    }
}

// A package replaces neither a newer package by claiming its id nor the default package
// by using its file names.
void TestSignalPackageCache::usurpers()
{
    const Folders folders;
    folders.addPackage("new", u8("new"), {}, "new", 9);
    folders.addPackage("old", u8("old"), {u8("new"), u8("Signal")}, "old", 1);
    folders.addPackage("signal", u8("Signal"), {}, "foreign");
    QVERIFY(QFile::copy(folders.repository() + u8("/signal/Signal.ssf"),
                        folders.repository() + u8("/signal/Signal.sdf")));
    SignalPackageCache cache(folders.cache(), {});
    QVERIFY(cache.prepareCacheForUse());
    cache.updateCache(folders.repository(), false);
    QCOMPARE(cache.signalPackage(u8("new"))->id(), u8("new"));
    QCOMPARE(cache.signalPackage(u8("old"))->id(), u8("old"));
    QVERIFY(!QFile::exists(folders.cached("Signal.sdf")));
    QVERIFY(cache.prepareCacheForUse() && !cache.defaultSignalPackage()->hasSymbolDataContent());
}

// A power failure may leave empty files, which the next update replaces.
void TestSignalPackageCache::emptyFiles()
{
    const Folders folders;
    folders.addPackage("p", u8("p"));
    SignalPackageCache cache(folders.cache(), {});
    QVERIFY(cache.prepareCacheForUse());
    write(folders.cached("p.xml"), {});
    write(folders.cached("p.ssf"), {});
    cache.updateCache(folders.repository(), false);
    QCOMPARE(cache.signalPackage(u8("p"))->id(), u8("p"));
    QCOMPARE(contents(folders.cached("p.ssf")), QByteArray("shape"));
}

void TestSignalPackageCache::lockOutOfReach()
{
    const Folders folders;
    QVERIFY(QDir().mkpath(folders.cache()));
    QCOMPARE(mkfifo(qPrintable(folders.cached("simulationdata.lock")), 0600), 0);
    SignalPackageCache cache(folders.cache(), {});
    QVERIFY(!cache.prepareCacheForUse());
    QCOMPARE(cache.copyFailures().packages, qsizetype{1});
    QVERIFY(cache.copyFailures().firstReason.endsWith(u8("simulationdata.lock\": is not a regular file")));
}

void TestSignalPackageCache::packagesOfOneId()
{
    const Folders folders;
    folders.addPackage("a", u8("same"), {}, "first", 1);
    folders.addPackage("b", u8("same"), {}, "newest", 3);
    folders.addPackage("c", u8("same"), {}, "second", 2);
    SignalPackageCache cache(folders.cache(), {});
    QVERIFY(cache.prepareCacheForUse());
    cache.updateCache(folders.repository(), false);
    QCOMPARE(cache.signalPackage(u8("same"))->timestamp(), 3U);
    QCOMPARE(contents(folders.cached("same.ssf")), QByteArray("newest"));
}

void TestSignalPackageCache::tooManyUpdateIds()
{
    const Folders folders;
    folders.addPackage("p", u8("p"), {u8("u1"), u8("u2"), u8("u3")});
    Limits::setValue(Limits::UpdateIds, 2);
    SignalPackageCache cache(folders.cache(), {});
    QVERIFY(cache.prepareCacheForUse());
    cache.updateCache(folders.repository(), false);
    Limits::setValue(Limits::UpdateIds, 0);
    QVERIFY(cache.validSignalPackageId(u8("p")) && cache.validSignalPackageId(u8("u2")));
    QVERIFY(!cache.validSignalPackageId(u8("u3")));
}

void TestSignalPackageCache::unreadableDescriptor()
{
    const Folders folders;
    SignalPackageCache cache(folders.cache(), {});
    QVERIFY(cache.prepareCacheForUse());
    write(folders.cached("broken.xml"), "<SignalPackage UID=\"broken\"");
    QVERIFY(QDir().mkpath(folders.cached("folder.xml")));
    QCOMPARE(cache.signalPackage(u8("broken")), cache.defaultSignalPackage());
    QCOMPARE(cache.signalPackage(u8("folder")), cache.defaultSignalPackage());
}

void TestSignalPackageCache::readers()
{
    const Folders folders;
    folders.addPackage("p", u8("p"), {u8("p-old")});
    SignalPackageCache cache(folders.cache(), {});
    QVERIFY(cache.prepareCacheForUse());
    const QString sAudio = SignalPackageFolder::audioFilePath(folders.repository() + u8("/p"));
    QVERIFY(QFile::copy(folders.cached("Signal.wav"), sAudio));
    cache.updateCache(folders.repository(), false);

    const std::shared_ptr<SignalPackage> package = cache.signalPackage(u8("p-old"));
    QVERIFY(package->hasAudioContent() && !package->hasSymbolDataContent());
    AudioFile* pAudio = cache.audioFile(package);
    QVERIFY(pAudio != nullptr && pAudio->isOpen());
    QCOMPARE(pAudio->packageDuration(), 3000U);
    QCOMPARE(cache.audioFile(cache.signalPackage(u8("p"))), pAudio);
    QVERIFY(cache.resultDataFile(package) == nullptr);
    // "shape" is not a valid shape file.
    SignalShapeFile* pShape = cache.signalShapeFile(package);
    QVERIFY(pShape != nullptr && !pShape->isOpen());
    QCOMPARE(cache.signalShapeFile(package), pShape);
}

void TestSignalPackageCache::packageDurations_data()
{
    QTest::addColumn<bool>("bare");
    QTest::addColumn<bool>("anew");

    QTest::newRow("record that holds the id alone") << true << false;
    QTest::newRow("record from before the package changed") << false << true;
}

/// The reader uses the duration of the package in the cache folder. It does not matter
/// which package object requests the reader first.
void TestSignalPackageCache::packageDurations()
{
    QFETCH(bool, bare);
    QFETCH(bool, anew);
    const Folders folders;
    SignalPackageCache cache(folders.cache(), {});
    QVERIFY(cache.prepareCacheForUse());
    const QByteArray shape = contents(folders.cached("Signal.ssf"));
    folders.addPackage("p", u8("p"), {}, shape, 1, anew ? 3000 : 10'000);
    cache.updateCache(folders.repository(), false);
    std::shared_ptr<SignalPackage> asks = cache.signalPackage(u8("p"));
    if (bare) {
        asks = UnresolvedSignalPackageProvider().signalPackage(u8("p"));
    }
    folders.addPackage("p", u8("p"), {}, shape, 2, 10'000);
    cache.updateCache(folders.repository(), anew);

    SignalShapeFile expected(folders.cached("Signal.ssf"));
    QVERIFY(expected.open());
    expected.setPackageDuration(10'000);
    expected.readSpectrum(5'000);
    SignalShapeFile* const pShape = cache.signalShapeFile(asks);
    QVERIFY(pShape != nullptr);
    pShape->readSpectrum(5'000);
    QCOMPARE(pShape->signalLevelInSpectrum(), expected.signalLevelInSpectrum());
    QVERIFY(pShape->spectrum() == expected.spectrum());
    QCOMPARE(cache.signalShapeFile(cache.signalPackage(u8("p"))), pShape);
}

/// A scenario that was loaded without packages can be played after a check: every
/// emission gets a package that can be read.
void TestSignalPackageCache::checkedScenario()
{
    const Folders folders;
    SignalPackageCache cache(folders.cache(), {});
    QVERIFY(cache.prepareCacheForUse());
    folders.addPackage("p", u8("p"), {u8("former")}, contents(folders.cached("Signal.ssf")));
    cache.updateCache(folders.repository(), false);
    write(folders.cached("broken.xml"), "<SignalPackage UID=\"broken\"");
    UnresolvedSignalPackageProvider unresolved;
    const auto emitter = std::make_shared<SzenarioEmitter>(u8("e"), QString());
    for (const QString& sId : {u8("p"), u8("former"), u8("broken"), u8("unknown"), s_sDefaultId}) {
        const auto emission = EmissionSettings::createEmission();
        emission->start = 1000 * emitter->emissionSettings()->emissions().size();
        emission->signalPackage = unresolved.signalPackage(sId);
        emitter->emissionSettings()->addEmission(emission);
    }
    ScenarioDataXml scenario(nullptr);
    scenario.setScenarioObjects({emitter});
    ScenarioChecker checker(&cache);
    checker.check(scenario);
    QCOMPARE(checker.findings().size(), qsizetype{2}); // an unreadable package counts as unknown
    QStringList ids;
    for (const auto& emission : emitter->emissionSettings()->emissions()) {
        ids.append(emission->signalPackage->id());
        QCOMPARE(emission->signalPackage->duration(), 3000U);
        SignalShapeFile* const pShape = cache.signalShapeFile(emission->signalPackage);
        QVERIFY(pShape != nullptr);
        pShape->readSpectrum(100);
        QVERIFY(pShape->signalLevelInSpectrum() > 0.0F);
    }
    QCOMPARE(ids, QStringList({u8("p"), u8("p"), s_sDefaultId, s_sDefaultId, s_sDefaultId}));
    checker.check(scenario);
    QVERIFY(checker.findings().isEmpty());
}

/// The data files of a package are found although its descriptor contains only the id.
void TestSignalPackageCache::checkedPlainPackage()
{
    const Folders folders;
    folders.addPackage("p", u8("p"), {}, "shape", 0, 0);
    write(folders.repository() + u8("/p/Signal.sdf"), "symbols");
    SignalPackageCache cache(folders.cache(), {});
    QVERIFY(cache.prepareCacheForUse());
    cache.updateCache(folders.repository(), false);
    const auto emitter = std::make_shared<SzenarioEmitter>(u8("e"), QString());
    const auto emission = EmissionSettings::createEmission();
    emission->signalPackage = UnresolvedSignalPackageProvider().signalPackage(u8("p"));
    emitter->emissionSettings()->addEmission(emission);
    ScenarioDataXml scenario(nullptr);
    scenario.setScenarioObjects({emitter});
    ScenarioChecker(&cache).check(scenario);
    QVERIFY(emission->signalPackage->hasSymbolDataContent());
}

void TestSignalPackageCache::builtInGivesWay_data()
{
    QTest::addColumn<QString>("id");  // requested from the cache
    QTest::addColumn<QString>("own"); // id of the user's package
    QTest::addColumn<quint32>("timestamp");

    QTest::addColumn<bool>("later"); // whether the user's package is added after the first update

    const QString sGauss = u8("9a567123-d88f-4177-9b57-b02c1ec104f7");
    for (const bool bLater : {false, true}) {
        const auto row = [&](const char* a_szName) -> QTestData& {
            return QTest::addRow("%s%s", a_szName, bLater ? ", later" : "");
        };
        row("id of the default package") << s_sDefaultId << s_sDefaultId << s_uiNewest << bLater;
        row("the same, older") << s_sDefaultId << s_sDefaultId << 1U << bLater;
        row("successor of the default package") << s_sDefaultId << u8("new") << s_uiNewest << bLater;
        row("successor with a small number") << s_sDefaultId << u8("new") << 1U << bLater;
        row("id of another built-in package") << sGauss << sGauss << 1U << bLater;
        row("successor of another built-in package") << sGauss << u8("new") << 1U << bLater;
    }
}

/// A user's package takes precedence over a built-in package. It also takes precedence
/// over the copy of the built-in package in the repository. Both rules also apply in
/// later runs.
void TestSignalPackageCache::builtInGivesWay()
{
    QFETCH(QString, id);
    QFETCH(QString, own);
    QFETCH(quint32, timestamp);
    QFETCH(bool, later);
    const Folders folders;
    folders.addBuiltIns();
    SignalPackageCache cache(folders.cache(), {});
    QVERIFY(cache.prepareCacheForUse());
    const QByteArray builtIn = contents(folders.cached("Signal.ssf"));
    if (later) {
        cache.updateCache(folders.repository(), false);
        QCOMPARE(cache.signalPackage(id)->id(), id);
    }
    folders.addPackage("z/mine", own, {id}, "mine", timestamp, 10'000);
    // The reader of the built-in package is open, as after playing.
    QVERIFY(cache.signalShapeFile(cache.signalPackage(id))->isOpen());
    for (int iRun = 0; iRun < 2; ++iRun) {
        cache.updateCache(folders.repository(), false);
        SignalPackageCache again(folders.cache(), {});
        QVERIFY(again.prepareCacheForUse());
        for (SignalPackageCache* pCache : {&cache, &again}) {
            const auto package = pCache->signalPackage(id);
            QCOMPARE(package->id(), own);
            QCOMPARE(package->duration(), 10'000U);
            QCOMPARE(contents(folders.cached(qPrintable(own + u8(".ssf")))), QByteArray("mine"));
            QVERIFY(!package->hasAudioContent());                 // unlike the built-in package
            QVERIFY(!pCache->signalShapeFile(package)->isOpen()); // "mine" is not a valid shape file
            // For an unknown id the cache returns the default package. If the user's
            // package has the default id, the user's package is returned.
            const auto fallback = pCache->signalPackage(u8("unknown"));
            QCOMPARE(fallback, pCache->defaultSignalPackage());
            QCOMPARE(fallback->id(), s_sDefaultId);
            QCOMPARE(fallback->duration(), own == s_sDefaultId ? 10'000U : 3000U);
            QCOMPARE(pCache->signalShapeFile(fallback)->isOpen(), own != s_sDefaultId);
        }
    }
    cache.clearCache();
    QCOMPARE(cache.signalPackage(id)->duration(), 3000U);
    QVERIFY(cache.signalShapeFile(cache.signalPackage(id))->isOpen());
    QVERIFY(contents(folders.cached("Signal.ssf")) == builtIn);
    QCOMPARE(folders.cachedNames().size(), s_iPreparedFiles);
}

/// If the files of the built-in package cannot be removed, they are not mixed with the
/// files of the user's package. The next update tries again.
void TestSignalPackageCache::builtInThatCannotGiveWay()
{
    const Folders folders;
    folders.addBuiltIns();
    SignalPackageCache cache(folders.cache(), {});
    QVERIFY(cache.prepareCacheForUse());
    cache.updateCache(folders.repository(), false);
    folders.addPackage("mine", s_sDefaultId, {}, "mine", 1, 10'000);
    write(folders.repository() + u8("/mine/Signal.sdf"), "mine");
    // A folder in place of the file prevents the removal.
    const QString sFile = folders.cache() + u'/' + s_sDefaultId;
    QVERIFY(QDir().mkdir(sFile + u8(".rdf")));
    cache.updateCache(folders.repository(), false);
    QCOMPARE(cache.copyFailures().packages, qsizetype{1});
    QVERIFY2(cache.copyFailures().firstReason.startsWith(u8("Cannot remove \"")),
             qPrintable(cache.copyFailures().firstReason));
    QVERIFY(!QFile::exists(sFile + u8(".sdf")));
    QVERIFY(QDir().rmdir(sFile + u8(".rdf")));
    cache.updateCache(folders.repository(), false);
    QCOMPARE(cache.copyFailures().firstReason, QString());
    QCOMPARE(cache.signalPackage(s_sDefaultId)->duration(), 10'000U);
    QCOMPARE(contents(sFile + u8(".sdf")), QByteArray("mine"));
}

void TestSignalPackageCache::healsAfterKill_data()
{
    QTest::addColumn<QStringList>("kept"); // files of a full cache folder; "+name" adds an empty file

    const QString sLock = u8(s_szLock);
    QTest::newRow("lock file made") << QStringList{u8("+simulationdata.lock")};
    QTest::newRow("archive copied") << QStringList{
        sLock, u8("+simulationdata.MACHINE.999999999.0123456789abcdef.0.tmp")};
    QTest::newRow("archive copied, by the process id of this process")
        << QStringList{sLock, u8("+simulationdata.MACHINE.OWN.0123456789abcdef.0.tmp")};
    QTest::newRow("one file unpacked") << QStringList{sLock, u8("Signal.wav")};
    QTest::newRow("descriptor unpacked") << QStringList{sLock, u8("Signal.xml")};
    QTest::newRow("all but one unpacked") << QStringList{sLock, u8("Signal.xml"), u8("Signal.ssf")};
    QTest::newRow("built-in package unpacked")
        << QStringList{sLock, u8("Signal.xml"), u8("Signal.ssf"), u8("Signal.wav")};
    QTest::newRow("descriptors copied")
        << QStringList{sLock,       u8("Signal.xml"), u8("Signal.ssf"), u8("Signal.wav"), u8("former.xml"),
                       u8("p.xml"), u8("q.xml")};
    QTest::newRow("built-in package lost later")
        << QStringList{sLock, u8("former.xml"), u8("p.xml"), u8("p.ssf")};
}

/// A process that is killed while it fills the folder leaves some of the files. The
/// next process adds the missing ones without waiting.
void TestSignalPackageCache::healsAfterKill()
{
    QFETCH(QStringList, kept);
    const Folders folders;
    folders.addPackage("p", u8("p"), {u8("former")});
    folders.addPackage("q", u8("q"));
    const auto fillCache = [&] {
        SignalPackageCache cache(folders.cache(), {});
        const bool bPrepared = cache.prepareCacheForUse();
        cache.updateCache(folders.repository(), false);
        return bPrepared && cache.copyFailures().firstReason.isEmpty();
    };
    QVERIFY(fillCache());
    const QStringList whole = folders.cachedNames();
    for (const QString& sName : whole) {
        QVERIFY(kept.contains(sName) || QFile::remove(folders.cache() + u'/' + sName));
    }
    const QString sMachine = QFileInfo(temporaryName(folders.cached("x"))).fileName().section(u'.', 1, 1);
    for (QString sName : kept) {
        if (sName.startsWith(u'+')) {
            sName.replace(u8("MACHINE"), sMachine)
                .replace(u8("OWN"), QString::number(QCoreApplication::applicationPid()));
            write(folders.cache() + u'/' + sName.mid(1), {});
        }
    }
    QVERIFY(SignalPackageCache::isCacheFolder(folders.cache()));
    QElapsedTimer timer;
    timer.start();
    QVERIFY(fillCache());
    QVERIFY2(timer.elapsed() < 10'000, qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(folders.cachedNames(), whole);
}

void TestSignalPackageCache::addsOrTakesAnew()
{
    const Folders folders;
    folders.addPackage("p", u8("p"), {u8("dropped")}, "first");
    SignalPackageCache cache(folders.cache(), {});
    QVERIFY(cache.prepareCacheForUse());
    cache.updateCache(folders.repository(), false);
    const auto former = cache.signalPackage(u8("p"));

    folders.addPackage("p", u8("p"), {}, "second", 7);
    folders.addPackage("q", u8("q"));
    cache.updateCache(folders.repository(), false);
    QVERIFY(cache.validSignalPackageId(u8("q")) && cache.validSignalPackageId(u8("dropped")));
    QCOMPARE(contents(folders.cached("p.ssf")), QByteArray("first"));
    QCOMPARE(cache.signalPackage(u8("p")), former);

    cache.updateCache(folders.repository(), true);
    QCOMPARE(contents(folders.cached("p.ssf")), QByteArray("second"));
    QCOMPARE(cache.signalPackage(u8("p"))->timestamp(), 7U);
    QVERIFY(!cache.validSignalPackageId(u8("dropped")));
}

void TestSignalPackageCache::clearsOnlyItsOwn()
{
    const Folders folders;
    folders.addPackage("p", u8("p:1"), {u8("old")});
    folders.addPackage("standard", s_sDefaultId, {}, "other shape");
    SignalPackageCache cache(folders.cache(), {});
    QVERIFY(cache.prepareCacheForUse());
    const QStringList prepared = folders.cachedNames();
    cache.updateCache(folders.repository(), false);

    const QByteArray foreignPackage = contents(folders.cached("p_1.xml"));
    const QList<std::pair<const char*, QByteArray>> foreign{
        {"letter.xml", "<Letter UID=\"letter\"/>"}, {"letter.ssf", "x"}, {"no.xml", "no document"},
        {"elsewhere.xml", foreignPackage},          {"movie.wav", "x"},  {"p_1.txt", "x"},
        {"q.XML", "<SignalPackage UID=\"q\"/>"},    {"q.ssf", "x"}};
    for (const auto& [szName, data] : foreign) {
        write(folders.cached(szName), data);
    }
    SignalPackageCache(folders.cache(), {}).clearCache();
    cache.clearCache();
    QVERIFY(!cache.validSignalPackageId(u8("p:1")) && !cache.validSignalPackageId(u8("old")));
    QStringList expected = prepared;
    for (const auto& [szName, data] : foreign) {
        QCOMPARE(contents(folders.cached(szName)), data);
        expected.append(u8(szName));
    }
    expected.sort();
    QCOMPARE(folders.cachedNames(), expected);
    QVERIFY(cache.validSignalPackageId(s_sDefaultId));
    QVERIFY(cache.signalShapeFile(cache.defaultSignalPackage())->isOpen());
}

// Old data that could not be removed must be replaced later. Otherwise they would be
// used for the changed package.
void TestSignalPackageCache::cannotClear()
{
    const Folders folders;
    folders.addPackage("p", u8("p"), {}, "first");
    SignalPackageCache cache(folders.cache(), {});
    QVERIFY(cache.prepareCacheForUse());
    cache.updateCache(folders.repository(), false);
    // A folder in place of the file prevents the removal.
    QVERIFY(QDir().mkdir(folders.cached("p.wav")));
    cache.clearCache();
    QVERIFY(cache.validSignalPackageId(u8("p")));

    write(folders.cached("p.ssf"), "left behind");
    QVERIFY(QDir().rmdir(folders.cached("p.wav")));
    folders.addPackage("p", u8("p"), {}, "second");
    cache.updateCache(folders.repository(), true);
    QCOMPARE(contents(folders.cached("p.ssf")), QByteArray("second"));
}

void TestSignalPackageCache::readersOutliveClearing()
{
    const Folders folders;
    SignalPackageCache cache(folders.cache(), {});
    QVERIFY(cache.prepareCacheForUse());
    const auto package = cache.defaultSignalPackage();
    SignalShapeFile* pFormer = cache.signalShapeFile(package);
    cache.clearCache();
    QVERIFY(cache.signalShapeFile(package) != pFormer);
    pFormer->readSpectrum(200);
    QVERIFY(pFormer->isOpen() && pFormer->signalLevelInSpectrum() > 0.0F);
    cache.deleteAllSignalpackages();
    QVERIFY(cache.signalShapeFile(package)->isOpen());
}

// Lookups in several threads during an update return the same objects.
void TestSignalPackageCache::manyThreads()
{
    const Folders folders;
    SignalPackageCache cache(folders.cache(), {});
    QVERIFY(cache.prepareCacheForUse());
    for (int i = 0; i < 20; ++i) {
        folders.addPackage(qPrintable(QString::number(i)), QString::number(i), {},
                           contents(folders.cached("Signal.ssf")));
    }
    cache.updateCache(folders.repository(), false);
    std::array<std::set<const void*>, 4> seen;
    std::vector<std::thread> threads;
    threads.reserve(seen.size());
    for (auto& objects : seen) {
        threads.emplace_back([&] {
            for (int i = 0; i < 20; ++i) {
                const auto package = cache.signalPackage(QString::number(i));
                objects.insert(package.get());
                objects.insert(cache.signalShapeFile(package));
            }
        });
    }
    cache.updateCache(folders.repository(), false);
    for (std::thread& thread : threads) {
        thread.join();
    }
    QCOMPARE(seen.front().size(), std::size_t{40});
    QVERIFY(std::all_of(seen.cbegin(), seen.cend(),
                        [&](const auto& a_objects) { return a_objects == seen.front(); }));
}

void TestSignalPackageCache::twoProcesses()
{
    constexpr int s_iPackages = 60;
    const Folders folders;
    for (int i = 0; i < s_iPackages; ++i) {
        folders.addPackage(qPrintable(QString::number(i)), QString::number(i), {},
                           QByteArray(200'000, static_cast<char>('A' + i % 26)));
    }
    const auto first = startFilling(folders, 0, true);
    const auto second = startFilling(folders, 0, true);
    for (QProcess* pProcess : {first.get(), second.get()}) {
        QVERIFY(pProcess->waitForFinished());
        QCOMPARE(pProcess->exitStatus(), QProcess::NormalExit);
        QCOMPARE(pProcess->exitCode(), 0);
    }
    QCOMPARE(folders.cachedNames().size(), s_iPreparedFiles + qsizetype{2} * s_iPackages);
    for (int i = 0; i < s_iPackages; ++i) {
        QCOMPARE(contents(folders.cached(qPrintable(QStringLiteral("%1.ssf").arg(i)))),
                 QByteArray(200'000, static_cast<char>('A' + i % 26)));
    }
}

void TestSignalPackageCache::interruptedCopy()
{
    const Folders folders;
    const QByteArray shape(1'000'000, 's');
    folders.addPackage("p", u8("p"), {}, shape);
    const auto process = startFilling(folders, 300'000, false);
    QVERIFY(process->waitForFinished());
    QCOMPARE(process->exitStatus(), QProcess::CrashExit);
    const QStringList left = folders.cachedNames().filter(u8(".tmp"));
    QCOMPARE(left.size(), 1);
    QVERIFY(!QFile::exists(folders.cached("p.ssf")));

    // Neither a temporary file of a running process nor a file with a similar name is
    // removed.
    const QString sRunning = QFileInfo(temporaryName(folders.cached("p.ssf"))).fileName();
    QStringList foreign{sRunning, u8("simulationdata.notes.tmp")};
    for (const QString& sName : foreign) {
        write(folders.cached(qPrintable(sName)), "foreign");
    }
    foreign.sort();
    SignalPackageCache cache(folders.cache(), {});
    QVERIFY(cache.prepareCacheForUse());
    QCOMPARE(folders.cachedNames().filter(u8(".tmp")), foreign);
    cache.updateCache(folders.repository(), false);
    QCOMPARE(contents(folders.cached("p.ssf")), shape);
}

void TestSignalPackageCache::fullDisk()
{
    const Folders folders;
    folders.addPackage("large", u8("large"), {}, QByteArray(1'000'000, 's'));
    folders.addPackage("small", u8("small"));
    folders.addPackage("wordy", u8("wordy"), {QString(400'000, u'w')});
    const auto process = startFilling(folders, 300'000, true);
    QVERIFY(process->waitForFinished());
    QCOMPARE(process->exitStatus(), QProcess::NormalExit);
    // A package counts once, even if several of its files are missing.
    QCOMPARE(QString::fromUtf8(process->readAllStandardOutput())
                 .replace(folders.cache(), u8("C"))
                 .section(u' ', 0, 1),
             u8("2 Cannot"));
    QVERIFY(!QFile::exists(folders.cached("large.ssf")));
    QCOMPARE(contents(folders.cached("small.ssf")), QByteArray("shape"));
    // Data without a descriptor would never be removed, so they are not copied.
    QVERIFY(!QFile::exists(folders.cached("wordy.ssf")));
    QVERIFY(folders.cachedNames().filter(u8(".tmp")).isEmpty());
}

void TestSignalPackageCache::copyReasons_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<QString>("reason");

    QTest::newRow("name taken") << "taken"
                                << "a file of this name already exists";
    QTest::newRow("no such folder") << "none/new"
                                    << "No such file or directory";
}

void TestSignalPackageCache::copyReasons()
{
    QFETCH(QString, target);
    QFETCH(QString, reason);
    const QTemporaryDir folder;
    write(folder.filePath(u8("from")), "new");
    write(folder.filePath(u8("taken")), "former");
    const QString sFrom = folder.filePath(u8("from"));
    QString sReason;
    const bool bCopied = copyFileWhole(sFrom, folder.filePath(target), &sReason);
    QVERIFY(!bCopied);
    QCOMPARE(sReason,
             QStringLiteral("Cannot copy \"%1\" to \"%2\": %3").arg(sFrom, folder.filePath(target), reason));
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files), QStringList({u8("from"), u8("taken")}));
}

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == u"--fill") {
        return fill(arguments);
    }
    TestSignalPackageCache test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_signalpackagecache.moc"
