#ifndef MONITOR_WINDOWPICTURE_H
#define MONITOR_WINDOWPICTURE_H

#include <QObject>
#include <QString>
#include <QTimer>

namespace Monitor {

class MonitorWindow;

/// Takes one picture of a window as users see it and ends the program: exit code
/// 0, or 1 when the file cannot be written. It waits until the devices have been
/// told and nothing new has come for a moment, or until nobody has answered for a
/// while: then the waiting dialog is in the picture.
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
