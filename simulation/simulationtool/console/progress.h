#ifndef SIMULATIONTOOL_PROGRESS_H
#define SIMULATIONTOOL_PROGRESS_H

#include <QString>

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace SimulationTool {

/// A progress line on standard error. After 1 s it shows the work and the seconds
/// passed. It is erased when the object ends. It is shown only when standard error is
/// a terminal. Only one object shows a line at a time; others show nothing. A thread
/// of its own updates the line.
class Progress
{
public:
    /// `a_sWork` names the work: "checking harbour.sce.exp". `a_detail`, if given, returns
    /// a detail ("12 of 250 packages"). It is called five times a second on another thread
    /// until the object ends.
    explicit Progress(const QString& a_sWork, const std::function<QString()>& a_detail = {});
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Changes the name of the work. Any thread may call it.
    void setWork(const QString& a_sWork);

private:
    void run();

    std::function<QString()> m_detail;
    std::mutex m_mutex; ///< guards m_sWork and m_bEnd
    std::condition_variable m_ended;
    QString m_sWork;
    bool m_bEnd = false;
    std::thread m_thread; ///< not started when no line is shown
};

/// Erases the progress line and runs `a_write`, which writes to standard output or
/// standard error. The next update shows the line again. Any thread may call it.
void withoutProgress(const std::function<void()>& a_write);

} // namespace SimulationTool

#endif
