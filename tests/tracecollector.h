#ifndef TESTS_TRACECOLLECTOR_H
#define TESTS_TRACECOLLECTOR_H

#include "kpbase/errorhandler.h"

#include <QMessageLogContext>
#include <QStringList>

/// Collects the lines that are traced in the given categories during its lifetime,
/// without the line numbers: "message (source name)". Only one may exist at a time.
class TraceCollector
{
public:
    explicit TraceCollector(unsigned int a_uiMask = ErrorHandler::TraceError)
        : m_uiPreviousMask(ErrorHandler::Instance().traceMask())
        , m_previous(qInstallMessageHandler(keep))
    {
        lines().clear();
        ErrorHandler::Instance().setTraceMask(a_uiMask);
    }
    ~TraceCollector()
    {
        qInstallMessageHandler(m_previous);
        ErrorHandler::Instance().setTraceMask(m_uiPreviousMask);
    }
    TraceCollector(const TraceCollector&) = delete;
    TraceCollector& operator=(const TraceCollector&) = delete;

    static QStringList& lines()
    {
        static QStringList s_lines;
        return s_lines;
    }

private:
    static void keep(QtMsgType /*a_eType*/, const QMessageLogContext& a_context, const QString& a_sMessage)
    {
        if (qstrcmp(a_context.category, "simulation.trace") == 0) {
            lines().append(a_sMessage.left(a_sMessage.lastIndexOf(u':')) + u')');
        }
    }

    unsigned int m_uiPreviousMask;
    QtMessageHandler m_previous;
};

#endif
