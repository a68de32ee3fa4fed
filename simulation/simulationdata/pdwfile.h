#ifndef SIMULATIONDATA_PDWFILE_H
#define SIMULATIONDATA_PDWFILE_H

#include "simulationdata/simulationdata_export.h"

#include <QString>

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <vector>

/// A pulse descriptor word of 32 bytes. The applications define its content; here
/// its bytes are only copied.
struct CPackedPDW;

/// Writes or reads a file of pulse descriptor words.
///
/// Records are written in blocks of up to 1000, each after a header of 32 bytes
/// when the file is made with headers. Reading does not recognise headers: it
/// returns 32 bytes at a time, so a header is returned as if it were a record.
/// Files that this class shall read are written without headers.
///
/// An object may be used by one thread at a time. Regular files only.
class SIMULATIONDATA_EXPORT PDWFile
{
public:
    /// First word of a block header; all words are little-endian.
    static constexpr std::uint32_t s_uiBlockMagic = 0xFB746572;
    static constexpr std::uint32_t s_uiHeaderBytes = 32;
    static constexpr std::uint32_t s_uiRecordBytes = 32;
    static constexpr std::uint32_t s_uiRecordsPerBlock = 1000;

    /// Opens the file for writing, which empties it at once, or else for reading.
    /// One trace when it cannot be opened; is_open() is false then.
    PDWFile(const QString& a_sPath, bool a_bForWriting, bool a_bWriteHeaders);
    PDWFile(const PDWFile&) = delete;
    PDWFile& operator=(const PDWFile&) = delete;

    /// A writer writes the buffered records as a last block, which may be empty.
    virtual ~PDWFile();

    // The name is part of the interface.
    [[nodiscard]] bool is_open() const;

    /// Buffers a copy of the record; a full buffer is written first. Returns the
    /// number of records that are now buffered, 1 to 1000. Null buffers nothing and
    /// may return 0.
    int addPDW(const CPackedPDW* a_pRecord);

    /// Writes the buffered records as one block, even when there are none. When
    /// that fails (the file is not open for writing, the disk is full), the records
    /// are dropped, and no further block is written. The first failed write of a
    /// file is traced.
    void write();

    /// Reads the next 32 bytes of the file into the record and returns 32; bytes
    /// that the file lacks are zero. The end is noticed only when bytes are
    /// lacking, so one record of zeros follows the last complete record. After
    /// that, and when the file cannot be read, returns 0 and leaves the record
    /// unchanged.
    int getPDW(CPackedPDW* a_pRecord);

private:
    /// The eight 32-bit words before a block, in the order of the file.
    struct BlockHeader
    {
        std::uint32_t magic = s_uiBlockMagic;
        /// In a written header: size of header and records (32-bit words). Unused
        /// between two writes.
        std::uint32_t size = s_uiHeaderBytes / sizeof(std::uint32_t);
        std::uint32_t number = 0; ///< blocks written before this one
        std::uint32_t constant1 = 512;
        std::uint32_t constant2 = 2;
        std::uint32_t constant3 = 0;
        std::uint32_t count = 0; ///< records in the buffer
        std::uint32_t constant4 = 8;
    };

    void writeBlock();
    void traceWriteFailure() const;
    [[nodiscard]] std::size_t bufferedBytes() const;

    bool m_bWriteHeaders;
    bool m_bForWriting;
    QString m_sPath;
    std::fstream m_stream;
    BlockHeader m_header;
    std::vector<char> m_buffer;
};

#endif
