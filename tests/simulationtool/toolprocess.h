#ifndef TESTS_TOOLPROCESS_H
#define TESTS_TOOLPROCESS_H

#include "simulationtool/toolrun.h"

#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTest>

#include <csignal>

/// The command-line tool as a process. The destructor ends the process.
class Tool
{
public:
    explicit Tool(const QStringList& a_arguments)
    {
        m_process.setProcessChannelMode(QProcess::MergedChannels);
        m_process.start(QStringLiteral(SIMULATIONTOOL_PATH), a_arguments);
    }
    ~Tool()
    {
        m_process.kill();
        m_process.waitForFinished();
    }
    Tool(const Tool&) = delete;
    Tool& operator=(const Tool&) = delete;

    /// Everything that the process has written so far.
    QString text()
    {
        m_sText += QString::fromUtf8(m_process.readAll());
        return m_sText;
    }

    /// Waits until the text has been written at least a_iTimes times. Returns false
    /// after the timeout.
    bool says(const QString& a_sText, qsizetype a_iTimes = 1)
    {
        return QTest::qWaitFor([&] { return text().count(a_sText) >= a_iTimes; }, s_iToolTimeout);
    }

    /// Sends a signal and returns the exit code, or -1 if the process does not end
    /// normally.
    int codeAfter(int a_iSignal)
    {
        ::kill(static_cast<pid_t>(m_process.processId()), a_iSignal);
        const bool bEnded =
            QTest::qWaitFor([&] { return m_process.state() == QProcess::NotRunning; }, s_iToolTimeout);
        return bEnded && m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
    }

private:
    QProcess m_process;
    QString m_sText;
};

/// The tool's service. The system chooses the port, unless the test gives one.
class Service : public Tool
{
public:
    explicit Service(const QString& a_sPort = QStringLiteral("0"))
        : Tool({QStringLiteral("service"), QStringLiteral("--address"), QStringLiteral("127.0.0.1"),
                QStringLiteral("--port"), a_sPort})
    {
        if (says(QStringLiteral("Listening on port "))) {
            m_sPort = text().section(QStringLiteral("port "), 1).section(u'\n', 0, 0);
        }
    }

    [[nodiscard]] QString port() const { return m_sPort; }
    [[nodiscard]] QString address() const { return QStringLiteral("127.0.0.1:") + m_sPort; }

private:
    QString m_sPort;
};

#endif
