#ifndef TESTS_FILESIZELIMIT_H
#define TESTS_FILESIZELIMIT_H

#include <csignal>

#include <sys/resource.h>

/// Limits the size (bytes) of the files that this process writes. The limit applies until
/// the process ends. The system kills the process at the first write beyond the limit,
/// without a core file. May be called between fork and exec.
inline void dieBeyondFileSize(rlim_t a_uiBytes)
{
    const rlimit limit{a_uiBytes, a_uiBytes};
    const rlimit noCore{0, 0};
    setrlimit(RLIMIT_FSIZE, &limit);
    setrlimit(RLIMIT_CORE, &noCore);
    std::signal(SIGXFSZ, SIG_DFL); // NOLINT(cert-err33-c)
}

/// Limits the size (bytes) of the files that this process and its child processes write.
/// The limit applies during the lifetime of the object. A write beyond the limit fails as
/// on a full disk, with the error text "File too large".
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
