#ifndef SIMULATIONTOOL_INPUTFILE_H
#define SIMULATIONTOOL_INPUTFILE_H

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <memory>

class QTemporaryFile;

namespace SimulationTool {

/// An input file of a command: a named file, or standard input, which is named "-".
/// Standard input and named pipes are copied to a temporary file first, because most
/// readers read a file more than once. The copy has no name on the disk and is freed
/// with this object, also when the process is killed.
class InputFile
{
public:
    /// `a_sArgument` is the command's argument. Does not open the file.
    explicit InputFile(const QString& a_sArgument);
    ~InputFile();
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    /// Copies standard input or a named pipe, and does nothing for other files.
    /// False, after one line on standard error, when the input cannot be read or copied,
    /// or exceeds the limit (bytes). False without a line when interrupted.
    [[nodiscard]] bool prepare(std::uint64_t a_uiMaxBytes);

    /// The path for readers; valid after prepare().
    [[nodiscard]] QString path() const { return m_sPath; }
    /// The name for messages: the argument, or "standard input".
    [[nodiscard]] QString name() const;
    [[nodiscard]] bool isStandardInput() const;
    /// Whether `a_sFile` names the same file. True also when standard input is redirected
    /// from `a_sFile`.
    [[nodiscard]] bool isSameAs(const QString& a_sFile) const;
    /// All bytes; empty when they cannot be read.
    [[nodiscard]] QByteArray content() const;
    /// The first bytes (at most 4096). Empty unless the input is a regular file, because
    /// reading from a pipe removes the bytes.
    [[nodiscard]] QByteArray head() const;

private:
    QString m_sArgument;
    QString m_sPath;
    std::unique_ptr<QTemporaryFile> m_copy;
};

/// Whether the argument is "-", which names standard input or output instead of a
/// file.
[[nodiscard]] bool isStandardStreamName(const QString& a_sArgument);

/// The name of the root element, without a prefix, in the first bytes of a document; empty
/// when they contain no start tag.
[[nodiscard]] QString documentRoot(const QByteArray& a_head);
/// Whether the document's first bytes contain the start tag of this root element.
[[nodiscard]] bool hasDocumentRoot(const QByteArray& a_head, const char* a_szName);

} // namespace SimulationTool

#endif
