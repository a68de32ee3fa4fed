#include "velaappstartup/settingscfg_p.h"

#include "kpbase/errorhandler.h"
#include "kpbase/replacedfile.h"

#include <QSettings>
#include <QTemporaryFile>

#include <utility>

namespace {

constexpr const char* s_szSource = "platform/velaappstartup/cfgcenter";

/// Precedes every value that QSettings reads, so that the value stays a text.
/// QSettings would decode a value that begins with '@' into an object of any size in
/// memory.
constexpr char s_cMark = '=';

/// Whether the value is a Windows path with single backslashes as separators, as
/// people type it: "C:\Data" or "\\server\data".
bool isTypedPath(QByteArrayView a_value)
{
    constexpr qsizetype iDrive = 2; // "C:"
    if (a_value.startsWith("\\\\")) {
        const QByteArrayView rest = a_value.sliced(2);
        const qsizetype iNext = rest.indexOf('\\');
        return iNext > 0 && !rest.sliced(iNext).startsWith("\\\\");
    }
    return a_value.size() > iDrive && a_value[1] == ':' && a_value[iDrive] == '\\' &&
           !a_value.sliced(iDrive).startsWith("\\\\");
}

/// The index of the closing quote of a value; -1 when there is none.
qsizetype closingQuote(QByteArrayView a_value, bool a_bTypedPath)
{
    for (qsizetype i = 1; i < a_value.size(); ++i) {
        if (a_value[i] == '"') {
            return i;
        }
        if (a_value[i] == '\\' && !a_bTypedPath) {
            ++i;
        }
    }
    return -1;
}

/// Returns the value without its quotes and without the comment after it.
QByteArrayView bareValue(QByteArrayView a_value)
{
    if (a_value.startsWith('"')) {
        const qsizetype iQuote = closingQuote(a_value, isTypedPath(a_value.sliced(1)));
        const QByteArrayView rest = iQuote < 0 ? a_value : a_value.sliced(iQuote + 1).trimmed();
        if (rest.isEmpty() || rest.startsWith(';')) {
            return a_value.sliced(1, iQuote - 1);
        }
    }
    const qsizetype iComment = a_value.indexOf(';');
    return (iComment < 0 ? a_value : a_value.first(iComment)).trimmed();
}

/// Returns the value as one quoted text, which QSettings never reads as a list.
QByteArray quotedValue(QByteArrayView a_value)
{
    const QByteArrayView bare = bareValue(a_value);
    const bool bTypedPath = isTypedPath(bare);
    QByteArray quoted{"\""};
    quoted += s_cMark;
    bool bEscaped = false;
    for (const char cByte : bare) {
        const bool bBackslash = cByte == '\\';
        if ((bBackslash && bTypedPath) || (cByte == '"' && !bEscaped)) {
            quoted += '\\';
        }
        quoted += cByte;
        bEscaped = bBackslash && !bTypedPath && !bEscaped;
    }
    // A single backslash at the end would escape the closing quote.
    return quoted + (bEscaped ? "\\\"\n" : "\"\n");
}

/// Returns a line with a section or a value in the form that QSettings reads. Returns an
/// empty text for any other line.
QByteArray cleanLine(QByteArrayView a_line)
{
    const qsizetype iEquals = a_line.indexOf('=');
    const bool bSection = a_line.startsWith('[');
    const QByteArrayView name = bSection ? a_line : a_line.first(iEquals < 0 ? 0 : iEquals).trimmed();
    // Drops comments, and lines whose name is empty, contains a quote or ends in a
    // backslash. After a quote outside a value, QSettings would read the following lines as
    // part of the quoted text. After a section name that ends in a backslash, it would read
    // the next line as part of the name.
    if (name.isEmpty() || name.contains('"') || name.startsWith(';') || name.endsWith('\\')) {
        return {};
    }
    return bSection ? name.toByteArray() + '\n'
                    : name.toByteArray() + '=' + quotedValue(a_line.sliced(iEquals + 1).trimmed());
}

QByteArray cleanText(QByteArray a_text)
{
    constexpr QByteArrayView byteOrderMark("\xEF\xBB\xBF");
    if (a_text.startsWith(byteOrderMark)) {
        a_text.remove(0, byteOrderMark.size());
    }
    a_text.replace('\r', '\n');
    QByteArray clean;
    for (qsizetype iStart = 0; iStart < a_text.size();) {
        const qsizetype iBreak = a_text.indexOf('\n', iStart);
        const qsizetype iEnd = iBreak < 0 ? a_text.size() : iBreak;
        clean += cleanLine(QByteArrayView(a_text).sliced(iStart, iEnd - iStart).trimmed());
        iStart = iEnd + 1;
    }
    return clean;
}

/// Returns the text of a value that QSettings has read, without the mark. QSettings
/// writes a leading '@' twice; one is removed.
QString plainText(const QString& a_sValue)
{
    const QString sText = a_sValue.mid(1);
    return sText.startsWith(QLatin1String("@@")) ? sText.mid(1) : sText;
}

/// One group: the values whose names begin with its prefix.
class SettingsCfg : public ICfg
{
public:
    SettingsCfg(SettingsStore& a_store, QString a_sPrefix)
        : m_store(a_store)
        , m_sPrefix(std::move(a_sPrefix))
    {}

    ICfg* openGroup(const QString& a_sName) override { return m_store.group(groupPrefix(a_sName)); }

    bool hasGroup(const QString& a_sName) const override
    {
        const QString sPrefix = groupPrefix(a_sName);
        const auto it = m_store.values().lowerBound(sPrefix);
        return it != m_store.values().end() && it.key().startsWith(sPrefix);
    }

    QString readString(const QString& a_sName, const QString& a_sDefault) const override
    {
        return m_store.values().value(m_sPrefix + a_sName, a_sDefault);
    }

    unsigned readUnsigned(const QString& a_sName, unsigned a_uiDefault) const override
    {
        const auto it = m_store.values().find(m_sPrefix + a_sName);
        if (it == m_store.values().end()) {
            return a_uiDefault;
        }
        bool bNumber = false;
        const unsigned uiValue = it.value().toUInt(&bNumber);
        if (!bNumber && ErrorHandler::Instance().traces(ErrorHandler::TraceError)) {
            _Q_Trace(QStringLiteral("Setting \"%1\" is \"%2\", not an unsigned 32-bit number; %3 is used")
                         .arg(it.key(), it.value(), QString::number(a_uiDefault)),
                     s_szSource, __LINE__);
        }
        return bNumber ? uiValue : a_uiDefault;
    }

private:
    QString groupPrefix(const QString& a_sName) const { return m_sPrefix + a_sName + u'/'; }

    SettingsStore& m_store;
    const QString m_sPrefix;
};

} // namespace

std::optional<SettingsValues> parseSettings(const QByteArray& a_text, QString* a_pReason)
{
    // QSettings reads only files. A new file name also bypasses the cache of
    // QSettings, which may hold an older version of a changed file.
    QTemporaryFile file;
    const QByteArray clean = cleanText(a_text);
    if (!file.open() || !writeThrough(file, clean)) {
        *a_pReason = file.errorString();
        return std::nullopt;
    }
    const QSettings settings(file.fileName(), QSettings::IniFormat);
    if (settings.status() == QSettings::AccessError) {
        *a_pReason = QStringLiteral("cannot read \"%1\"").arg(file.fileName());
        return std::nullopt;
    }
    SettingsValues values;
    const QStringList names = settings.allKeys();
    for (const QString& sName : names) {
        values.insert(sName, plainText(settings.value(sName).toString()));
    }
    return values;
}

SettingsStore::SettingsStore(SettingsValues a_values)
    : m_values(std::move(a_values))
{}

SettingsStore::~SettingsStore() = default;

ICfg* SettingsStore::group(const QString& a_sPrefix)
{
    const std::lock_guard lock(m_mutex);
    std::unique_ptr<ICfg>& group = m_groups[a_sPrefix];
    if (!group) {
        group = std::make_unique<SettingsCfg>(*this, a_sPrefix);
    }
    return group.get();
}
