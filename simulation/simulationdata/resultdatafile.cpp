#include "resultdatafile.h"

#include "simulationdata/io/constantratestream_p.h"
#include "simulationdata/io/datafile_p.h"
#include "simulationdata/io/trace_p.h"

#include <array>

namespace Simulation {

namespace {

constexpr const char* s_szSource = "simulation/simulationdata/resultdatafile";

constexpr DataFileKind s_kind{"result data file", "T&K-RDF", 0};

// The global header: magic (7 bytes), version (32 bits), data type (8 bits).
constexpr std::size_t s_uiTypeAt = 11;
constexpr std::size_t s_uiHeaderBytes = 12;

// With a constant rate, the next fields are the item rate (32-bit float, per second),
// the item count (64 bits), a further value (32 bits), and the items.
constexpr std::size_t s_uiFurtherValueAt = 12;
constexpr std::size_t s_uiRateHeaderBytes = 16;
constexpr std::uint32_t s_uiItemBytes = 2;

/// Reads the items of one data type.
class ISpecificReader
{
public:
    virtual ~ISpecificReader() = default;

    /// Reads the type's own header, which follows the global header. On failure,
    /// returns false with a reason, and the reader must not be used.
    [[nodiscard]] virtual bool init(QString* a_pReason) = 0;
    [[nodiscard]] virtual std::uint32_t length() const = 0;
    [[nodiscard]] virtual QByteArray readResultData(std::uint32_t a_uiStart, std::uint32_t a_uiDuration) = 0;
    [[nodiscard]] virtual float itemRate() const = 0;
    [[nodiscard]] virtual std::uint64_t itemCount() const = 0;
    [[nodiscard]] virtual std::int64_t missingBytes() const = 0;
};

/// The reader for a constant item rate.
class DT_CBR_Reader : public ISpecificReader
{
public:
    /// The file is not owned.
    explicit DT_CBR_Reader(QFile& a_file)
        : m_stream(a_file, s_uiHeaderBytes + s_uiRateHeaderBytes, s_uiItemBytes)
    {}

    bool init(QString* a_pReason) override
    {
        std::array<char, s_uiRateHeaderBytes> header{};
        if (!m_stream.readHeader(header, a_pReason)) {
            return false;
        }
        m_uiFurtherValue = numberAt<std::uint32_t>(header.data(), s_uiFurtherValueAt);
        return true;
    }

    std::uint32_t length() const override { return m_stream.length(); }

    QByteArray readResultData(std::uint32_t a_uiStart, std::uint32_t a_uiDuration) override
    {
        const ConstantRateStream::Span span = m_stream.span(a_uiStart, a_uiDuration);
        QByteArray items(m_stream.bytesOf(span), Qt::Uninitialized);
        items.truncate(m_stream.read(span, items.data()));
        return items;
    }

    float itemRate() const override { return m_stream.rate(); }
    std::uint64_t itemCount() const override { return m_stream.count(); }
    std::int64_t missingBytes() const override { return m_stream.missingBytes(); }

private:
    ConstantRateStream m_stream;
    std::uint32_t m_uiFurtherValue = 0; ///< read but not used; its meaning is unknown
};

} // namespace

struct ResultDataFile::State : LayoutFile<ISpecificReader>
{
    using LayoutFile::LayoutFile;

    /// The reader for the data type in the header. On failure, null with sError set.
    [[nodiscard]] std::unique_ptr<ISpecificReader> readHeader();
};

std::unique_ptr<ISpecificReader> ResultDataFile::State::readHeader()
{
    std::array<char, s_uiHeaderBytes> header{};
    if (!openDataFileOfKind(file, s_kind, header, &sError)) {
        return nullptr;
    }
    const auto uiType = numberAt<std::uint8_t>(header.data(), s_uiTypeAt);
    if (uiType != DT_CBR) {
        sError = QStringLiteral("data type %1, only %2 is known").arg(uiType).arg(DT_CBR);
        return nullptr;
    }
    std::unique_ptr<ISpecificReader> pNewReader = std::make_unique<DT_CBR_Reader>(file);
    if (!pNewReader->init(&sError)) {
        return nullptr;
    }
    return pNewReader;
}

ResultDataFile::ResultDataFile(const QString& a_sPath)
    : m_pState(std::make_unique<State>(a_sPath))
{}

ResultDataFile::~ResultDataFile() = default;

bool ResultDataFile::open()
{
    return m_pState->open([this] {
        std::unique_ptr<ISpecificReader> pReader = m_pState->readHeader();
        if (!pReader) {
            traceError(s_szSource, [this] { return errorText(s_kind, m_pState->file, m_pState->sError); });
        }
        return pReader;
    });
}

void ResultDataFile::close()
{
    m_pState->close();
}

bool ResultDataFile::isOpen() const
{
    return m_pState->isOpen();
}

QString ResultDataFile::errorString() const
{
    return m_pState->errorString();
}

ResultDataFile::ResultDataType ResultDataFile::resultDataType() const
{
    // A file of any other type cannot be opened. Without an open file the value is 0,
    // which is DT_CBR, too.
    return DT_CBR;
}

std::uint64_t ResultDataFile::itemCount() const
{
    return m_pState->ask(&ISpecificReader::itemCount);
}

float ResultDataFile::itemRate() const
{
    return m_pState->ask(&ISpecificReader::itemRate);
}

std::uint32_t ResultDataFile::length() const
{
    return m_pState->ask(&ISpecificReader::length);
}

std::int64_t ResultDataFile::missingBytes() const
{
    return m_pState->ask(&ISpecificReader::missingBytes);
}

void ResultDataFile::setPackageDuration(std::uint32_t /*a_uiDuration*/)
{}

QByteArray ResultDataFile::readResultData(std::uint32_t a_uiStart, std::uint32_t a_uiDuration)
{
    return m_pState->read(&ISpecificReader::readResultData, a_uiStart, a_uiDuration);
}

} // namespace Simulation
