#include "inputfile.h"

#include "interruption.h"
#include "output.h"
#include "outputfile.h"
#include "progress.h"

#include "kpbase/replacedfile.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>
#include <QXmlStreamReader>

#include <sys/stat.h>
#include <unistd.h>

namespace SimulationTool {

namespace {

constexpr qint64 s_iHeadBytes = 4096;
constexpr qint64 s_iBlockBytes = 65'536;

bool isPipe(const QString& a_sFile)
{
    struct stat status = {};
    return ::stat(QFile::encodeName(a_sFile).constData(), &status) == 0 && S_ISFIFO(status.st_mode);
}

QString temporaryError(const QFile& a_temporary)
{
    return QStringLiteral("cannot be copied to a temporary file (TMPDIR chooses its folder): %1")
        .arg(a_temporary.errorString());
}

/// Copies the unread rest of `a_from`, until an interruption. Returns the error text;
/// empty on success and after an interruption.
QString copyError(QFile& a_from, QFile& a_to, std::uint64_t a_uiMaxBytes)
{
    std::uint64_t uiBytes = 0;
    for (;;) {
        const QByteArray block = a_from.read(s_iBlockBytes);
        if (block.isEmpty() || isInterrupted()) {
            break;
        }
        uiBytes += static_cast<std::uint64_t>(block.size());
        if (uiBytes > a_uiMaxBytes) {
            return QStringLiteral("holds more than %1 bytes, the limit: give a smaller input")
                .arg(a_uiMaxBytes);
        }
        if (!writeThrough(a_to, block)) {
            return temporaryError(a_to);
        }
    }
    return a_from.error() == QFileDevice::NoError ? QString() : a_from.errorString();
}

} // namespace

InputFile::InputFile(const QString& a_sArgument)
    : m_sArgument(a_sArgument)
    , m_sPath(isStandardStreamName(a_sArgument) ? QString() : a_sArgument)
{}

InputFile::~InputFile() = default;

bool InputFile::prepare(std::uint64_t a_uiMaxBytes)
{
    if (m_copy != nullptr || (!isStandardInput() && !isPipe(m_sArgument))) {
        return true;
    }
    const Progress progress(QStringLiteral("reading ") + name());
    m_copy = std::make_unique<QTemporaryFile>();
    QFile input(m_sArgument);
    QString sError;
    const auto eMode = QIODevice::ReadOnly | QIODevice::Unbuffered;
    if (!(isStandardInput() ? input.open(STDIN_FILENO, eMode) : input.open(eMode))) {
        sError = input.errorString();
    } else if (!m_copy->open()) {
        sError = temporaryError(*m_copy);
    } else {
        sError = copyError(input, *m_copy, a_uiMaxBytes);
    }
    // The temporary file has no name on the disk, so no other process opens it, and no
    // file is left after a crash. Readers open it by its descriptor.
    m_sPath = QStringLiteral("/proc/self/fd/%1").arg(m_copy->handle());
    if (!sError.isEmpty()) {
        complain(QStringLiteral("%1: %2").arg(name(), sError));
    }
    return sError.isEmpty() && !isInterrupted();
}

QString InputFile::name() const
{
    return isStandardInput() ? QStringLiteral("standard input") : m_sArgument;
}

bool InputFile::isStandardInput() const
{
    return isStandardStreamName(m_sArgument);
}

bool InputFile::isSameAs(const QString& a_sFile) const
{
    return isSameFile(a_sFile, isStandardInput() ? QStringLiteral("/dev/stdin") : m_sArgument);
}

QByteArray InputFile::content() const
{
    QFile file(m_sPath);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray InputFile::head() const
{
    QFile file(m_sPath);
    if (!QFileInfo(file).isFile() || !file.open(QIODevice::ReadOnly)) {
        return {};
    }
    return file.read(s_iHeadBytes);
}

bool isStandardStreamName(const QString& a_sArgument)
{
    return a_sArgument == u"-";
}

QString documentRoot(const QByteArray& a_head)
{
    QXmlStreamReader reader(a_head);
    if (reader.readNextStartElement()) {
        return reader.name().toString();
    }
    // Bytes that are not of the encoding are no error here: they may follow the root element.
    QXmlStreamReader lenient(QString::fromUtf8(a_head));
    return lenient.readNextStartElement() ? lenient.name().toString() : QString();
}

bool hasDocumentRoot(const QByteArray& a_head, const char* a_szName)
{
    return documentRoot(a_head) == QLatin1String(a_szName);
}

} // namespace SimulationTool
