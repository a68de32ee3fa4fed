#include "simulationdata/signalpackage.h"
#include "simulationdata/signalpackagecache.h"
#include "simulationdata/signalpackagefolder.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>
#include <array>
#include <cstdio>

// Fills a cache folder with 2,000 packages of the default package's size, and
// compares the time to `cp` of the same files into one folder. Also measures an
// update of a cache that already contains all packages.

using namespace Simulation;

namespace {

constexpr int s_iPackages = 2000;
constexpr std::size_t s_uiRuns = 5;
constexpr int s_iCopyTimeoutMs = 600'000;

using Times = std::array<double, s_uiRuns>; ///< ms

double median(Times a_times)
{
    std::sort(a_times.begin(), a_times.end());
    return a_times[s_uiRuns / 2];
}

template<typename Work>
double milliseconds(const Work& a_work)
{
    QElapsedTimer timer;
    timer.start();
    a_work();
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

/// Makes packages with different ids. Also copies all their files into one folder,
/// under unique names.
bool makePackages(const QString& a_sDefault, const QString& a_sRepository, const QString& a_sFlat)
{
    bool bOk = QDir().mkpath(a_sFlat);
    for (int i = 0; i < s_iPackages && bOk; ++i) {
        const QString sFolder = QStringLiteral("%1/%2").arg(a_sRepository).arg(i);
        SignalPackage package = SignalPackageFolder::signalPackage(a_sDefault);
        package.setId(QStringLiteral("package-%1").arg(i));
        bOk = QDir().mkpath(sFolder) && SignalPackageFolder::setSignalPackage(sFolder, package);
        for (const char* szName : {"Signal.ssf", "Signal.wav"}) {
            const QString sName = QString::fromLatin1(szName);
            bOk = bOk && QFile::copy(a_sDefault + u'/' + sName, sFolder + u'/' + sName);
        }
        for (const char* szName : {"Signal.xml", "Signal.ssf", "Signal.wav"}) {
            const QString sName = QString::fromLatin1(szName);
            bOk = bOk && QFile::copy(sFolder + u'/' + sName,
                                     QStringLiteral("%1/package-%2.%3").arg(a_sFlat).arg(i).arg(sName));
        }
    }
    return bOk;
}

bool copyByTool(const QString& a_sFlat, const QString& a_sTarget)
{
    QProcess process;
    process.start(QStringLiteral("cp"), {QStringLiteral("-r"), a_sFlat, a_sTarget});
    return process.waitForFinished(s_iCopyTimeoutMs) && process.exitCode() == 0;
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    const QTemporaryDir scratch;
    const QString sDefault = scratch.filePath(QStringLiteral("default"));
    const QString sRepository = scratch.filePath(QStringLiteral("repository"));
    const QString sFlat = scratch.filePath(QStringLiteral("flat"));
    if (!SignalPackageCache(sDefault, {}).prepareCacheForUse() ||
        !makePackages(sDefault, sRepository, sFlat)) {
        std::fputs("bench_signalpackagecache: cannot make the packages\n", stderr);
        return 1;
    }

    Times copied{};
    Times filled{};
    Times found{};
    bool bCopied = true;
    for (std::size_t i = 0; i < s_uiRuns; ++i) {
        QDir copy(scratch.filePath(QStringLiteral("copy")));
        copied[i] = milliseconds([&] { bCopied = copyByTool(sFlat, copy.path()) && bCopied; });
        copy.removeRecursively();
        QDir cacheFolder(scratch.filePath(QStringLiteral("cache")));
        SignalPackageCache cache(cacheFolder.path(), {});
        bCopied = cache.prepareCacheForUse() && bCopied;
        filled[i] = milliseconds([&] { cache.updateCache(sRepository, false); });
        found[i] = milliseconds([&] { cache.updateCache(sRepository, false); });
        bCopied = cache.validSignalPackageId(QStringLiteral("package-%1").arg(s_iPackages - 1)) && bCopied;
        cacheFolder.removeRecursively();
    }
    if (!bCopied) {
        std::fputs("bench_signalpackagecache: something was not copied\n", stderr);
        return 1;
    }
    std::printf(
        "updateCache of %d packages, median of %zu: %.0f ms; cp of the same files: %.0f ms; ratio %.2f\n",
        s_iPackages, s_uiRuns, median(filled), median(copied), median(filled) / median(copied));
    std::printf("updateCache again, all in place: %.0f ms; ratio to the first %.3f\n", median(found),
                median(found) / median(filled));
    return 0;
}
