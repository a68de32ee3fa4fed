#ifndef SIMULATIONTOOL_LOGLIMIT_H
#define SIMULATIONTOOL_LOGLIMIT_H

#include <QObject>
#include <QString>
#include <QTimer>

namespace SimulationTool {

/// Limits the log lines that peers cause, so that no peer can fill the disk. Passes
/// 100 lines in 10 s and drops the others; after the 10 s one line reports how many
/// were dropped. Used on the thread to which the object belongs.
class LogLimit : public QObject
{
    Q_OBJECT

public:
    LogLimit();

    /// Passes or drops a line. A final line is the last one that the owner logs; it is
    /// never dropped.
    void log(const QString& a_sLine, bool a_bFinal = false);

    /// A text of a peer as part of a line: shortened to 100 characters.
    [[nodiscard]] static QString part(const QString& a_sText);

Q_SIGNALS:
    void logged(const QString& a_sLine);

private:
    void logLeftOut();

    QTimer m_window; ///< 10 s, from the first line that passes
    int m_iLines = 0;
    quint64 m_uiLeftOut = 0;
};

} // namespace SimulationTool

#endif
