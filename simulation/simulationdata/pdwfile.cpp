#include "pdwfile.h"

#include "simulationdata/io/trace_p.h"

#include <QFile>
#include <QFileInfo>
#include <QtEndian>

#include <array>
#include <cerrno>
#include <cstring>

using Simulation::traceError;

namespace {

constexpr const char* s_szSource = "simulation/simulationdata/pdwfile";

constexpr std::size_t s_uiBufferBytes = std::size_t{PDWFile::s_uiRecordsPerBlock} * PDWFile::s_uiRecordBytes;
constexpr std::size_t s_uiWordBytes = sizeof(std::uint32_t);

/// Whether the stream may open the file. Reading from a pipe could block without
/// limit, and a name with a NUL in it would open a different file.
bool isRegular(const QString& a_sPath, bool a_bForWriting)
{
    const QFileInfo info(a_sPath);
    return !a_sPath.contains(QChar::Null) && (info.isFile() || (a_bForWriting && !info.exists()));
}

} // namespace

PDWFile::PDWFile(const QString& a_sPath, bool a_bForWriting, bool a_bWriteHeaders)
    : m_bWriteHeaders(a_bWriteHeaders)
    , m_bForWriting(a_bForWriting)
    , m_sPath(a_sPath)
    , m_buffer(s_uiBufferBytes)
{
    QString sReason = QStringLiteral("is not a regular file");
    if (isRegular(a_sPath, a_bForWriting)) {
        m_stream.open(QFile::encodeName(a_sPath).constData(),
                      std::ios::binary | (a_bForWriting ? std::ios::out : std::ios::in));
        sReason = qt_error_string(errno);
    } else {
        m_stream.setstate(std::ios::failbit);
    }
    if (!m_stream.is_open()) {
        traceError(s_szSource, [&] {
            return QStringLiteral("Cannot open the pulse word file \"%1\": %2").arg(a_sPath, sReason);
        });
    }
}

PDWFile::~PDWFile()
{
    if (!m_bForWriting) {
        return;
    }
    write();
    // A full disk may be detected only now, when the stream writes its buffer.
    const bool bGood = m_stream.good();
    m_stream.close();
    if (bGood && !m_stream.good()) {
        traceWriteFailure();
    }
}

bool PDWFile::is_open() const
{
    return m_stream.is_open();
}

int PDWFile::addPDW(const CPackedPDW* a_pRecord)
{
    if (a_pRecord == nullptr) {
        return static_cast<int>(m_header.count);
    }
    if (m_header.count == s_uiRecordsPerBlock) {
        write();
    }
    std::memcpy(m_buffer.data() + bufferedBytes(), a_pRecord, s_uiRecordBytes);
    ++m_header.count;
    return static_cast<int>(m_header.count);
}

void PDWFile::write()
{
    // A failed write to a stream that is open for reading would also stop the
    // reading.
    if (m_bForWriting && m_stream.good() && m_stream.is_open()) {
        writeBlock();
        if (!m_stream.good()) {
            traceWriteFailure();
        }
    }
    m_header.count = 0;
    m_header.size = s_uiHeaderBytes;
}

void PDWFile::writeBlock()
{
    const std::size_t uiBytes = bufferedBytes();
    // Header and records, counted in words.
    m_header.size = static_cast<std::uint32_t>((s_uiHeaderBytes + uiBytes) / s_uiWordBytes);
    if (m_bWriteHeaders) {
        const std::array<std::uint32_t, s_uiHeaderBytes / s_uiWordBytes> words{
            m_header.magic,     m_header.size,      m_header.number, m_header.constant1,
            m_header.constant2, m_header.constant3, m_header.count,  m_header.constant4};
        std::array<char, s_uiHeaderBytes> bytes{};
        qToLittleEndian<std::uint32_t>(words.data(), static_cast<qsizetype>(words.size()), bytes.data());
        m_stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    }
    m_stream.write(m_buffer.data(), static_cast<std::streamsize>(uiBytes));
    if (m_stream.good()) {
        ++m_header.number;
    }
}

int PDWFile::getPDW(CPackedPDW* a_pRecord)
{
    if (a_pRecord == nullptr || m_bForWriting || !m_stream.is_open() || !m_stream.good()) {
        return 0;
    }
    std::array<char, s_uiRecordBytes> bytes{};
    m_stream.read(bytes.data(), s_uiRecordBytes);
    if (m_stream.bad()) {
        traceError(s_szSource, [&] {
            return QStringLiteral("Cannot read the pulse word file \"%1\": %2")
                .arg(m_sPath, qt_error_string(errno));
        });
        return 0;
    }
    std::memcpy(static_cast<void*>(a_pRecord), bytes.data(), s_uiRecordBytes);
    return static_cast<int>(s_uiRecordBytes);
}

std::size_t PDWFile::bufferedBytes() const
{
    return std::size_t{m_header.count} * s_uiRecordBytes;
}

void PDWFile::traceWriteFailure() const
{
    traceError(s_szSource, [&] {
        return QStringLiteral("Cannot write the pulse word file \"%1\" after %2 blocks: %3")
            .arg(m_sPath, QString::number(m_header.number), qt_error_string(errno));
    });
}
