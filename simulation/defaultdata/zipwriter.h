#ifndef DEFAULTDATA_ZIPWRITER_H
#define DEFAULTDATA_ZIPWRITER_H

#include <QByteArray>
#include <QList>
#include <QString>

namespace DefaultData {

/// An entry of a zip file. A name that ends in a slash is a folder's.
struct ZipEntry
{
    QString name;
    QByteArray bytes;
};

/// Replaces a zip file. The same entries in the same order give the same bytes,
/// whatever the clock, the time zone and the user's file mask. False leaves the
/// file as it was; the reason goes to `a_pReason`.
[[nodiscard]] bool writeZip(const QString& a_sFile, const QList<ZipEntry>& a_entries, QString* a_pReason);

} // namespace DefaultData

#endif
