#include "playsink.h"

#include "csvwriter.h"
#include "output.h"
#include "repositorypackages.h"
#include "texttable.h"
#include "valuetexts.h"

#include "simulationdata/ipositionsettings.h"
#include "simulationdata/signalpackage.h"
#include "simulationdata/szenarioemitter.h"

namespace SimulationTool {

namespace {

constexpr qsizetype s_iMaxIdWidth = 32;
constexpr qsizetype s_iMaxPackageWidth = 36; ///< a package id fits
constexpr double s_dHertzPerMegahertz = 1e6;
constexpr int s_iFrequencyDecimals = 6;  ///< MHz: to the hertz
constexpr int s_iCoordinateDecimals = 6; ///< degrees: to 0.1 m
constexpr int s_iMotionDecimals = 1;     ///< degrees and km/h

class TableSink : public Sink
{
public:
    TableSink(Output& a_output, const QStringList& a_ids, std::uint32_t a_uiTo, bool a_bLevels)
        : m_output(a_output)
        , m_bLevels(a_bLevels)
        , m_table(columns(a_bLevels))
    {
        for (const QString& id : a_ids) {
            m_table.fit({QString::number(a_uiTo),
                         id,
                         {},
                         {},
                         QStringLiteral("-179.000000"),
                         QStringLiteral("-89.000000")});
        }
        if (a_bLevels) {
            m_table.fit({{}, {}, {}, {}, {}, {}, {}, {}, QString(s_iMaxPackageWidth, u'-'), levelText(1.0F)});
        }
    }

    bool begin() override
    {
        m_output.write(m_table.titles() + u'\n' + m_table.rule() + u'\n');
        return m_output.isOk();
    }

    bool add(const QString& a_sEmitterId, const Moment& a_moment) override
    {
        QStringList cells{QString::number(a_moment.time),
                          orDash(a_sEmitterId),
                          yesNo(a_moment.active),
                          fixedNumber(a_moment.frequency / s_dHertzPerMegahertz, s_iFrequencyDecimals),
                          fixedNumber(a_moment.position.longitude, s_iCoordinateDecimals),
                          fixedNumber(a_moment.position.latitude, s_iCoordinateDecimals),
                          fixedNumber(a_moment.heading, s_iMotionDecimals),
                          a_moment.speed < 0.0 ? orDash({}) : fixedNumber(a_moment.speed, s_iMotionDecimals),
                          orDash(a_moment.packageId)};
        if (m_bLevels) {
            cells.append(orDash(a_moment.level ? levelText(*a_moment.level) : QString()));
        }
        m_output.write(m_table.row(cells) + u'\n');
        return m_output.isOk();
    }

    // The output is watched by whoever owns it.
    bool end(bool a_bOk) override { return a_bOk; }

private:
    static QList<TextColumn> columns(bool a_bLevels)
    {
        QList<TextColumn> columns{
            {QStringLiteral("Time (ms)"), true}, {QStringLiteral("Emitter"), false, s_iMaxIdWidth},
            {QStringLiteral("Active")},          {QStringLiteral("Frequency (MHz)"), true},
            {QStringLiteral("Longitude"), true}, {QStringLiteral("Latitude"), true},
            {QStringLiteral("Heading"), true},   {QStringLiteral("Speed (km/h)"), true},
            {QStringLiteral("Package")}};
        if (a_bLevels) {
            columns.last().maxWidth = s_iMaxPackageWidth;
            columns.append({QStringLiteral("Level"), true});
        }
        return columns;
    }

    Output& m_output;
    bool m_bLevels;
    TextTable m_table;
};

class CsvSink : public Sink
{
public:
    CsvSink(Output& a_output, const QString& a_sFile, bool a_bLevels)
        : m_output(a_output)
        , m_sFile(a_sFile)
        , m_bLevels(a_bLevels)
        , m_writer(a_sFile)
    {}

    bool begin() override
    {
        QStringList names{
            QStringLiteral("time_ms"),      QStringLiteral("emitter"),   QStringLiteral("active"),
            QStringLiteral("frequency_hz"), QStringLiteral("longitude"), QStringLiteral("latitude"),
            QStringLiteral("heading"),      QStringLiteral("speed_kmh"), QStringLiteral("package")};
        if (m_bLevels) {
            names.append(QStringLiteral("level"));
        }
        return m_writer.open() && m_writer.writeRow(names);
    }

    bool add(const QString& a_sEmitterId, const Moment& a_moment) override
    {
        ++m_uiRows;
        QStringList fields{QString::number(a_moment.time),
                           a_sEmitterId,
                           a_moment.active ? QStringLiteral("true") : QStringLiteral("false"),
                           CsvWriter::number(a_moment.frequency),
                           CsvWriter::number(a_moment.position.longitude),
                           CsvWriter::number(a_moment.position.latitude),
                           CsvWriter::number(a_moment.heading),
                           CsvWriter::number(a_moment.speed),
                           a_moment.packageId};
        if (m_bLevels) {
            fields.append(a_moment.level ? shortNumber(*a_moment.level) : QString());
        }
        return m_writer.writeRow(fields);
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
    bool m_bLevels;
    CsvWriter m_writer;
    std::uint64_t m_uiRows = 0;
};

} // namespace

Moment::Moment(const Simulation::SzenarioEmitter& a_emitter, std::uint32_t a_uiTime,
               RepositoryPackages* a_pPackages)
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
        if (a_pPackages != nullptr) {
            level = a_pPackages->levelAt(package, a_emitter.timeActiveAt(a_uiTime));
        }
    }
}

std::unique_ptr<Sink> makeTableSink(Output& a_output, const QStringList& a_ids, std::uint32_t a_uiTo,
                                    bool a_bLevels)
{
    return std::make_unique<TableSink>(a_output, a_ids, a_uiTo, a_bLevels);
}

std::unique_ptr<Sink> makeCsvSink(Output& a_output, const QString& a_sFile, bool a_bLevels)
{
    return std::make_unique<CsvSink>(a_output, a_sFile, a_bLevels);
}

} // namespace SimulationTool
