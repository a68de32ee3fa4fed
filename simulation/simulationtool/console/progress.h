#ifndef SIMULATIONTOOL_PROGRESS_H
#define SIMULATIONTOOL_PROGRESS_H

#include <QString>

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace SimulationTool {

/// Shows on a terminal that work goes on: one line on standard error from the
/// first second on, with the seconds that passed, erased when the object ends.
/// Where standard error is no terminal nothing is written. One at a time; a
/// second one shows nothing.
class Progress
{
public:
    /// What is done, "checking harbour.sce.exp". `a_detail`, when given, is asked
    /// for more ("12 of 250 packages") several times a second on another thread
    /// until the object ends.
    explicit Progress(const QString& a_sWork, const std::function<QString()>& a_detail = {});
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// What is done from now on.
    void setWork(const QString& a_sWork);

private:
    void run();

    std::function<QString()> m_detail;
    std::mutex m_mutex; ///< guards what follows
    std::condition_variable m_ended;
    QString m_sWork;
    bool m_bEnd = false;
    std::thread m_thread; ///< not running where nothing is to be shown
};

/// Runs writes to standard output or standard error while no progress stands on
/// the terminal: the line is erased first, and shown again later. Any thread may
/// call.
void withoutProgress(const std::function<void()>& a_write);

} // namespace SimulationTool

#endif
