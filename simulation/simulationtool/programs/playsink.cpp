#include "playsink.h"

#include "console/jsonreport.h"
#include "console/output.h"
#include "console/report.h"
#include "console/texttable.h"
#include "console/valuetexts.h"
#include "describe/csvwriter.h"
#include "repositorypackages.h"

#include "simulationdata/ipositionsettings.h"
#include "simulationdata/signalpackage.h"
#include "simulationdata/szenarioemitter.h"

namespace SimulationTool {

namespace {

constexpr qsizetype s_iMaxIdWidth = 32;
constexpr qsizetype s_iMaxPackageWidth = 36; ///< wide enough for a package id
constexpr double s_dHertzPerMegahertz = 1e6;
constexpr int s_iFrequencyDecimals = 6;  ///< for MHz; resolves 1 Hz
constexpr int s_iCoordinateDecimals = 6; ///< for degrees; resolves 0.1 m
constexpr int s_iMotionDecimals = 1;     ///< for degrees and km/h

/// The columns of tables, CSV files and JSON documents. CSV files and JSON documents use
/// the columns' keys.
QList<TextColumn> momentColumns(bool a_bLevels)
{
    QList<TextColumn> columns{{QStringLiteral("Time (ms)"), true, 0, "time_ms"},
                              {QStringLiteral("Emitter"), false, s_iMaxIdWidth, "emitter"},
                              {QStringLiteral("Active"), false, 0, "active"},
                              {QStringLiteral("Frequency (MHz)"), true, 0, "frequency_hz"},
                              {QStringLiteral("Longitude"), true, 0, "longitude"},
                              {QStringLiteral("Latitude"), true, 0, "latitude"},
                              {QStringLiteral("Heading"), true, 0, "heading"},
                              {QStringLiteral("Speed (km/h)"), true, 0, "speed_kmh"},
                              {QStringLiteral("Package"), false, 0, "package"}};
    if (a_bLevels) {
        columns.last().maxWidth = s_iMaxPackageWidth;
        columns.append({QStringLiteral("Level"), true, 0, "level"});
    }
    return columns;
}

ReportRow momentRow(const QString& a_sEmitterId, const Moment& a_moment, bool a_bLevels)
{
    const bool bSpeed = a_moment.speed >= 0.0;
    ReportRow row{
        countValue(a_moment.time),
        a_sEmitterId,
        flagValue(a_moment.active),
        {fixedNumber(a_moment.frequency / s_dHertzPerMegahertz, s_iFrequencyDecimals),
         jsonNumber(a_moment.frequency)},
        numberValue(a_moment.position.longitude, s_iCoordinateDecimals),
        numberValue(a_moment.position.latitude, s_iCoordinateDecimals),
        numberValue(a_moment.heading, s_iMotionDecimals),
        {bSpeed ? fixedNumber(a_moment.speed, s_iMotionDecimals) : QString(), jsonNumber(a_moment.speed)},
        a_moment.packageId};
    if (a_bLevels) {
        row.append(a_moment.level ? levelValue(*a_moment.level) : ReportValue(QString()));
    }
    return row;
}

class TableSink : public Sink
{
public:
    TableSink(Report& a_report, const QStringList& a_ids, std::uint32_t a_uiTo, bool a_bLevels)
        : m_report(a_report)
        , m_bLevels(a_bLevels)
        , m_columns(momentColumns(a_bLevels))
        , m_table(m_columns)
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
        m_report.line(m_table.titles());
        m_report.line(m_table.rule());
        return m_report.isOk();
    }

    bool add(const QString& a_sEmitterId, const Moment& a_moment) override
    {
        const ReportRow row = momentRow(a_sEmitterId, a_moment, m_bLevels);
        if (m_report.form() == ReportForm::Json) {
            m_report.record("rows", rowObject(m_columns, row));
            return true;
        }
        m_report.line(m_table.row(cellTexts(row)));
        return m_report.isOk();
    }

    // The owner of the output checks the output for errors.
    bool end(bool a_bOk, const QJsonObject& /*a_summary*/) override { return a_bOk; }

private:
    Report& m_report;
    bool m_bLevels;
    QList<TextColumn> m_columns;
    TextTable m_table;
};

/// Writes each row of the document as it arrives, because a play may last for days.
class JsonSink : public Sink
{
public:
    JsonSink(Output& a_output, const QJsonObject& a_header, bool a_bLevels)
        : m_output(a_output)
        , m_header(a_header)
        , m_bLevels(a_bLevels)
        , m_columns(momentColumns(a_bLevels))
    {}

    bool begin() override
    {
        // Without its closing brace: the rows and the summary continue the header's object.
        m_output.write(jsonLine(m_header).chopped(1) + QStringLiteral(",\"rows\":["));
        return m_output.isOk();
    }

    bool add(const QString& a_sEmitterId, const Moment& a_moment) override
    {
        m_output.write((m_bFirst ? QStringLiteral("\n") : QStringLiteral(",\n")) +
                       jsonLine(rowObject(m_columns, momentRow(a_sEmitterId, a_moment, m_bLevels))));
        m_bFirst = false;
        return m_output.isOk();
    }

    bool end(bool a_bOk, const QJsonObject& a_summary) override
    {
        m_output.write(QStringLiteral("],\n") + jsonLine(a_summary).sliced(1) + u'\n');
        return a_bOk;
    }

private:
    Output& m_output;
    QJsonObject m_header;
    bool m_bLevels;
    QList<TextColumn> m_columns;
    bool m_bFirst = true;
};

/// A value as a field of a CSV file.
QString csvText(const QJsonValue& a_value)
{
    if (a_value.isDouble()) {
        return CsvWriter::number(a_value.toDouble());
    }
    if (a_value.isBool()) {
        return a_value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    }
    return a_value.toString();
}

class CsvSink : public Sink
{
public:
    CsvSink(Report& a_report, Output& a_output, const CsvTarget& a_target, bool a_bLevels)
        : m_report(a_report)
        , m_target(a_target)
        , m_bLevels(a_bLevels)
        , m_writer(a_target.file, a_output)
    {}

    bool begin() override
    {
        QStringList names;
        for (const TextColumn& column : momentColumns(m_bLevels)) {
            names.append(QLatin1String(column.key));
        }
        return m_writer.open() && m_writer.writeRow(names);
    }

    bool add(const QString& a_sEmitterId, const Moment& a_moment) override
    {
        ++m_uiRows;
        QStringList fields;
        for (const ReportValue& value : momentRow(a_sEmitterId, a_moment, m_bLevels)) {
            fields.append(csvText(value.json));
        }
        return m_writer.writeRow(fields);
    }

    bool end(bool a_bOk, const QJsonObject& a_summary) override
    {
        if (m_writer.isStandardOutput()) {
            return a_bOk; // standard output contains only rows
        }
        if (!a_bOk || !m_writer.commit()) {
            complain(QStringLiteral("%1: %2").arg(m_target.file, m_writer.errorString()));
            return false;
        }
        for (const QJsonObject& object : {m_target.header, a_summary}) {
            for (auto member = object.begin(); member != object.end(); ++member) {
                m_report.value(member.key().toLatin1().constData(), member.value());
            }
        }
        m_report.value("csv", m_target.file);
        m_report.value("row_count", jsonCount(m_uiRows));
        m_report.line(QStringLiteral("%1 rows written").arg(m_uiRows));
        m_report.finish();
        return true;
    }

private:
    Report& m_report;
    CsvTarget m_target;
    bool m_bLevels;
    CsvWriter m_writer;
    std::uint64_t m_uiRows = 0;
};

} // namespace

Moment::Moment(const Simulation::SzenarioEmitter& a_emitter, std::uint32_t a_uiTime,
               RepositoryPackages* a_pPackages)
    : time(a_uiTime)
    , frequency(a_emitter.getFrequencyAt(a_uiTime))
    , position(a_emitter.getPositionAt(a_uiTime))
    , heading(a_emitter.headingAt(a_uiTime))
{
    if (const Simulation::IPositionSettings* pPosition = a_emitter.positionSettings()) {
        speed = pPosition->speedAt(a_uiTime);
    }
    const Simulation::SzenarioEmitter::Transmission sent = a_emitter.transmissionAt(a_uiTime);
    active = sent.isActive;
    // The schedule names a package even when the emitter is inactive, for example because
    // its movement or its frequency steps have ended.
    if (sent.isActive && sent.signalPackage) {
        packageId = sent.signalPackage->id();
        if (a_pPackages != nullptr) {
            level = a_pPackages->levelAt(sent.signalPackage, sent.timeActive);
        }
    }
}

std::unique_ptr<Sink> makeTableSink(Report& a_report, const QStringList& a_ids, std::uint32_t a_uiTo,
                                    bool a_bLevels)
{
    return std::make_unique<TableSink>(a_report, a_ids, a_uiTo, a_bLevels);
}

std::unique_ptr<Sink> makeJsonSink(Output& a_output, const QJsonObject& a_header, bool a_bLevels)
{
    return std::make_unique<JsonSink>(a_output, a_header, a_bLevels);
}

std::unique_ptr<Sink> makeCsvSink(Report& a_report, Output& a_output, const CsvTarget& a_target,
                                  bool a_bLevels)
{
    return std::make_unique<CsvSink>(a_report, a_output, a_target, a_bLevels);
}

} // namespace SimulationTool
