#include "datafiledetails.h"

#include "console/inputfile.h"
#include "console/jsonreport.h"
#include "console/report.h"
#include "console/valuetexts.h"
#include "shapelevels.h"

#include "simulationdata/audiofile.h"
#include "simulationdata/resultdatafile.h"
#include "simulationdata/signalpackagecheck.h"
#include "simulationdata/signalpackagefolder.h"
#include "simulationdata/signalshapefile.h"
#include "simulationdata/symboldatafile.h"
#include "simulationdata/wavefilereader.h"

#include <QFileInfo>

#include <algorithm>

namespace SimulationTool {

namespace {

constexpr qsizetype s_iShownCuePoints = 20;
constexpr std::uint64_t s_uiMillisecondsPerSecond = 1000;

void describeFile(Report& a_report, const QString& a_sKind, const InputFile& a_file)
{
    a_report.heading(a_sKind);
    a_report.value("kind", a_sKind.toLower());
    a_report.field("file", QStringLiteral("File"), a_file.name());
    a_report.field("size_bytes", QStringLiteral("Size"),
                   countValue(static_cast<quint64>(QFileInfo(a_file.path()).size()), "byte"));
}

template<typename Reader>
Verdict openVerdict(Reader& a_reader)
{
    static_cast<void>(a_reader.open());
    return problemVerdict(Simulation::SignalPackageCheck::problemOf(a_reader));
}

QString rateText(float a_fRate)
{
    return shortNumber(a_fRate) + QStringLiteral(" per second");
}

ReportValue rateValue(float a_fRate)
{
    return {rateText(a_fRate), jsonNumber(a_fRate)};
}

ReportValue lengthValue(std::uint64_t a_uiMilliseconds)
{
    return {QStringLiteral("%1 ms").arg(a_uiMilliseconds), jsonCount(a_uiMilliseconds)};
}

ReportValue waveLengthValue(const Simulation::WaveFileReader& a_reader)
{
    const std::uint32_t uiRate = a_reader.format().sampleRate;
    return uiRate == 0 ? ReportValue(QStringLiteral("no sample rate"), QJsonValue())
                       : lengthValue(a_reader.length() * s_uiMillisecondsPerSecond / uiRate);
}

QString shapeText(const QString& a_sFile)
{
    Simulation::SignalShapeFile reader(a_sFile);
    if (!reader.open()) {
        return {};
    }
    return QStringLiteral("%1 records of %2 points, %3 per second, %4 wide")
        .arg(QString::number(reader.recordCount()), QString::number(reader.pointsPerSpectrum()),
             QString::number(reader.recordsPerSecond()), frequencyText(reader.bandwidth()));
}

/// An audio signal must meet more conditions than a readable wave file.
QString audioText(const QString& a_sFile)
{
    Simulation::WaveFileReader reader(a_sFile);
    if (!Simulation::AudioFile(a_sFile).open() || !reader.open()) {
        return {};
    }
    return QStringLiteral("%1 bits mono, %2 frames, %3")
        .arg(QString::number(reader.format().bitsPerSample), QString::number(reader.length()),
             waveLengthValue(reader).text);
}

QString symbolText(const QString& a_sFile)
{
    Simulation::SymbolDataFile reader(a_sFile);
    if (!reader.open()) {
        return {};
    }
    return QStringLiteral("%1 symbols of valency %2, %3")
        .arg(QString::number(reader.symbolCount()), QString::number(reader.symbolValency()),
             rateText(reader.symbolRate()));
}

QString resultText(const QString& a_sFile)
{
    Simulation::ResultDataFile reader(a_sFile);
    if (!reader.open()) {
        return {};
    }
    return QStringLiteral("%1 items, %2")
        .arg(QString::number(reader.itemCount()), rateText(reader.itemRate()));
}

void describeCuePoints(Report& a_report, const QList<Simulation::WaveFileReader::CuePoint>& a_points)
{
    QList<ReportRow> rows;
    for (const auto& point : a_points.first(std::min(a_points.size(), s_iShownCuePoints))) {
        rows.append({countValue(point.id), countValue(point.position), point.label});
    }
    const QString sTitle =
        a_points.size() > s_iShownCuePoints
            ? QStringLiteral("Cue points, the first %1 of %2")
                  .arg(QString::number(s_iShownCuePoints), QString::number(a_points.size()))
            : QStringLiteral("Cue points");
    a_report.value("cue_point_count", a_points.size());
    a_report.titledTable("cue_points", sTitle,
                         {{QStringLiteral("ID"), true, 0, "id"},
                          {QStringLiteral("Frame"), true, 0, "frame"},
                          {QStringLiteral("Label"), false, 0, "label"}},
                         rows);
}

} // namespace

const std::array<PackageDataFile, 4> s_packageDataFiles{{
    {"Signal.ssf", "ssf", &Simulation::SignalPackageFolder::signalShapeFilePath, &shapeText},
    {"Signal.wav", "wav", &Simulation::SignalPackageFolder::audioFilePath, &audioText},
    {"Signal.sdf", "sdf", &Simulation::SignalPackageFolder::symbolDataFilePath, &symbolText},
    {"Signal.rdf", "rdf", &Simulation::SignalPackageFolder::resultDataFilePath, &resultText},
}};

Verdict describeShapeFile(Report& a_report, const InputFile& a_file)
{
    describeFile(a_report, QStringLiteral("Signal shape file"), a_file);
    Simulation::SignalShapeFile reader(a_file.path());
    Verdict verdict = openVerdict(reader);
    if (reader.isOpen()) {
        a_report.field("version", QStringLiteral("Version"), countValue(reader.version()));
        a_report.field("bandwidth_hz", QStringLiteral("Bandwidth"), frequencyValue(reader.bandwidth()));
        a_report.field("base_power", QStringLiteral("Base power"), numberValue(reader.basePower()));
        a_report.value("records_per_second", QJsonValue(qint64{reader.recordsPerSecond()}));
        a_report.field(
            "records", QStringLiteral("Records"),
            {QStringLiteral("%1, %2 per second")
                 .arg(QString::number(reader.recordCount()), QString::number(reader.recordsPerSecond())),
             jsonCount(reader.recordCount())});
        a_report.field("points_per_spectrum", QStringLiteral("Spectrum"),
                       {QStringLiteral("%1 points").arg(reader.pointsPerSpectrum()),
                        jsonCount(reader.pointsPerSpectrum())});
        a_report.field("duration_ms", QStringLiteral("Duration"), lengthValue(reader.duration()));
        describeLevels(a_report, reader);
    }
    return verdict;
}

Verdict describeSymbolFile(Report& a_report, const InputFile& a_file)
{
    describeFile(a_report, QStringLiteral("Symbol data file"), a_file);
    Simulation::SymbolDataFile reader(a_file.path());
    Verdict verdict = openVerdict(reader);
    if (reader.isOpen()) {
        a_report.field("valency", QStringLiteral("Valency"), countValue(reader.symbolValency()));
        a_report.field("symbols", QStringLiteral("Symbols"), countValue(reader.symbolCount()));
        a_report.field("rate_per_second", QStringLiteral("Rate"), rateValue(reader.symbolRate()));
        a_report.field("duration_ms", QStringLiteral("Duration"), lengthValue(reader.length()));
    }
    return verdict;
}

Verdict describeResultFile(Report& a_report, const InputFile& a_file)
{
    describeFile(a_report, QStringLiteral("Result data file"), a_file);
    Simulation::ResultDataFile reader(a_file.path());
    Verdict verdict = openVerdict(reader);
    if (reader.isOpen()) {
        a_report.field("items", QStringLiteral("Items"), countValue(reader.itemCount()));
        a_report.field("rate_per_second", QStringLiteral("Rate"), rateValue(reader.itemRate()));
        a_report.field("duration_ms", QStringLiteral("Duration"), lengthValue(reader.length()));
    }
    return verdict;
}

Verdict describeWaveFile(Report& a_report, const InputFile& a_file)
{
    describeFile(a_report, QStringLiteral("Wave file"), a_file);
    Simulation::WaveFileReader reader(a_file.path());
    Verdict verdict = openVerdict(reader);
    if (reader.isOpen()) {
        const Simulation::WaveFileReader::Format& format = reader.format();
        a_report.field("channels", QStringLiteral("Channels"), countValue(format.channels));
        a_report.value("samples_per_second", jsonCount(format.sampleRate));
        a_report.field("bits_per_sample", QStringLiteral("Samples"),
                       {QStringLiteral("%1 bits, %2 per second")
                            .arg(QString::number(format.bitsPerSample), QString::number(format.sampleRate)),
                        jsonCount(format.bitsPerSample)});
        a_report.value("bytes_per_frame", jsonCount(format.blockAlign));
        a_report.field("frames", QStringLiteral("Frames"),
                       {QStringLiteral("%1 of %2 bytes")
                            .arg(QString::number(reader.length()), QString::number(format.blockAlign)),
                        jsonCount(reader.length())});
        a_report.field("duration_ms", QStringLiteral("Duration"), waveLengthValue(reader));
        Simulation::AudioFile audio(a_file.path());
        const bool bUsable = audio.open();
        a_report.field("usable_in_packages", QStringLiteral("For packages"),
                       {bUsable ? yesNo(true) : QStringLiteral("no: ") + audio.errorString(), bUsable});
        describeCuePoints(a_report, reader.cuePoints());
    }
    return verdict;
}

} // namespace SimulationTool
