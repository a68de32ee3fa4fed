#ifndef SIMULATIONTOOL_LOGLIMIT_H
#define SIMULATIONTOOL_LOGLIMIT_H

#include <QObject>
#include <QString>
#include <QTimer>

namespace SimulationTool {

/// What others cause to be logged, bounded: nobody must be able to fill the disk
/// that the log goes to. Lets 100 lines through in 10 s and leaves the others
/// out; how many is told when the 10 s are over.
class LogLimit : public QObject
{
    Q_OBJECT

public:
    LogLimit();

    /// A final line, behind which nothing comes, is never left out.
    void tell(const QString& a_sLine, bool a_bFinal = false);

    /// A text of others, fit to be a part of a line: cut to 100 characters.
    [[nodiscard]] static QString part(const QString& a_sText);

Q_SIGNALS:
    void told(const QString& a_sLine);

private:
    void tellLeftOut();

    QTimer m_window; ///< runs from the first line that is told
    int m_iLines = 0;
    quint64 m_uiLeftOut = 0;
};

} // namespace SimulationTool

#endif
