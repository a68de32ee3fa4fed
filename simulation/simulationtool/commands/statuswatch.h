#ifndef SIMULATIONTOOL_STATUSWATCH_H
#define SIMULATIONTOOL_STATUSWATCH_H

#include "console/exitcode.h"

#include <QJsonObject>
#include <QMap>
#include <QString>

namespace SimulationTool {

class Report;
class ServiceController;

/// Follows a service. Writes one line for each device and one for the run of the
/// scenario, and a new line after every change. Each line has the time. With --json
/// each line is a JSON object, see docs/json.md.
class StatusWatch
{
public:
    /// Owns neither argument. The controller must be connected and must not have acquired
    /// the service.
    StatusWatch(ServiceController& a_controller, Report& a_report);

    /// Runs until the process is interrupted, and then returns Ok. Returns Unusable when
    /// the connection is lost or the output fails.
    [[nodiscard]] ExitCode run();

private:
    [[nodiscard]] bool showChanges();
    [[nodiscard]] bool showRun();
    [[nodiscard]] bool write(const QString& a_sWho, const QString& a_sText, QJsonObject a_object);

    ServiceController& m_controller;
    Report& m_report;
    QMap<QString, QString> m_devices; ///< the last shown text, by device id
    QString m_sRun;                   ///< runMark() of the last shown run
};

} // namespace SimulationTool

#endif
