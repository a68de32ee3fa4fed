// Makes the default signal packages that the library contains as resources.
//   makedefaultdata FOLDER
// Writes these files into the folder, which is created when it is missing:
// - TuK-Default.zip: the library of all default packages,
// - Default.zip: only the files of the package "Default",
// - Descriptors/<id>.xml: the descriptor of each package.
// Every run gives the same bytes.

#include "defaultpackages.h"
#include "zipwriter.h"

#include <QDir>
#include <QSaveFile>

#include <algorithm>
#include <cstdio>

namespace {

using namespace DefaultData;

void appendFiles(QList<ZipEntry>& a_entries, const QString& a_sFolder, const Package& a_package)
{
    a_entries.append({a_sFolder + QStringLiteral("Signal.ssf"), a_package.signalShape});
    a_entries.append({a_sFolder + QStringLiteral("Signal.wav"), a_package.audio});
    a_entries.append({a_sFolder + QStringLiteral("Signal.xml"), a_package.descriptor});
}

/// The folder of a library contains two empty marker files, ".library" and ".lock". The
/// file ".lock" means that users do not edit the library.
QList<ZipEntry> libraryEntries(const QList<Package>& a_packages)
{
    const QString sTop = QStringLiteral("TuK-Default/");
    QList<ZipEntry> entries{
        {sTop, {}}, {sTop + QStringLiteral(".library"), {}}, {sTop + QStringLiteral(".lock"), {}}};
    for (const Package& package : a_packages) {
        const QString sFolder = sTop + package.name + QLatin1Char('/');
        entries.append({sFolder, {}});
        appendFiles(entries, sFolder, package);
    }
    return entries;
}

bool fail(const QString& a_sFile, const QString& a_sReason)
{
    std::fprintf(stderr, "makedefaultdata: %s: %s\n", qPrintable(a_sFile), qPrintable(a_sReason));
    return false;
}

bool write(const QString& a_sFile, const QList<ZipEntry>& a_entries)
{
    QString sReason;
    return writeZip(a_sFile, a_entries, &sReason) || fail(a_sFile, sReason);
}

bool writeDescriptors(const QString& a_sFolder, const QList<Package>& a_packages)
{
    return std::all_of(a_packages.cbegin(), a_packages.cend(), [&](const Package& a_package) {
        QSaveFile file(a_sFolder + QLatin1Char('/') + a_package.id + QStringLiteral(".xml"));
        return (file.open(QIODevice::WriteOnly) &&
                file.write(a_package.descriptor) == a_package.descriptor.size() && file.commit()) ||
               fail(file.fileName(), file.errorString());
    });
}

} // namespace

int main(int a_iCount, char** a_ppArguments)
{
    if (a_iCount != 2) {
        std::fputs("usage: makedefaultdata FOLDER\n", stderr);
        return 2;
    }
    const QString sFolder = QFile::decodeName(a_ppArguments[1]);
    const QString sDescriptors = sFolder + QStringLiteral("/Descriptors");
    if (!QDir().mkpath(sDescriptors)) {
        std::fprintf(stderr, "makedefaultdata: cannot make %s\n", qPrintable(sDescriptors));
        return 1;
    }
    const QList<Package> packages = defaultPackages();
    QList<ZipEntry> defaultEntries;
    appendFiles(defaultEntries, QString(), packages.first());
    const bool bWritten = write(sFolder + QStringLiteral("/TuK-Default.zip"), libraryEntries(packages)) &&
                          write(sFolder + QStringLiteral("/Default.zip"), defaultEntries) &&
                          writeDescriptors(sDescriptors, packages);
    return bWritten ? 0 : 1;
}
