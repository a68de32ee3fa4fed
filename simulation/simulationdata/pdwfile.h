#ifndef SIMULATIONDATA_PDWFILE_H
#define SIMULATIONDATA_PDWFILE_H

#include "simulationdata/simulationdata_export.h"

#include <QString>

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <vector>

/// A pulse descriptor word of 32 bytes. The applications define its content; PDWFile
/// only copies its bytes.
struct CPackedPDW;

/// Writes or reads a file of pulse descriptor words.
///
/// Records are written in blocks of up to 1000. With headers, a header of 32 bytes
/// precedes each block. Reading does not recognise headers. It returns 32 bytes at a
/// time, so it returns a header like a record. Write without headers when this class
/// has to read the file.
///
/// An object may be used by one thread at a time. Only regular files are opened.
class SIMULATIONDATA_EXPORT PDWFile
{
public:
    /// First word of a block header; all words are little-endian.
    static constexpr std::uint32_t s_uiBlockMagic = 0xFB746572;
    static constexpr std::uint32_t s_uiHeaderBytes = 32;
    static constexpr std::uint32_t s_uiRecordBytes = 32;
    static constexpr std::uint32_t s_uiRecordsPerBlock = 1000;

    /// Opens the file. Opening for writing also empties the file. Traces once when the
    /// file cannot be opened; is_open() is then false.
    PDWFile(const QString& a_sPath, bool a_bForWriting, bool a_bWriteHeaders);
    PDWFile(const PDWFile&) = delete;
    PDWFile& operator=(const PDWFile&) = delete;

    /// A writer first writes the buffered records as the last block, which may be
    /// empty.
    virtual ~PDWFile();

    // The name is part of the interface.
    [[nodiscard]] bool is_open() const;

    /// Buffers a copy of the record. A full buffer is first written to the file.
    /// Returns the number of buffered records, 1 to 1000. Null is not buffered, and
    /// the result may then be 0.
    int addPDW(const CPackedPDW* a_pRecord);

    /// Writes the buffered records as one block, even when there are none. Writing
    /// fails when the file is not open for writing or the disk is full. The records
    /// are then dropped, and no further block is written. The first failed write of
    /// a file is traced.
    void write();

    /// Reads the next 32 bytes of the file into the record and returns 32. When the
    /// file has fewer bytes left, the rest of the record is zero. Only such a short
    /// read detects the end of the file: after a last record that is complete, one
    /// record of zeros is read. Every further call returns 0 and leaves the record
    /// unchanged. The same applies when the file cannot be read.
    int getPDW(CPackedPDW* a_pRecord);

private:
    /// The eight 32-bit words before a block, in the order of the file.
    struct BlockHeader
    {
        std::uint32_t magic = s_uiBlockMagic;
        /// Size of header and records of a written block (32-bit words). Unused
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
