#ifndef MONITOR_WINDOWPICTURE_H
#define MONITOR_WINDOWPICTURE_H

#include <QObject>
#include <QString>
#include <QTimer>

namespace Monitor {

class MonitorWindow;

/// Writes one picture of a window to a file and ends the program: exit code 0, or 1
/// when the file cannot be written. Waits until the devices were received and no
/// update arrived for 0.7 s. Without a connection for 3 s, the picture shows the
/// waiting dialog. The window is not owned.
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
