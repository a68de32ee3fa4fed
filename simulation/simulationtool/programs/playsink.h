#ifndef SIMULATIONTOOL_PLAYSINK_H
#define SIMULATIONTOOL_PLAYSINK_H

#include "simulationdata/tpos.h"

#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <memory>
#include <optional>

namespace Simulation {
class SzenarioEmitter;
} // namespace Simulation

namespace SimulationTool {

class Output;
class Report;
class RepositoryPackages;

/// What an emitter does at one time.
struct Moment
{
    /// Without packages there is no level.
    Moment(const Simulation::SzenarioEmitter& a_emitter, std::uint32_t a_uiTime,
           RepositoryPackages* a_pPackages);

    std::uint32_t time; ///< ms
    bool active = false;
    double frequency;           ///< Hz
    Simulation::TPos position;  ///< degrees
    double heading;             ///< degrees
    double speed = 0.0;         ///< km/h; -1 before the first leg is done
    QString packageId;          ///< empty without a package
    std::optional<float> level; ///< at the emission's own time; none without a signal shape
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
    /// The summary is for programs, after the rows.
    [[nodiscard]] virtual bool end(bool a_bOk, const QJsonObject& a_summary) = 0;
};

/// Rows of a table, whose columns are wide enough for these emitter ids and for
/// times up to an end (ms); for programs the report's list "rows".
[[nodiscard]] std::unique_ptr<Sink> makeTableSink(Report& a_report, const QStringList& a_ids,
                                                  std::uint32_t a_uiTo, bool a_bLevels);
/// One JSON document on the output, which grows as rows arrive and holds the
/// header, the list "rows" and the summary.
[[nodiscard]] std::unique_ptr<Sink> makeJsonSink(Output& a_output, const QJsonObject& a_header,
                                                 bool a_bLevels);

/// Where CSV rows go.
struct CsvTarget
{
    QString file;       ///< "-" is standard output, which then gets nothing else
    QJsonObject header; ///< of the report about the file
};
/// Rows of a CSV file. The report gets their number at the end, and is finished.
[[nodiscard]] std::unique_ptr<Sink> makeCsvSink(Report& a_report, Output& a_output, const CsvTarget& a_target,
                                                bool a_bLevels);

} // namespace SimulationTool

#endif
