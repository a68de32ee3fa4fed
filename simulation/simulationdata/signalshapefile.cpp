#include "signalshapefile.h"

#include "signalshapefile_p.h"
#include "simulationdata/io/datafile_p.h"
#include "simulationdata/io/trace_p.h"
#include "simulationdata/simulationlimits.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <span>

namespace Simulation {

namespace {

constexpr const char* s_szSource = "simulation/simulationdata/signalshapefile";

constexpr DataFileKind s_kind{"signal shape file", s_szSignalShapeMagic, s_uiSignalShapeVersion};

// The global header, little-endian: magic (7 bytes), version (32 bits), then at
// these offsets bandwidth (32 bits, Hz), base power (float), number of records (64
// bits), records per second and points per spectrum (32 bits each). The records
// follow.
constexpr std::size_t s_uiBandwidthAt = 11;
constexpr std::size_t s_uiBasePowerAt = 15;
constexpr std::size_t s_uiRecordCountAt = 19;
constexpr std::size_t s_uiRecordsPerSecondAt = 27;
constexpr std::size_t s_uiPointsPerSpectrumAt = 31;
constexpr std::size_t s_uiHeaderBytes = 35;

// A record: eight reserved bytes, two levels (floats), then the points (floats).
constexpr std::size_t s_uiLevelAAt = 8;
constexpr std::size_t s_uiLevelBAt = 12;
constexpr std::uint32_t s_uiRecordHeaderBytes = 16;

constexpr float s_fMillisecondsPerSecond = 1000.0F;

/// A spectrum up to this size (bytes) is allocated even when the file is smaller.
constexpr std::uint64_t s_uiHarmlessBytes = std::uint64_t{1024} * 1024;

std::uint32_t recordDuration(std::uint32_t a_uiRecordsPerSecond)
{
    if (a_uiRecordsPerSecond == 0) {
        return 0;
    }
    // Calculated in single precision throughout: 25 records per second give 40 ms.
    // Multiplied in double precision, the rounded quotient 0.04F would give 39 ms.
    const float fSeconds = 1.0F / static_cast<float>(a_uiRecordsPerSecond);
    return static_cast<std::uint32_t>(std::floor(fSeconds * s_fMillisecondsPerSecond));
}

} // namespace

SignalShapeFile::SignalShapeFile(const QString& a_sPath)
    : m_pFile(std::make_unique<QFile>(a_sPath))
    , m_pRecords(std::make_unique<RecordBuffer>())
{}

SignalShapeFile::~SignalShapeFile() = default;

bool SignalShapeFile::open()
{
    const std::lock_guard lock(m_mutex);
    m_pFile->close();
    reset();
    if (!readGlobalHeader()) {
        m_pFile->close();
        reset();
        traceError(s_szSource, [&] { return errorText(s_kind, *m_pFile, m_sError); });
        return false;
    }
    m_sError.clear();
    if (!hasRecords()) {
        traceError(s_szSource, [&] {
            return QStringLiteral("\"%1\" has no usable record: %2 records of %3 points, %4 per second")
                .arg(m_pFile->fileName(), QString::number(m_uiRecordCount),
                     QString::number(m_uiPointsPerSpectrum), QString::number(m_uiRecordsPerSecond));
        });
    }
    return true;
}

/// Resets all values that were read from the file. The package duration, which the
/// caller sets, stays.
void SignalShapeFile::reset()
{
    m_uiRecordCount = 0;
    m_uiRecordsPerSecond = 0;
    m_uiRecordDuration = 0;
    m_uiPointsPerSpectrum = 0;
    m_uiRecordSize = 0;
    m_uiVersion = 0;
    m_uiBandwidth = 0;
    m_fBasePower = 0.0F;
    m_spectrum.clear();
    m_fMaxLevel = 0.0F;
    m_fSignalLevel = 0.0F;
    m_uiCurrentPos = 0;
    m_pRecords->reset();
    m_iMissingBytes = 0;
    m_bTruncated = false;
}

bool SignalShapeFile::readGlobalHeader()
{
    std::array<char, s_uiHeaderBytes> header{};
    if (!openDataFileOfKind(*m_pFile, s_kind, header, &m_sError,
                            QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        return false;
    }
    m_uiVersion = s_kind.uiVersion;
    m_uiBandwidth = numberAt<std::uint32_t>(header.data(), s_uiBandwidthAt);
    m_fBasePower = numberAt<float>(header.data(), s_uiBasePowerAt);
    m_uiRecordCount = numberAt<std::uint64_t>(header.data(), s_uiRecordCountAt);
    m_uiRecordsPerSecond = numberAt<std::uint32_t>(header.data(), s_uiRecordsPerSecondAt);
    m_uiPointsPerSpectrum = numberAt<std::uint32_t>(header.data(), s_uiPointsPerSpectrumAt);
    const qint64 iFileSize = m_pFile->size();
    if (!checkSpectrumSize(static_cast<std::uint64_t>(iFileSize))) {
        return false;
    }
    m_uiRecordDuration = recordDuration(m_uiRecordsPerSecond);
    m_uiRecordSize = s_uiRecordHeaderBytes + m_uiPointsPerSpectrum * std::uint32_t{sizeof(float)};
    m_iMissingBytes = Simulation::missingBytes(s_uiHeaderBytes, m_uiRecordCount, m_uiRecordSize, iFileSize);
    m_spectrum.assign(m_uiPointsPerSpectrum, 0.0F);
    return true;
}

/// Checks the size before memory is allocated: a header of 35 bytes can claim a
/// spectrum of 16 GiB. Returns false and sets the error text when the size is too large.
bool SignalShapeFile::checkSpectrumSize(std::uint64_t a_uiFileSize)
{
    const std::uint64_t uiBytes = std::uint64_t{m_uiPointsPerSpectrum} * sizeof(float);
    if (uiBytes > std::max(a_uiFileSize, s_uiHarmlessBytes)) {
        m_sError = QStringLiteral("spectra of %1 points in a file of %2 bytes")
                       .arg(QString::number(m_uiPointsPerSpectrum), QString::number(a_uiFileSize));
        return false;
    }
    // The size of a record is stored in 32 bits, so it is bounded even when the limit
    // is higher.
    constexpr std::uint64_t uiLargest = std::numeric_limits<std::uint32_t>::max() - s_uiRecordHeaderBytes;
    if (uiBytes > std::min(Limits::value(Limits::DataBytes), uiLargest)) {
        m_sError = QStringLiteral("spectra of %1 points: %2")
                       .arg(QString::number(m_uiPointsPerSpectrum), Limits::exceeded(Limits::DataBytes));
        return false;
    }
    return true;
}

void SignalShapeFile::close()
{
    const std::lock_guard lock(m_mutex);
    m_pFile->close();
}

bool SignalShapeFile::isOpen() const
{
    const std::lock_guard lock(m_mutex);
    return m_pFile->isOpen();
}

QString SignalShapeFile::errorString() const
{
    return locked(m_sError);
}

std::uint32_t SignalShapeFile::version() const
{
    return locked(m_uiVersion);
}

std::uint32_t SignalShapeFile::bandwidth() const
{
    return locked(m_uiBandwidth);
}

float SignalShapeFile::basePower() const
{
    return locked(m_fBasePower);
}

std::uint64_t SignalShapeFile::recordCount() const
{
    return locked(m_uiRecordCount);
}

std::uint32_t SignalShapeFile::recordsPerSecond() const
{
    return locked(m_uiRecordsPerSecond);
}

std::uint32_t SignalShapeFile::pointsPerSpectrum() const
{
    return locked(m_uiPointsPerSpectrum);
}

std::uint32_t SignalShapeFile::duration() const
{
    const std::lock_guard lock(m_mutex);
    return m_uiRecordDuration * static_cast<std::uint32_t>(m_uiRecordCount);
}

std::int64_t SignalShapeFile::missingBytes() const
{
    return locked(m_iMissingBytes);
}

void SignalShapeFile::setPackageDuration(std::uint32_t a_uiDuration)
{
    const std::lock_guard lock(m_mutex);
    m_uiPackageDuration = a_uiDuration;
}

float SignalShapeFile::maxLevelInSpectrum() const
{
    return locked(m_fMaxLevel);
}

float SignalShapeFile::signalLevelInSpectrum() const
{
    return locked(m_fSignalLevel);
}

bool SignalShapeFile::hasRecords() const
{
    return !m_spectrum.empty() && m_uiRecordDuration != 0 && m_uiRecordCount != 0;
}

std::uint64_t SignalShapeFile::posInFile(std::uint32_t a_uiTime) const
{
    // The record is floor(time / record duration) modulo the number of records.
    // Both factors of the product are below 2^32, so 64 bits hold the sum for any
    // header.
    const std::uint64_t uiIndex = (a_uiTime / m_uiRecordDuration) % m_uiRecordCount;
    return m_uiRecordSize * uiIndex + s_uiHeaderBytes;
}

void SignalShapeFile::readSpectrum(std::uint32_t a_uiTime)
{
    const std::lock_guard lock(m_mutex);
    if (!m_pFile->isOpen() || m_uiPackageDuration == 0 || !hasRecords()) {
        return;
    }
    const std::uint64_t uiPos = posInFile(a_uiTime % m_uiPackageDuration);
    if (uiPos == m_uiCurrentPos) {
        return;
    }
    const bool bTruncated = !readRecord(uiPos);
    m_uiCurrentPos = uiPos;
    // A signal may play for hours: one trace for a run of missing records is
    // enough.
    if (bTruncated && !m_bTruncated) {
        traceError(s_szSource, [&] {
            return QStringLiteral(
                       "The signal shape file \"%1\" of %2 bytes ends before its record of %3 bytes at %4")
                .arg(m_pFile->fileName(), QString::number(m_pFile->size()), QString::number(m_uiRecordSize),
                     QString::number(uiPos));
        });
    }
    m_bTruncated = bTruncated;
}

/// Loads the record. Returns false when the file ends within the record or before it.
bool SignalShapeFile::readRecord(std::uint64_t a_uiPos)
{
    constexpr std::uint64_t uiLargest = std::numeric_limits<qint64>::max() - RecordBuffer::s_iMaxRecord;
    if (a_uiPos > uiLargest) {
        return false;
    }
    const auto iPos = static_cast<qint64>(a_uiPos);
    const qint64 iBytes = m_uiRecordSize - s_uiRecordHeaderBytes;
    const bool bSmall = m_uiRecordSize <= RecordBuffer::s_iMaxRecord;
    const std::span<const char> record =
        m_pRecords->record(*m_pFile, iPos, bSmall ? m_uiRecordSize : s_uiRecordHeaderBytes);
    if (record.size() < s_uiRecordHeaderBytes) {
        return false;
    }
    takeLevels(record.data());
    qint64 iRead = 0;
    if (bSmall) {
        iRead = static_cast<qint64>(record.size()) - s_uiRecordHeaderBytes;
        std::memcpy(m_spectrum.data(), record.data() + s_uiRecordHeaderBytes,
                    static_cast<std::size_t>(iRead));
    } else {
        m_pRecords->reset();
        iRead = readAt(*m_pFile, iPos + s_uiRecordHeaderBytes, m_spectrum.data(), iBytes);
    }
    // Converts in place; does nothing on a little-endian processor.
    qFromLittleEndian<float>(m_spectrum.data(), iRead / qint64{sizeof(float)}, m_spectrum.data());
    return iRead == iBytes;
}

/// Takes the two levels from the header of a record. Their order is not fixed: the
/// larger one is the signal level. When one of them is NaN, level A is the signal
/// level.
void SignalShapeFile::takeLevels(const char* a_pRecord)
{
    const auto fLevelA = numberAt<float>(a_pRecord, s_uiLevelAAt);
    const auto fLevelB = numberAt<float>(a_pRecord, s_uiLevelBAt);
    const bool bBIsLarger = fLevelB > fLevelA;
    m_fMaxLevel = bBIsLarger ? fLevelA : fLevelB;
    m_fSignalLevel = bBIsLarger ? fLevelB : fLevelA;
}

} // namespace Simulation
