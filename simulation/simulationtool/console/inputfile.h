#ifndef SIMULATIONTOOL_INPUTFILE_H
#define SIMULATIONTOOL_INPUTFILE_H

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <memory>

class QTemporaryFile;

namespace SimulationTool {

/// A file that a command reads: one that the user names, or standard input,
/// which is named "-". Standard input and named pipes are copied to a temporary
/// file first, because most readers look at a file more than once. That file has no name on
/// the disk and ends with this object, also when the process is killed.
class InputFile
{
public:
    /// By the argument of a command. A file is not opened.
    explicit InputFile(const QString& a_sArgument);
    ~InputFile();
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    /// Copies standard input, or a pipe, which can be read only once; nothing is
    /// done for a file. False after one line on standard error when it cannot be
    /// read or copied or holds more than so many bytes.
    [[nodiscard]] bool prepare(std::uint64_t a_uiMaxBytes);

    /// What readers open; valid once prepared.
    [[nodiscard]] QString path() const { return m_sPath; }
    /// What people read: the argument, or "standard input".
    [[nodiscard]] QString name() const;
    [[nodiscard]] bool isStandardInput() const;
    /// Whether another name leads to the same file; also when standard input was
    /// redirected from that file.
    [[nodiscard]] bool isSameAs(const QString& a_sFile) const;
    /// All bytes; empty when they cannot be read.
    [[nodiscard]] QByteArray content() const;
    /// The first bytes (at most 4096); empty when it is no regular file: a pipe
    /// would lose them.
    [[nodiscard]] QByteArray head() const;

private:
    QString m_sArgument;
    QString m_sPath;
    std::unique_ptr<QTemporaryFile> m_copy;
};

/// Whether an argument, "-", names standard input or output instead of a file.
[[nodiscard]] bool isStandardStreamName(const QString& a_sArgument);

/// Whether the first bytes of a document name this root element.
[[nodiscard]] bool hasDocumentRoot(const QByteArray& a_head, const char* a_szName);

} // namespace SimulationTool

#endif
