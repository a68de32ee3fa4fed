#include "kpbase/replacedfile.h"

#include <QFileInfo>

#include <cerrno>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace {

constexpr qint64 s_iBufferBytes = qint64{64} * 1024;

/// Waits until the file is on the disk. Returns false, with the error text, when the
/// disk is full or fails. On a network disk only fsync() reports these errors. File
/// systems that cannot sync are accepted.
bool syncToDisk(const QFileDevice& a_file, QString* a_pReason)
{
#ifdef Q_OS_UNIX
    if (::fsync(a_file.handle()) != 0 && (errno == ENOSPC || errno == EDQUOT || errno == EIO)) {
        *a_pReason = qt_error_string(errno);
        return false;
    }
#endif
    return true;
}

} // namespace

bool writeAll(QIODevice& a_device, const char* a_pBytes, qint64 a_iBytes)
{
    while (a_iBytes > 0) {
        const qint64 iWritten = a_device.write(a_pBytes, a_iBytes);
        if (iWritten <= 0) {
            return false;
        }
        a_pBytes += iWritten;
        a_iBytes -= iWritten;
    }
    return true;
}

bool writeThrough(QIODevice& a_device, const QByteArray& a_data)
{
    auto* const pFile = qobject_cast<QFileDevice*>(&a_device);
    // A flush that writes only a part of the bytes fails without an error text. The
    // next flush sets the error text.
    return writeAll(a_device, a_data.constData(), a_data.size()) &&
           (pFile == nullptr || pFile->flush() || pFile->flush());
}

bool closeWritten(QFileDevice& a_file, QString* a_pReason)
{
    a_file.close();
    if (a_file.error() != QFileDevice::NoError) {
        *a_pReason = a_file.errorString();
        return false;
    }
    return true;
}

ReplacedFile::ReplacedFile(const QString& a_sFile)
    : m_file(a_sFile)
{}

bool ReplacedFile::open()
{
    m_sReason.clear();
    m_buffer.clear();
    const QFileInfo target(m_file.fileName());
    if (target.exists() && !target.isFile()) {
        return fail(target.isDir() ? QStringLiteral("is a folder") : QStringLiteral("is not a regular file"));
    }
    // The buffer of the device would hide the error text of a failed write.
    return m_file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) || fail(m_file.errorString());
}

bool ReplacedFile::write(const char* a_pBytes, qint64 a_iBytes)
{
    if (!m_sReason.isEmpty() || (m_buffer.size() + a_iBytes > s_iBufferBytes && !writeBuffer())) {
        return false;
    }
    if (a_iBytes > s_iBufferBytes) {
        return writeAll(m_file, a_pBytes, a_iBytes) || fail(m_file.errorString());
    }
    m_buffer.append(a_pBytes, static_cast<qsizetype>(a_iBytes));
    return true;
}

bool ReplacedFile::commit()
{
    return m_sReason.isEmpty() && writeBuffer() && syncToDisk(m_file, &m_sReason) &&
           (m_file.commit() || fail(m_file.errorString()));
}

bool ReplacedFile::fail(const QString& a_sReason)
{
    m_sReason = a_sReason;
    return false;
}

bool ReplacedFile::writeBuffer()
{
    const bool bWritten = writeAll(m_file, m_buffer.constData(), m_buffer.size());
    m_buffer.clear();
    return bWritten || fail(m_file.errorString());
}
