#ifndef TESTS_FILESIZELIMIT_H
#define TESTS_FILESIZELIMIT_H

#include <csignal>

#include <sys/resource.h>

/// The first write that makes a file of this process grow beyond so many bytes
/// kills the process, without a core file. For a process that ends with the test:
/// it may be called between fork and exec.
inline void dieBeyondFileSize(rlim_t a_uiBytes)
{
    const rlimit limit{a_uiBytes, a_uiBytes};
    const rlimit noCore{0, 0};
    setrlimit(RLIMIT_FSIZE, &limit);
    setrlimit(RLIMIT_CORE, &noCore);
    std::signal(SIGXFSZ, SIG_DFL); // NOLINT(cert-err33-c)
}

/// While it lives no file of this process, and of those that it starts, grows
/// beyond so many bytes: further writes fail as on a full disk, with the reason
/// "File too large".
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t a_uiBytes)
        : m_handler(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &m_former);
        rlimit small = m_former;
        small.rlim_cur = a_uiBytes;
        setrlimit(RLIMIT_FSIZE, &small);
    }
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &m_former);
        std::signal(SIGXFSZ, m_handler); // NOLINT(cert-err33-c)
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit m_former{};
    void (*m_handler)(int);
};

#endif
