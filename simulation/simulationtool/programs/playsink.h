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

/// The state of an emitter at one time.
struct Moment
{
    /// `a_uiTime` is in ms. Without packages (null) there is no level.
    Moment(const Simulation::SzenarioEmitter& a_emitter, std::uint32_t a_uiTime,
           RepositoryPackages* a_pPackages);

    std::uint32_t time; ///< ms
    bool active = false;
    double frequency;           ///< Hz
    Simulation::TPos position;  ///< degrees
    double heading;             ///< degrees
    double speed = 0.0;         ///< km/h; -1 before the end of the first leg
    QString packageId;          ///< id of the sent package; empty without one
    std::optional<float> level; ///< of the package, at the time since the emission began; no
                                ///< value without a signal shape
};

/// The target of a play's rows.
class Sink
{
public:
    Sink() = default;
    Sink(const Sink&) = delete;
    Sink& operator=(const Sink&) = delete;
    virtual ~Sink() = default;

    [[nodiscard]] virtual bool begin() = 0;
    [[nodiscard]] virtual bool add(const QString& a_sEmitterId, const Moment& a_moment) = 0;
    /// Finishes the output and reports its errors on standard error. `a_bOk` is false when
    /// not all rows were written. Returns false when `a_bOk` is false or on an error. The
    /// summary follows the rows in JSON.
    [[nodiscard]] virtual bool end(bool a_bOk, const QJsonObject& a_summary) = 0;
};

/// Writes the rows as a table, in JSON as the report's list "rows". The columns are
/// wide enough for these emitter ids and for times up to `a_uiTo` (ms).
[[nodiscard]] std::unique_ptr<Sink> makeTableSink(Report& a_report, const QStringList& a_ids,
                                                  std::uint32_t a_uiTo, bool a_bLevels);
/// Writes one JSON document as the rows arrive: the header, the list "rows" and the
/// summary.
[[nodiscard]] std::unique_ptr<Sink> makeJsonSink(Output& a_output, const QJsonObject& a_header,
                                                 bool a_bLevels);

/// The target of CSV rows.
struct CsvTarget
{
    QString file;       ///< "-" is standard output, which then contains only rows
    QJsonObject header; ///< header of the report about the file
};
/// Writes the rows of a CSV file. end() adds their number to the report and finishes
/// the report, unless the target is standard output.
[[nodiscard]] std::unique_ptr<Sink> makeCsvSink(Report& a_report, Output& a_output, const CsvTarget& a_target,
                                                bool a_bLevels);

} // namespace SimulationTool

#endif
