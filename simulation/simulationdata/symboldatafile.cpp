#include "symboldatafile.h"

#include "simulationdata/io/constantratestream_p.h"
#include "simulationdata/io/datafile_p.h"
#include "simulationdata/io/trace_p.h"

#include <array>

namespace Simulation {

namespace {

constexpr const char* s_szSource = "simulation/simulationdata/symboldatafile";

constexpr DataFileKind s_kind{"symbol data file", "T&K-SDF", 0};

// The global header: magic (7 bytes), version (32 bits), 16 unused bytes (11 to 26),
// symbol valency and layout (8 bits each).
constexpr std::size_t s_uiValencyAt = 27;
constexpr std::size_t s_uiLayoutAt = 28;
constexpr std::size_t s_uiHeaderBytes = 29;

constexpr std::uint8_t s_uiConstantRate = 0;

// With a constant rate, the next fields are the symbol rate (32-bit float, per
// second), the symbol count (64 bits), and the symbols.
constexpr std::size_t s_uiRateHeaderBytes = 12;
constexpr std::uint32_t s_uiSymbolBytes = 1;

/// Reads the symbols of one layout.
class ISpecificReader
{
public:
    virtual ~ISpecificReader() = default;

    /// Reads the layout's own header, which follows the global header. On failure,
    /// returns false with a reason, and the reader must not be used.
    [[nodiscard]] virtual bool init(QString* a_pReason) = 0;
    [[nodiscard]] virtual std::vector<std::uint8_t> readSymbols(std::uint32_t a_uiStart,
                                                                std::uint32_t a_uiDuration) = 0;
    [[nodiscard]] virtual std::uint32_t length() const = 0;
    [[nodiscard]] virtual float symbolRate() const = 0;
    virtual void setSymbolRate(std::uint32_t a_uiRate) = 0;
    [[nodiscard]] virtual std::uint64_t symbolCount() const = 0;
    [[nodiscard]] virtual std::int64_t missingBytes() const = 0;
};

/// The reader for the layout with a constant symbol rate.
class CBRReader : public ISpecificReader
{
public:
    /// The file is not owned.
    explicit CBRReader(QFile& a_file)
        : m_stream(a_file, s_uiHeaderBytes + s_uiRateHeaderBytes, s_uiSymbolBytes)
    {}

    bool init(QString* a_pReason) override
    {
        std::array<char, s_uiRateHeaderBytes> header{};
        return m_stream.readHeader(header, a_pReason);
    }

    std::vector<std::uint8_t> readSymbols(std::uint32_t a_uiStart, std::uint32_t a_uiDuration) override
    {
        const ConstantRateStream::Span span = m_stream.span(a_uiStart, a_uiDuration);
        std::vector<std::uint8_t> symbols(static_cast<std::size_t>(m_stream.bytesOf(span)));
        const qint64 iRead = m_stream.read(span, reinterpret_cast<char*>(symbols.data()));
        symbols.resize(static_cast<std::size_t>(iRead));
        return symbols;
    }

    std::uint32_t length() const override { return m_stream.length(); }
    float symbolRate() const override { return m_stream.rate(); }
    void setSymbolRate(std::uint32_t /*a_uiRate*/) override {}
    std::uint64_t symbolCount() const override { return m_stream.count(); }
    std::int64_t missingBytes() const override { return m_stream.missingBytes(); }

private:
    ConstantRateStream m_stream;
};

} // namespace

struct SymbolDataFile::State : LayoutFile<ISpecificReader>
{
    using LayoutFile::LayoutFile;

    /// The reader for the layout in the header. On failure, null with sError set.
    [[nodiscard]] std::unique_ptr<ISpecificReader> readHeader();

    QString sModulation;
    std::uint8_t uiSymbolValency = 0;
};

std::unique_ptr<ISpecificReader> SymbolDataFile::State::readHeader()
{
    std::array<char, s_uiHeaderBytes> header{};
    uiSymbolValency = 0;
    if (!openDataFileOfKind(file, s_kind, header, &sError)) {
        return nullptr;
    }
    const auto uiLayout = numberAt<std::uint8_t>(header.data(), s_uiLayoutAt);
    if (uiLayout != s_uiConstantRate) {
        sError = QStringLiteral("data layout %1, only %2 is known").arg(uiLayout).arg(s_uiConstantRate);
        return nullptr;
    }
    std::unique_ptr<ISpecificReader> pNewReader = std::make_unique<CBRReader>(file);
    if (!pNewReader->init(&sError)) {
        return nullptr;
    }
    uiSymbolValency = numberAt<std::uint8_t>(header.data(), s_uiValencyAt);
    return pNewReader;
}

SymbolDataFile::SymbolDataFile(const QString& a_sPath)
    : m_pState(std::make_unique<State>(a_sPath))
{}

SymbolDataFile::~SymbolDataFile() = default;

bool SymbolDataFile::open()
{
    return m_pState->open([this] {
        std::unique_ptr<ISpecificReader> pReader = m_pState->readHeader();
        if (!pReader) {
            traceError(s_szSource, [this] { return errorText(s_kind, m_pState->file, m_pState->sError); });
        }
        return pReader;
    });
}

void SymbolDataFile::close()
{
    m_pState->close();
}

bool SymbolDataFile::isOpen() const
{
    return m_pState->isOpen();
}

QString SymbolDataFile::errorString() const
{
    return m_pState->errorString();
}

QString SymbolDataFile::modulation() const
{
    const std::lock_guard lock(m_pState->mutex);
    return m_pState->sModulation;
}

std::uint8_t SymbolDataFile::symbolValency() const
{
    const std::lock_guard lock(m_pState->mutex);
    return m_pState->uiSymbolValency;
}

std::uint64_t SymbolDataFile::symbolCount() const
{
    return m_pState->ask(&ISpecificReader::symbolCount);
}

float SymbolDataFile::symbolRate() const
{
    return m_pState->ask(&ISpecificReader::symbolRate);
}

void SymbolDataFile::setSymbolRate(std::uint32_t a_uiRate)
{
    const std::lock_guard lock(m_pState->mutex);
    if (m_pState->pReader) {
        m_pState->pReader->setSymbolRate(a_uiRate);
    }
}

std::uint32_t SymbolDataFile::length() const
{
    return m_pState->ask(&ISpecificReader::length);
}

std::int64_t SymbolDataFile::missingBytes() const
{
    return m_pState->ask(&ISpecificReader::missingBytes);
}

void SymbolDataFile::setPackageDuration(std::uint32_t /*a_uiDuration*/)
{}

std::vector<std::uint8_t> SymbolDataFile::readSymbols(std::uint32_t a_uiStart, std::uint32_t a_uiDuration)
{
    return m_pState->read(&ISpecificReader::readSymbols, a_uiStart, a_uiDuration);
}

} // namespace Simulation
