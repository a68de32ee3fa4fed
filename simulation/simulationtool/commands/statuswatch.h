#ifndef SIMULATIONTOOL_STATUSWATCH_H
#define SIMULATIONTOOL_STATUSWATCH_H

#include "console/exitcode.h"

#include <QJsonObject>
#include <QMap>
#include <QString>

namespace SimulationTool {

class Report;
class ServiceController;

/// Follows a service: writes one line, with its time, for what each device reports
/// and for the run of the scenario, and another whenever one of them changes. For
/// programs each line is an object, see docs/json.md.
class StatusWatch
{
public:
    /// Neither is owned. The controller is connected, and only looks on.
    StatusWatch(ServiceController& a_controller, Report& a_report);

    /// Until the process is interrupted, which gives Ok, or the connection is lost
    /// or the output fails.
    [[nodiscard]] ExitCode run();

private:
    [[nodiscard]] bool showChanges();
    [[nodiscard]] bool showRun();
    [[nodiscard]] bool write(const QString& a_sWho, const QString& a_sText, QJsonObject a_object);

    ServiceController& m_controller;
    Report& m_report;
    QMap<QString, QString> m_devices; ///< what was shown last, by id
    QString m_sRun;                   ///< the run that was shown last
};

} // namespace SimulationTool

#endif
