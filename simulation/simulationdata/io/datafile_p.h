#ifndef SIMULATIONDATA_DATAFILE_P_H
#define SIMULATIONDATA_DATAFILE_P_H

#include <QFile>
#include <QString>
#include <QtEndian>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <span>

namespace Simulation {

/// Common operations of the readers of binary data files. The readers read by offset
/// and check every value of a header before they use the value.

/// Opens a regular file for reading. Other files are refused: reading from a pipe could
/// block without limit. Returns false with a reason when the file cannot be opened.
[[nodiscard]] bool openDataFile(QFile& a_file, QString* a_pReason,
                                QIODevice::OpenMode a_eMode = QIODevice::ReadOnly);

/// The values that identify one of the system's own file formats.
struct DataFileKind
{
    const char* szName;      ///< for traces, for example "symbol data file"
    const char* szMagic;     ///< the first seven characters of a file
    std::uint32_t uiVersion; ///< the only supported version; follows the magic
};

/// Opens a file of a kind, reads its header and checks the magic and the version at the
/// header's start. On failure returns false with a reason; the file may then be open or
/// closed.
[[nodiscard]] bool openDataFileOfKind(QFile& a_file, const DataFileKind& a_kind, std::span<char> a_header,
                                      QString* a_pReason, QIODevice::OpenMode a_eMode = QIODevice::ReadOnly);

/// The trace text for a refused file.
[[nodiscard]] QString errorText(const DataFileKind& a_kind, const QFile& a_file, const QString& a_sReason);

/// The size that a header claims for its file minus the real size (bytes); negative
/// when the file is larger. The claimed size is `a_iHeaderBytes` plus a number of items
/// of equal size. A claim beyond 64 bits saturates.
[[nodiscard]] std::int64_t missingBytes(std::int64_t a_iHeaderBytes, std::uint64_t a_uiItems,
                                        std::uint32_t a_uiItemBytes, std::int64_t a_iFileSize);

/// Reads up to `a_iBytes` bytes from an offset on. Seeks only when the file is at
/// another position. Returns the number of bytes read: fewer when the file ends before,
/// 0 when it cannot be read.
[[nodiscard]] qint64 readAt(QFile& a_file, qint64 a_iOffset, void* a_pTarget, qint64 a_iBytes);

/// Reads records of one size from a file that is open unbuffered. Access in file order
/// reads several records in one read. Any other access costs one seek and reads a single
/// record. The buffer is part of the object; no memory is allocated.
class RecordBuffer
{
public:
    static constexpr qint64 s_iMaxRecord = qint64{16} * 1024; ///< bytes

    /// The record of at most s_iMaxRecord bytes at the offset, shorter where the
    /// file ends. Valid until the next call.
    [[nodiscard]] std::span<const char> record(QFile& a_file, qint64 a_iOffset, qint64 a_iBytes);

    /// Drops the buffered bytes; to be called before another file is read.
    void reset() { m_iHeld = 0; }

private:
    std::array<char, s_iMaxRecord> m_bytes{};
    qint64 m_iAt = 0; ///< offset of the buffered bytes in the file
    qint64 m_iHeld = 0;
};

/// Fills `a_iBytes` bytes with repetitions of the first `a_iPeriod` bytes. The period
/// must be at least 1. Does nothing when the period covers all bytes.
void repeat(void* a_pTarget, qint64 a_iPeriod, qint64 a_iBytes);

/// The little-endian number at an offset of a complete header.
template<typename Number>
[[nodiscard]] Number numberAt(const char* a_pHeader, std::size_t a_uiOffset)
{
    return qFromLittleEndian<Number>(a_pHeader + a_uiOffset);
}

/// The state of a class that reads files of several layouts: the file, the reader of
/// the layout that the header names, and the lock. The reader does not own the file.
/// Any thread may call; every operation locks.
template<typename Reader>
struct LayoutFile
{
    explicit LayoutFile(const QString& a_sPath)
        : file(a_sPath)
    {}

    /// Closes and reopens the file. `a_readHeader` opens the file, reads the header and
    /// returns the reader. On failure it sets sError and returns null, and the file is
    /// closed.
    template<typename ReadHeader>
    [[nodiscard]] bool open(const ReadHeader& a_readHeader)
    {
        const std::lock_guard lock(mutex);
        file.close();
        sError.clear();
        pReader.reset();
        pReader = a_readHeader();
        if (!pReader) {
            file.close();
        }
        return pReader != nullptr;
    }

    void close()
    {
        const std::lock_guard lock(mutex);
        file.close();
    }

    [[nodiscard]] bool isOpen()
    {
        const std::lock_guard lock(mutex);
        return file.isOpen();
    }

    [[nodiscard]] QString errorString()
    {
        const std::lock_guard lock(mutex);
        return sError;
    }

    /// The value that a getter of the reader returns; the type's default value when
    /// there is no reader.
    template<typename Value>
    [[nodiscard]] Value ask(Value (Reader::*a_pGetter)() const)
    {
        const std::lock_guard lock(mutex);
        return pReader ? (*pReader.*a_pGetter)() : Value{};
    }

    /// The items that the reader reads from the file; empty while the file is
    /// closed.
    template<typename Value>
    [[nodiscard]] Value read(Value (Reader::*a_pRead)(std::uint32_t, std::uint32_t), std::uint32_t a_uiStart,
                             std::uint32_t a_uiDuration)
    {
        const std::lock_guard lock(mutex);
        return file.isOpen() ? (*pReader.*a_pRead)(a_uiStart, a_uiDuration) : Value{};
    }

    QFile file;
    std::unique_ptr<Reader> pReader; ///< set by a successful open(); kept by close()
    QString sError;                  ///< why the last open() failed
    std::mutex mutex;
};

} // namespace Simulation

#endif
