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

/// What the readers of binary data files share. All of them read by offset,
/// and take nothing that a header says for granted.

/// Opens the file for reading. Regular files only: a pipe could keep us waiting
/// for ever. False with a reason.
[[nodiscard]] bool openDataFile(QFile& a_file, QString* a_pReason,
                                QIODevice::OpenMode a_eMode = QIODevice::ReadOnly);

/// What tells one of our own formats from another.
struct DataFileKind
{
    const char* szName;      ///< in traces, for example "symbol data file"
    const char* szMagic;     ///< the first seven characters of a file
    std::uint32_t uiVersion; ///< the only one that is read; stands behind the magic
};

/// Opens a file of a kind and reads its header, which begins with the magic and
/// the version: both are checked. False with a reason; the file may then be
/// open or not.
[[nodiscard]] bool openDataFileOfKind(QFile& a_file, const DataFileKind& a_kind, std::span<char> a_header,
                                      QString* a_pReason, QIODevice::OpenMode a_eMode = QIODevice::ReadOnly);

/// What the trace of a refused file says.
[[nodiscard]] QString refusal(const DataFileKind& a_kind, const QFile& a_file, const QString& a_sReason);

/// How many bytes a file has fewer than its header claims with a count of items
/// of equal size; negative when it has more. A claim beyond 64 bits saturates.
[[nodiscard]] std::int64_t missingBytes(std::int64_t a_iHeaderBytes, std::uint64_t a_uiItems,
                                        std::uint32_t a_uiItemBytes, std::int64_t a_iFileSize);

/// Reads up to so many bytes from an offset on, without a seek where the file
/// stands there already. The number of bytes read: fewer when the file ends
/// before, 0 when it cannot be read.
[[nodiscard]] qint64 readAt(QFile& a_file, qint64 a_iOffset, void* a_pTarget, qint64 a_iBytes);

/// Reads records of one size from a file that is open unbuffered. Those that
/// follow each other are read ahead, any other costs one seek and its own bytes.
/// Nothing is allocated.
class RecordBuffer
{
public:
    static constexpr qint64 s_iMaxRecord = qint64{16} * 1024; ///< bytes

    /// The record of at most s_iMaxRecord bytes that begins there, cut where the
    /// file ends. Valid until the next call.
    [[nodiscard]] std::span<const char> record(QFile& a_file, qint64 a_iOffset, qint64 a_iBytes);

    /// Forgets what was read, for another file.
    void reset() { m_iHeld = 0; }

private:
    std::array<char, s_iMaxRecord> m_bytes{};
    qint64 m_iAt = 0; ///< where the bytes begin in the file
    qint64 m_iHeld = 0;
};

/// Fills memory with repetitions of its first bytes, of which there is one at
/// least. Nothing to do where they are all of it.
void repeat(void* a_pTarget, qint64 a_iPeriod, qint64 a_iBytes);

/// The little-endian number at an offset of a header that was read whole.
template<typename Number>
[[nodiscard]] Number numberAt(const char* a_pHeader, std::size_t a_uiOffset)
{
    return qFromLittleEndian<Number>(a_pHeader + a_uiOffset);
}

/// What a class keeps for a file whose header names one of several layouts. The
/// layout's reader does not own the file; every operation locks.
template<typename Reader>
struct LayoutFile
{
    explicit LayoutFile(const QString& a_sPath)
        : file(a_sPath)
    {}

    /// Opens the file anew. `a_readHeader` opens it too, reads the header and
    /// returns the reader; null, with sError set, closes the file.
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

    /// What a getter of the reader gives, or the default value without a reader.
    template<typename Value>
    [[nodiscard]] Value ask(Value (Reader::*a_pGetter)() const)
    {
        const std::lock_guard lock(mutex);
        return pReader ? (*pReader.*a_pGetter)() : Value{};
    }

    /// What the reader reads from the file, or nothing while that is closed.
    template<typename Value>
    [[nodiscard]] Value read(Value (Reader::*a_pRead)(std::uint32_t, std::uint32_t), std::uint32_t a_uiStart,
                             std::uint32_t a_uiDuration)
    {
        const std::lock_guard lock(mutex);
        return file.isOpen() ? (*pReader.*a_pRead)(a_uiStart, a_uiDuration) : Value{};
    }

    QFile file;
    std::unique_ptr<Reader> pReader; ///< there while the file is open, and stays
    QString sError;                  ///< why the last open() failed
    std::mutex mutex;
};

} // namespace Simulation

#endif
