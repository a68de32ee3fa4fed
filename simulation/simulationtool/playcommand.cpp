#include "playcommand.h"

#include "csvwriter.h"
#include "output.h"
#include "scenariofile.h"
#include "texttable.h"
#include "valuetexts.h"

#include "simulationdata/ipositionsettings.h"
#include "simulationdata/scenariodataxml.h"
#include "simulationdata/signalpackage.h"
#include "simulationdata/szenarioemitter.h"
#include "simulationdata/unresolvedsignalpackageprovider.h"

#include <QFileInfo>

#include <algorithm>

namespace SimulationTool {

namespace {

constexpr std::uint32_t s_uiDefaultWindow = 10'000; ///< ms
constexpr qsizetype s_iMaxIdWidth = 32;
constexpr double s_dHertzPerMegahertz = 1e6;
constexpr int s_iFrequencyDecimals = 6;  ///< MHz: to the hertz
constexpr int s_iCoordinateDecimals = 6; ///< degrees: to 0.1 m
constexpr int s_iMotionDecimals = 1;     ///< degrees and km/h

/// What an emitter does at one time.
struct Moment
{
    Moment(const Simulation::SzenarioEmitter& a_emitter, std::uint32_t a_uiTime)
        : time(a_uiTime)
        , active(a_emitter.isActiveAt(a_uiTime))
        , frequency(a_emitter.getFrequencyAt(a_uiTime))
        , position(a_emitter.getPositionAt(a_uiTime))
        , heading(a_emitter.headingAt(a_uiTime))
    {
        if (const Simulation::IPositionSettings* pPosition = a_emitter.positionSettings()) {
            speed = pPosition->speedAt(a_uiTime);
        }
        // A schedule goes on while its emitter is switched off or has ended.
        if (const auto package = active ? a_emitter.signalPackageAt(a_uiTime) : nullptr) {
            packageId = package->id();
        }
    }

    std::uint32_t time; ///< ms
    bool active;
    double frequency;          ///< Hz
    Simulation::TPos position; ///< degrees
    double heading;            ///< degrees
    double speed = 0.0;        ///< km/h; -1 before the first leg is done
    QString packageId;         ///< empty without a package
};

/// Where the rows of a play go.
class Sink
{
public:
    Sink() = default;
    Sink(const Sink&) = delete;
    Sink& operator=(const Sink&) = delete;
    virtual ~Sink() = default;

    [[nodiscard]] virtual bool begin() = 0;
    [[nodiscard]] virtual bool add(const QString& a_sEmitterId, const Moment& a_moment) = 0;
    /// Tells on standard error what went wrong, if anything did.
    [[nodiscard]] virtual bool end(bool a_bOk) = 0;
};

class TableSink : public Sink
{
public:
    TableSink(Output& a_output, const QStringList& a_ids, std::uint32_t a_uiTo)
        : m_output(a_output)
        , m_table({{QStringLiteral("Time (ms)"), true},
                   {QStringLiteral("Emitter"), false, s_iMaxIdWidth},
                   {QStringLiteral("Active")},
                   {QStringLiteral("Frequency (MHz)"), true},
                   {QStringLiteral("Longitude"), true},
                   {QStringLiteral("Latitude"), true},
                   {QStringLiteral("Heading"), true},
                   {QStringLiteral("Speed (km/h)"), true},
                   {QStringLiteral("Package")}})
    {
        for (const QString& id : a_ids) {
            m_table.fit({QString::number(a_uiTo),
                         id,
                         {},
                         {},
                         QStringLiteral("-179.000000"),
                         QStringLiteral("-89.000000")});
        }
    }

    bool begin() override
    {
        m_output.write(m_table.titles() + u'\n' + m_table.rule() + u'\n');
        return m_output.isOk();
    }

    bool add(const QString& a_sEmitterId, const Moment& a_moment) override
    {
        m_output.write(
            m_table.row({QString::number(a_moment.time), orDash(a_sEmitterId), yesNo(a_moment.active),
                         fixedNumber(a_moment.frequency / s_dHertzPerMegahertz, s_iFrequencyDecimals),
                         fixedNumber(a_moment.position.longitude, s_iCoordinateDecimals),
                         fixedNumber(a_moment.position.latitude, s_iCoordinateDecimals),
                         fixedNumber(a_moment.heading, s_iMotionDecimals),
                         a_moment.speed < 0.0 ? orDash({}) : fixedNumber(a_moment.speed, s_iMotionDecimals),
                         orDash(a_moment.packageId)}) +
            u'\n');
        return m_output.isOk();
    }

    // The output is watched by whoever owns it.
    bool end(bool a_bOk) override { return a_bOk; }

private:
    Output& m_output;
    TextTable m_table;
};

class CsvSink : public Sink
{
public:
    CsvSink(Output& a_output, const QString& a_sFile)
        : m_output(a_output)
        , m_sFile(a_sFile)
        , m_writer(a_sFile)
    {}

    bool begin() override
    {
        return m_writer.open() &&
               m_writer.writeRow(
                   {QStringLiteral("time_ms"), QStringLiteral("emitter"), QStringLiteral("active"),
                    QStringLiteral("frequency_hz"), QStringLiteral("longitude"), QStringLiteral("latitude"),
                    QStringLiteral("heading"), QStringLiteral("speed_kmh"), QStringLiteral("package")});
    }

    bool add(const QString& a_sEmitterId, const Moment& a_moment) override
    {
        ++m_uiRows;
        return m_writer.writeRow(
            {QString::number(a_moment.time), a_sEmitterId,
             a_moment.active ? QStringLiteral("true") : QStringLiteral("false"),
             CsvWriter::number(a_moment.frequency), CsvWriter::number(a_moment.position.longitude),
             CsvWriter::number(a_moment.position.latitude), CsvWriter::number(a_moment.heading),
             CsvWriter::number(a_moment.speed), a_moment.packageId});
    }

    bool end(bool a_bOk) override
    {
        if (!a_bOk || !m_writer.commit()) {
            complain(QStringLiteral("%1: %2").arg(m_sFile, m_writer.errorString()));
            return false;
        }
        m_output.write(QStringLiteral("%1 rows written\n").arg(m_uiRows));
        return true;
    }

private:
    Output& m_output;
    QString m_sFile;
    CsvWriter m_writer;
    std::uint64_t m_uiRows = 0;
};

/// The end of the window (ms).
std::uint32_t windowEnd(const PlayOptions& a_options, std::uint32_t a_uiDuration)
{
    if (a_options.to) {
        return *a_options.to;
    }
    return a_uiDuration != 0 ? std::min(a_uiDuration, s_uiDefaultWindow) : s_uiDefaultWindow;
}

bool playInto(Sink& a_sink, const PlayOptions& a_options, std::uint32_t a_uiTo,
              const QList<std::shared_ptr<Simulation::SzenarioEmitter>>& a_emitters)
{
    if (!a_sink.begin()) {
        return false;
    }
    for (std::uint64_t uiTime = a_options.from; uiTime < a_uiTo; uiTime += a_options.step) {
        for (const std::shared_ptr<Simulation::SzenarioEmitter>& emitter : a_emitters) {
            if (!a_sink.add(emitter->id(), Moment(*emitter, static_cast<std::uint32_t>(uiTime)))) {
                return false;
            }
        }
    }
    return true;
}

} // namespace

ExitCode runPlay(const PlayOptions& a_options, Output& a_output)
{
    Simulation::UnresolvedSignalPackageProvider provider;
    Simulation::ScenarioDataXml scenario(&provider);
    const QString sTarget = QFileInfo(a_options.csvFile).canonicalFilePath();
    if (!a_options.csvFile.isEmpty() && !sTarget.isEmpty() &&
        sTarget == QFileInfo(a_options.scenario).canonicalFilePath()) {
        complain(
            QStringLiteral("play: %1 is the scenario itself: give another --csv").arg(a_options.csvFile));
        return ExitCode::Unusable;
    }
    const ExitCode eLoaded = loadScenario(scenario, a_options.scenario);
    if (eLoaded == ExitCode::Unusable) {
        return eLoaded;
    }
    const std::uint32_t uiTo = windowEnd(a_options, scenario.getDuration());
    if (uiTo <= a_options.from) {
        complain(QStringLiteral(
                     "play: the window would end at %1 ms, not after its begin at %2 ms: give a later --to")
                     .arg(QString::number(uiTo), QString::number(a_options.from)));
        return ExitCode::Unusable;
    }
    const auto emitters = emittersOf(scenario);
    std::unique_ptr<Sink> sink;
    if (a_options.csvFile.isEmpty()) {
        QStringList ids;
        std::transform(emitters.cbegin(), emitters.cend(), std::back_inserter(ids),
                       [](const auto& a_emitter) { return a_emitter->id(); });
        sink = std::make_unique<TableSink>(a_output, ids, uiTo);
    } else {
        sink = std::make_unique<CsvSink>(a_output, a_options.csvFile);
    }
    const bool bPlayed = playInto(*sink, a_options, uiTo, emitters);
    return sink->end(bPlayed) ? eLoaded : ExitCode::Unusable;
}

} // namespace SimulationTool
