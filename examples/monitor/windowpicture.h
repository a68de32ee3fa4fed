#ifndef MONITOR_WINDOWPICTURE_H
#define MONITOR_WINDOWPICTURE_H

#include <QObject>
#include <QString>
#include <QTimer>

namespace Monitor {

class MonitorWindow;

/// Writes one picture of a window to a file. Then ends the program with exit code 0,
/// or 1 when the file cannot be written. Takes the picture 0.7 s after the last update
/// from the service. Without a connection, takes the picture after 3 s, with the waiting
/// dialog. The window is not owned.
class WindowPicture : public QObject
{
    Q_OBJECT

public:
    WindowPicture(MonitorWindow& a_window, const QString& a_sFile);

private:
    void wait();
    void take();

    MonitorWindow& m_window;
    QString m_sFile;
    QTimer m_quiet;
};

} // namespace Monitor

#endif
