#ifndef SIMULATIONDATA_PDWFILE_H
#define SIMULATIONDATA_PDWFILE_H

#include "simulationdata/simulationdata_export.h"

#include <QString>

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <vector>

/// A pulse descriptor word of 32 bytes. Its users define it; here its bytes are
/// copied and never looked at.
struct CPackedPDW;

/// Writes or reads a file of pulse descriptor words.
///
/// Records are written in blocks of up to 1000, each behind a header when the
/// file was made with headers. Reading knows of no headers: it gives 32 bytes
/// after 32 bytes, so a header comes back as if it were a record. Files to be
/// read with this class are written without.
///
/// An object belongs to one thread at a time. Regular files only.
class SIMULATIONDATA_EXPORT PDWFile
{
public:
    /// First word of a block header (little-endian, as all of them).
    static constexpr std::uint32_t s_uiBlockMagic = 0xFB746572;
    static constexpr std::uint32_t s_uiHeaderBytes = 32;
    static constexpr std::uint32_t s_uiRecordBytes = 32;
    static constexpr std::uint32_t s_uiRecordsPerBlock = 1000;

    /// Opens the file, for writing (what it held is lost at once) or else for
    /// reading. One trace when it cannot be opened; is_open() says so.
    PDWFile(const QString& a_sPath, bool a_bForWriting, bool a_bWriteHeaders);
    PDWFile(const PDWFile&) = delete;
    PDWFile& operator=(const PDWFile&) = delete;

    /// A writer writes what is buffered, as a last block that may be empty.
    virtual ~PDWFile();

    // The name is part of the interface.
    [[nodiscard]] bool is_open() const;

    /// Buffers a copy of the record; a full buffer is written first. Returns the
    /// number of records that are buffered now, 1 to 1000. Null buffers nothing.
    int addPDW(const CPackedPDW* a_pRecord);

    /// Writes the buffered records as one block, also when there are none. When
    /// that fails (a file that is not open for writing, a full disk), they are
    /// dropped, which is traced for the first failure of a file; no block behind
    /// a torn one is written.
    void write();

    /// Reads the next 32 bytes of the file and returns 32; what the file lacks
    /// of them is zero. The end is noticed when bytes are lacking, so after the
    /// last whole record comes one of zeros. From then on, and when nothing can
    /// be read, 0; the record is then left as it is.
    int getPDW(CPackedPDW* a_pRecord);

private:
    /// The eight words in front of a block.
    struct BlockHeader
    {
        std::uint32_t magic = s_uiBlockMagic;
        /// Words of the block in a header that is written; bytes of the header after it.
        std::uint32_t size = s_uiHeaderBytes / sizeof(std::uint32_t);
        std::uint32_t number = 0; ///< counts the blocks written
        std::uint32_t constant1 = 512;
        std::uint32_t constant2 = 2;
        std::uint32_t constant3 = 0;
        std::uint32_t count = 0; ///< records that are buffered
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
