#include "shapelevels.h"

#include "console/jsonreport.h"
#include "console/report.h"
#include "console/valuetexts.h"

#include "simulationdata/signalshapefile.h"

#include <algorithm>
#include <limits>

namespace SimulationTool {

namespace {

constexpr std::uint64_t s_uiShownRecords = 10;
constexpr std::uint64_t s_uiRecordHeaderBytes = 16;

/// Levels are shown only for files with at most this number of records. A record lasts
/// at most 1 s, so the duration of such a file (ms) fits into 32 bits.
constexpr std::uint64_t s_uiMaxRecords = 4'000'000;

/// The number of records that are complete in the file.
std::uint64_t wholeRecords(const Simulation::SignalShapeFile& a_reader)
{
    const std::int64_t iMissing = std::max<std::int64_t>(a_reader.missingBytes(), 0);
    const std::uint64_t uiRecordBytes =
        s_uiRecordHeaderBytes + sizeof(float) * std::uint64_t{a_reader.pointsPerSpectrum()};
    const std::uint64_t uiLost = (static_cast<std::uint64_t>(iMissing) + uiRecordBytes - 1) / uiRecordBytes;
    return a_reader.recordCount() - std::min(uiLost, a_reader.recordCount());
}

/// The range of the added levels; values that are not a number are ignored.
struct Range
{
    void add(float a_fLevel)
    {
        minimum = std::min(minimum, a_fLevel);
        maximum = std::max(maximum, a_fLevel);
    }

    float minimum = std::numeric_limits<float>::infinity();
    float maximum = -std::numeric_limits<float>::infinity();
};

} // namespace

void describeLevels(Report& a_report, Simulation::SignalShapeFile& a_reader)
{
    const std::uint64_t uiRecords = wholeRecords(a_reader);
    const std::uint32_t uiDuration = a_reader.duration();
    if (uiRecords == 0 || uiDuration == 0 || a_reader.recordCount() > s_uiMaxRecords) {
        a_report.field(nullptr, QStringLiteral("Levels"), QString());
        return;
    }
    const auto uiRecordDuration = static_cast<std::uint32_t>(uiDuration / a_reader.recordCount());
    const std::uint64_t uiStep = (uiRecords + s_uiShownRecords - 1) / s_uiShownRecords;
    a_reader.setPackageDuration(uiDuration);
    Range range;
    QList<ReportRow> rows;
    for (std::uint64_t uiRecord = 0; uiRecord < uiRecords; ++uiRecord) {
        const auto uiTime = static_cast<std::uint32_t>(uiRecord * uiRecordDuration);
        a_reader.readSpectrum(uiTime);
        range.add(a_reader.signalLevelInSpectrum());
        if (uiRecord % uiStep == 0) {
            rows.append({countValue(uiRecord), countValue(uiTime),
                         levelValue(a_reader.signalLevelInSpectrum()),
                         levelValue(a_reader.maxLevelInSpectrum())});
        }
    }
    a_report.value("level_min", jsonNumber(range.minimum));
    a_report.value("level_max", jsonNumber(range.maximum));
    a_report.field(nullptr, QStringLiteral("Levels"),
                   QStringLiteral("%1 to %2").arg(levelText(range.minimum), levelText(range.maximum)));
    a_report.titledTable("shown_records", QStringLiteral("Records"),
                         {{QStringLiteral("Record"), true, 0, "record"},
                          {QStringLiteral("Time (ms)"), true, 0, "time_ms"},
                          {QStringLiteral("Level"), true, 0, "level"},
                          {QStringLiteral("Lower level"), true, 0, "lower_level"}},
                         rows);
}

} // namespace SimulationTool
