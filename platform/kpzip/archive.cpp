#include "kpzip/archive.h"

#include "kpbase/errorhandler.h"
#include "kpbase/replacedfile.h"
#include "zipdirectory_p.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <iterator>
#include <vector>

#include <zip.h>

namespace KPZip {

namespace {

constexpr const char* s_szSource = "platform/kpzip/archive";

constexpr std::size_t s_uiBlockBytes = 65'536;

/// Number of refused entries of one archive that are traced individually. Further
/// entries are only counted.
constexpr std::uint64_t s_uiTracedEntries = 10;

constexpr qsizetype s_iShownName = 100;

/// Largest number of parts in a name. With deeper names, a small archive could make
/// any number of folders.
constexpr qsizetype s_iMaxDepth = 32;

// Unix file types in the upper half of an entry's attributes. Archives from other
// systems have 0 there.
constexpr std::uint32_t s_uiModeShift = 16;
constexpr std::uint32_t s_uiKindMask = 0170000;
constexpr std::uint32_t s_uiKindFile = 0100000;
constexpr std::uint32_t s_uiKindFolder = 0040000;

struct ZipFileCloser
{
    void operator()(zip_file_t* a_pFile) const { zip_fclose(a_pFile); }
};
using ZipFile = std::unique_ptr<zip_file_t, ZipFileCloser>;

void traceError(const QString& a_sMessage, int a_iLine = __builtin_LINE())
{
    if (ErrorHandler::Instance().traces(ErrorHandler::TraceError)) {
        _Q_Trace(a_sMessage, s_szSource, a_iLine);
    }
}

/// Returns a name from an archive for a trace: shortened and on one line.
QString shown(const QString& a_sName)
{
    QString sShown = a_sName.left(s_iShownName);
    for (QChar& character : sShown) {
        if (!character.isPrint()) {
            character = QLatin1Char('?');
        }
    }
    return sShown;
}

/// Traces the entries that are not unpacked. Only the first entries are traced
/// individually, so that no archive can fill the trace. When there are more, the number
/// of all refused entries is traced at the end.
class EntryTraces
{
public:
    explicit EntryTraces(const QString& a_sPath)
        : m_sPath(a_sPath)
    {}
    ~EntryTraces()
    {
        if (m_uiCount > s_uiTracedEntries) {
            traceError(
                QStringLiteral("Archive \"%1\": %2 entries refused in all").arg(m_sPath).arg(m_uiCount));
        }
    }
    EntryTraces(const EntryTraces&) = delete;
    EntryTraces& operator=(const EntryTraces&) = delete;

    void refuse(const QString& a_sName, const QString& a_sReason)
    {
        if (++m_uiCount <= s_uiTracedEntries) {
            traceError(QStringLiteral("Archive \"%1\": entry \"%2\" refused: %3")
                           .arg(m_sPath, shown(a_sName), a_sReason));
        }
    }
    [[nodiscard]] std::uint64_t count() const { return m_uiCount; }

private:
    const QString& m_sPath;
    std::uint64_t m_uiCount = 0;
};

/// The reason why a name cannot be a path below a target folder; empty when it can.
QString nameError(const QString& a_sName)
{
    const auto isControl = [](QChar a_character) { return a_character.category() == QChar::Other_Control; };
    if (a_sName.contains(QLatin1Char('\\'))) {
        return QStringLiteral("backslash in the name");
    }
    if (std::any_of(a_sName.cbegin(), a_sName.cend(), isControl)) {
        return QStringLiteral("control character in the name");
    }
    if (a_sName.startsWith(QLatin1Char('/'))) {
        return QStringLiteral("absolute name");
    }
    if (a_sName.size() > 1 && a_sName.at(1) == QLatin1Char(':') && a_sName.at(0).isLetter()) {
        return QStringLiteral("name begins with a drive letter");
    }
    const QStringList parts = a_sName.split(QLatin1Char('/'));
    if (parts.contains(QStringLiteral(".."))) {
        return QStringLiteral("name leads out of the target folder");
    }
    if (parts.size() > s_iMaxDepth) {
        return QStringLiteral("%1 folders deep").arg(parts.size() - 1);
    }
    // With an empty part or a "." in names, one file would have two names.
    return parts.contains(QString()) || parts.contains(QStringLiteral("."))
               ? QStringLiteral("empty part or \".\" in the name")
               : QString();
}

/// The reason why an entry cannot be unpacked; empty when it can.
QString entryError(const zip_stat_t& a_stat, std::uint32_t a_uiKind)
{
    if (a_uiKind != 0 && a_uiKind != s_uiKindFile && a_uiKind != s_uiKindFolder) {
        return QStringLiteral("a link or device, mode 0%1").arg(a_uiKind, 0, 8);
    }
    if (a_stat.encryption_method != ZIP_EM_NONE) {
        return QStringLiteral("encrypted, method %1").arg(a_stat.encryption_method);
    }
    // The decoders of other methods take as much memory as the archive requests.
    if (a_stat.comp_method != ZIP_CM_STORE && a_stat.comp_method != ZIP_CM_DEFLATE) {
        return QStringLiteral("unknown compression method %1").arg(a_stat.comp_method);
    }
    return {};
}

/// The header of an entry, and whether the entry can be unpacked.
struct EntryHeader
{
    QString name; ///< without the slash at a folder's end
    bool folder = false;
    std::uint64_t size = 0; ///< bytes, as declared
    QString problem;        ///< why the entry cannot be unpacked; empty when it can
};

EntryHeader readHeader(zip_t* a_pArchive, std::uint64_t a_uiIndex)
{
    EntryHeader header;
    zip_stat_t stat{};
    zip_uint8_t uiSystem = 0;
    zip_uint32_t uiAttributes = 0;
    if (zip_stat_index(a_pArchive, a_uiIndex, 0, &stat) != 0 ||
        zip_file_get_external_attributes(a_pArchive, a_uiIndex, 0, &uiSystem, &uiAttributes) != 0) {
        header.problem = QString::fromUtf8(zip_strerror(a_pArchive));
        return header;
    }
    const std::uint32_t uiKind = (uiAttributes >> s_uiModeShift) & s_uiKindMask;
    header.name = QString::fromUtf8(stat.name);
    header.folder = header.name.endsWith(QLatin1Char('/')) || uiKind == s_uiKindFolder;
    header.size = stat.size;
    if (header.name.endsWith(QLatin1Char('/'))) {
        header.name.chop(1);
    }
    header.problem = nameError(header.name);
    if (header.problem.isEmpty()) {
        header.problem = entryError(stat, uiKind);
    }
    return header;
}

bool isLink(const QFileInfo& a_info)
{
    return a_info.isSymLink() || a_info.isJunction();
}

/// Makes the missing folders of a relative path below the target. Returns the error
/// text, empty on success.
QString makeFolders(const QString& a_sTarget, const QString& a_sRelative)
{
    for (qsizetype iSlash = a_sRelative.indexOf(QLatin1Char('/')); iSlash >= 0;
         iSlash = a_sRelative.indexOf(QLatin1Char('/'), iSlash + 1)) {
        const QFileInfo folder(a_sTarget + QLatin1Char('/') + a_sRelative.left(iSlash));
        if (isLink(folder)) {
            return QStringLiteral("\"%1\" is a link").arg(folder.filePath());
        }
        if (!folder.isDir() && !QDir().mkdir(folder.filePath())) {
            return QStringLiteral("cannot make the folder \"%1\"").arg(folder.filePath());
        }
    }
    return {};
}

QString openError(int a_iCode)
{
    zip_error_t error{};
    zip_error_init_with_code(&error, a_iCode);
    QString sReason = QString::fromUtf8(zip_error_strerror(&error));
    zip_error_fini(&error);
    return sReason;
}

/// Copies an open entry to a file under a temporary name. Returns the error text,
/// empty on success. Subtracts the copied bytes from `*a_pBytesLeft`.
QString copyEntry(zip_file_t* a_pEntry, ReplacedFile& a_file, std::uint64_t* a_pBytesLeft)
{
    std::vector<char> block(s_uiBlockBytes);
    zip_int64_t iRead = 0;
    // The read that reaches the end verifies the checksum.
    while ((iRead = zip_fread(a_pEntry, block.data(), block.size())) > 0) {
        if (static_cast<std::uint64_t>(iRead) > *a_pBytesLeft) {
            *a_pBytesLeft = 0;
            return QStringLiteral("the archive unpacks to more bytes than are allowed");
        }
        *a_pBytesLeft -= static_cast<std::uint64_t>(iRead);
        if (!a_file.write(block.data(), iRead)) {
            return a_file.errorString();
        }
    }
    if (iRead < 0) {
        return QString::fromUtf8(zip_error_strerror(zip_file_get_error(a_pEntry)));
    }
    return {};
}

/// Unpacks one entry under a temporary name and renames it. Returns the error text,
/// empty on success.
QString unpack(zip_t* a_pArchive, std::uint64_t a_uiIndex, const QString& a_sFile,
               std::uint64_t* a_pBytesLeft)
{
    const QFileInfo target(a_sFile);
    // Replacing a link by its name would write to the target of the link.
    if (isLink(target) || (target.exists() && !target.isFile())) {
        return QStringLiteral("\"%1\" is a link, folder or device").arg(a_sFile);
    }
    const ZipFile entry(zip_fopen_index(a_pArchive, a_uiIndex, 0));
    if (!entry) {
        return QString::fromUtf8(zip_strerror(a_pArchive));
    }
    ReplacedFile file(a_sFile);
    if (!file.open()) {
        return file.errorString();
    }
    const QString sError = copyEntry(entry.get(), file, a_pBytesLeft);
    return sError.isEmpty() && !file.commit() ? file.errorString() : sError;
}

} // namespace

void Archive::Closer::operator()(zip* a_pArchive) const
{
    zip_discard(a_pArchive);
}

Archive::Archive(const QString& a_sPath)
    : m_sPath(a_sPath)
{}

Archive::~Archive() = default;

void Archive::setBounds(std::uint64_t a_uiBytes, std::uint64_t a_uiEntries)
{
    m_uiMaxBytes = a_uiBytes;
    m_uiMaxEntries = a_uiEntries;
}

bool Archive::open(Mode a_eMode)
{
    close();
    m_sError.clear();
    m_uiBytesLeft = m_uiMaxBytes;
    if (a_eMode != ModeRead) {
        return fail(QStringLiteral("mode %1 is unknown").arg(static_cast<int>(a_eMode)));
    }
    // Opening a device or a pipe could block without limit.
    if (!QFileInfo(m_sPath).isFile()) {
        return fail(QStringLiteral("no such file"));
    }
    QString sReason;
    const std::optional<ZipDirectory> directory = readZipDirectory(m_sPath, m_uiMaxEntries, &sReason);
    if (!directory) {
        return fail(sReason);
    }
    int iCode = 0;
    m_archive.reset(zip_open(QFile::encodeName(m_sPath).constData(), ZIP_RDONLY, &iCode));
    if (!m_archive) {
        return fail(openError(iCode));
    }
    const zip_int64_t iEntries = zip_get_num_entries(m_archive.get(), 0);
    if (iEntries < 0 || static_cast<std::uint64_t>(iEntries) != directory->entryCount) {
        close();
        return fail(QStringLiteral("the zip library finds %1 entries, the directory has %2")
                        .arg(iEntries)
                        .arg(directory->entryCount));
    }
    listEntries(*directory);
    return true;
}

void Archive::listEntries(const ZipDirectory& a_directory)
{
    const std::vector<std::uint64_t>& withNul = a_directory.namesWithNul;
    EntryTraces traces(m_sPath);
    for (std::uint64_t i = 0; i < a_directory.entryCount; ++i) {
        EntryHeader header = readHeader(m_archive.get(), i);
        if (std::binary_search(withNul.begin(), withNul.end(), i)) {
            header.problem = QStringLiteral("NUL in the name");
        } else if (header.problem.isEmpty() && !header.folder && m_entries.contains(header.name)) {
            header.problem = QStringLiteral("the archive has two files of that name");
        }
        if (!header.problem.isEmpty()) {
            traces.refuse(header.name, header.problem);
        } else if (!header.folder) {
            m_files.append(header.name);
            m_entries.insert(header.name, {i, header.size});
        }
    }
    m_uiRefused = traces.count();
}

std::uint64_t Archive::declaredSize(const QString& a_sEntry) const
{
    return m_entries.value(a_sEntry).size;
}

bool Archive::extractToFile(const QString& a_sEntry, const QString& a_sFile)
{
    const auto entry = m_entries.constFind(a_sEntry);
    if (entry == m_entries.constEnd()) {
        return fail(QStringLiteral("no file \"%1\"").arg(shown(a_sEntry)));
    }
    const QString sError = unpack(m_archive.get(), entry->index, a_sFile, &m_uiBytesLeft);
    return sError.isEmpty() || fail(QStringLiteral("\"%1\" not unpacked: %2").arg(shown(a_sEntry), sError));
}

bool Archive::extractToFolder(const QString& a_sFolder, const QString& a_sTarget)
{
    const QLatin1Char slash('/');
    QString sBelow = a_sFolder.split(slash, Qt::SkipEmptyParts).join(slash);
    if (!sBelow.isEmpty()) {
        sBelow += slash;
    }
    QStringList entries;
    std::copy_if(m_files.cbegin(), m_files.cend(), std::back_inserter(entries),
                 [&](const QString& a_sEntry) { return a_sEntry.startsWith(sBelow); });
    if (entries.isEmpty()) {
        return fail(QStringLiteral("no files in \"%1\"").arg(shown(a_sFolder)));
    }
    if (a_sTarget.isEmpty() || !QDir().mkpath(a_sTarget)) {
        return fail(QStringLiteral("cannot make the folder \"%1\"").arg(a_sTarget));
    }
    EntryTraces traces(m_sPath);
    for (const QString& sEntry : entries) {
        const QString sRelative = sEntry.mid(sBelow.size());
        QString sError = makeFolders(a_sTarget, sRelative);
        if (sError.isEmpty()) {
            sError = unpack(m_archive.get(), m_entries.value(sEntry).index, a_sTarget + slash + sRelative,
                            &m_uiBytesLeft);
        }
        if (!sError.isEmpty()) {
            m_sError = QStringLiteral("\"%1\" not unpacked: %2").arg(shown(sEntry), sError);
            traces.refuse(sEntry, sError);
        }
    }
    return traces.count() == 0;
}

void Archive::close()
{
    m_archive.reset();
    m_files.clear();
    m_entries.clear();
    m_uiRefused = 0;
}

bool Archive::fail(const QString& a_sReason)
{
    m_sError = a_sReason;
    traceError(QStringLiteral("Archive \"%1\": %2").arg(m_sPath, a_sReason));
    return false;
}

} // namespace KPZip
