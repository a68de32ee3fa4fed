#include "windowpicture.h"

#include "monitorwindow.h"

#include <kpbase/replacedfile.h>

#include <QBuffer>
#include <QCoreApplication>
#include <QPainter>
#include <QPixmap>
#include <QTextStream>

namespace Monitor {

namespace {

constexpr int s_iQuiet = 700;        ///< ms after the last update
constexpr int s_iNobodyThere = 3000; ///< ms without a connection

/// Draws the window and, if the dialog is shown, the dialog over it. The frames of the
/// window system are missing; a line replaces the dialog's frame.
QPixmap pictureOf(MonitorWindow& a_window)
{
    QPixmap picture = a_window.grab();
    const QWidget& dialog = a_window.waitDialog();
    if (dialog.isVisible()) {
        QPainter painter(&picture);
        QRect place(QPoint(), dialog.size());
        place.moveCenter(a_window.rect().center());
        painter.drawPixmap(place, a_window.waitDialog().grab());
        painter.setPen(a_window.palette().color(QPalette::Mid));
        painter.drawRect(place.adjusted(-1, -1, 0, 0));
    }
    return picture;
}

} // namespace

WindowPicture::WindowPicture(MonitorWindow& a_window, const QString& a_sFile)
    : m_window(a_window)
    , m_sFile(a_sFile)
{
    m_quiet.setSingleShot(true);
    connect(&m_quiet, &QTimer::timeout, this, &WindowPicture::take);
    connect(&a_window, &MonitorWindow::updated, this, &WindowPicture::wait);
}

void WindowPicture::wait()
{
    // Connections that end right after they begin must not restart the timer again and
    // again.
    if (m_window.isConnected() || !m_quiet.isActive()) {
        m_quiet.start(m_window.isConnected() ? s_iQuiet : s_iNobodyThere);
    }
}

void WindowPicture::take()
{
    QBuffer picture;
    ReplacedFile file(m_sFile);
    const bool bWritten = picture.open(QIODevice::WriteOnly) && pictureOf(m_window).save(&picture, "PNG") &&
                          file.open() && file.write(picture.data()) && file.commit();
    if (!bWritten) {
        const QString sReason = file.errorString().isEmpty() ? QStringLiteral("the picture cannot be encoded")
                                                             : file.errorString();
        QTextStream(stderr) << "monitor: " << m_sFile << ": " << sReason << '\n';
    }
    QCoreApplication::exit(bWritten ? 0 : 1);
}

} // namespace Monitor
