#ifndef DEFAULTDATA_ZIPWRITER_H
#define DEFAULTDATA_ZIPWRITER_H

#include <QByteArray>
#include <QList>
#include <QString>

namespace DefaultData {

/// An entry of a zip file. A name that ends with a slash denotes a folder.
struct ZipEntry
{
    QString name;
    QByteArray bytes;
};

/// Writes a zip file and replaces an existing file. The same entries in the same order
/// give the same bytes, regardless of clock, time zone and umask. On failure returns
/// false, keeps the old file unchanged and sets `*a_pReason`.
[[nodiscard]] bool writeZip(const QString& a_sFile, const QList<ZipEntry>& a_entries, QString* a_pReason);

} // namespace DefaultData

#endif
