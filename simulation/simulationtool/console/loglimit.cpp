#include "loglimit.h"

#include "terminaltext.h"
#include "valuetexts.h"

#include <utility>

namespace SimulationTool {

namespace {

constexpr int s_iMaxLines = 100;
constexpr int s_iWindow = 10'000; ///< ms
constexpr qsizetype s_iMaxPart = 100;

} // namespace

LogLimit::LogLimit()
{
    m_window.setSingleShot(true);
    m_window.setInterval(s_iWindow);
    connect(&m_window, &QTimer::timeout, this, [this] {
        m_iLines = 0;
        logLeftOut();
    });
}

void LogLimit::log(const QString& a_sLine, bool a_bFinal)
{
    if (!m_window.isActive()) {
        m_window.start();
    }
    if (a_bFinal) {
        logLeftOut();
    } else if (m_iLines == s_iMaxLines) {
        ++m_uiLeftOut;
        return;
    } else {
        ++m_iLines;
    }
    Q_EMIT logged(a_sLine);
}

QString LogLimit::part(const QString& a_sText)
{
    return shortened(a_sText, s_iMaxPart);
}

void LogLimit::logLeftOut()
{
    if (const quint64 uiLeftOut = std::exchange(m_uiLeftOut, 0); uiLeftOut > 0) {
        Q_EMIT logged(counted(uiLeftOut, "line") + QStringLiteral(" dropped"));
    }
}

} // namespace SimulationTool
