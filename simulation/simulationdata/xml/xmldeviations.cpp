#include "xmldeviations_p.h"

#include "xmlencoding_p.h"
#include "xmltextreader_p.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>
#include <cstdlib>
#include <numeric>
#include <optional>
#include <utility>

namespace Simulation {

namespace {

constexpr qsizetype s_iShownCharacters = 80;
constexpr qsizetype s_iShownLabel = 40; ///< characters of an id in a path
constexpr qsizetype s_iShownSteps = 12; ///< of a path, from the root
constexpr auto s_uiMost = static_cast<std::size_t>(ReadingReport::s_iMaximumEntries);

QString shortened(const QString& a_sText, qsizetype a_iCharacters)
{
    if (a_sText.size() <= a_iCharacters) {
        return a_sText;
    }
    const qsizetype iHalf = a_sText.at(a_iCharacters - 1).isHighSurrogate() ? 1 : 0;
    return a_sText.left(a_iCharacters - iHalf) + u'…';
}

Severity severityOf(QLatin1String a_sRule)
{
    const auto rules = ReadingReport::rules();
    const auto found = std::find_if(rules.begin(), rules.end(),
                                    [&](const CheckRule& a_rule) { return a_rule.id == a_sRule; });
    return found != rules.end() ? found->severity : Severity::Error;
}

/// The number of insertions, deletions and replacements that turn one text into the
/// other (Levenshtein 1966), by dynamic programming over one row. Ends early, with a number
/// that is not less than the limit, when the texts differ by at least that much.
qsizetype editDistance(const QString& a_sFirst, const QString& a_sSecond, qsizetype a_iLimit)
{
    std::vector<qsizetype> row(static_cast<std::size_t>(a_sSecond.size()) + 1);
    std::iota(row.begin(), row.end(), 0);
    for (qsizetype i = 0; i < a_sFirst.size(); ++i) {
        qsizetype iDiagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 1; j < row.size(); ++j) {
            const bool bSame = a_sFirst.at(i) == a_sSecond.at(static_cast<qsizetype>(j) - 1);
            const qsizetype iReplaced = iDiagonal + (bSame ? 0 : 1);
            iDiagonal = std::exchange(row[j], std::min({row[j] + 1, row[j - 1] + 1, iReplaced}));
        }
        if (*std::min_element(row.begin(), row.end()) >= a_iLimit) {
            return a_iLimit;
        }
    }
    return row.back();
}

/// One step of a path: an element and its id.
struct Step
{
    QByteArrayView name;
    std::optional<QByteArray> id;

    [[nodiscard]] QString text() const;
};

QString Step::text() const
{
    QString sName = shortened(QString::fromUtf8(name), s_iShownLabel);
    if (!id) {
        return sName;
    }
    QString sId = shortened(QString::fromUtf8(*id), s_iShownLabel);
    // An id may contain the characters that separate the steps of a path.
    for (const QChar c : {QChar(u'\\'), QChar(u'['), QChar(u']'), QChar(u'/')}) {
        sId.replace(c, QString(u'\\') + c);
    }
    return sName + u'[' + sId + u']';
}

/// Walks through a text once and finds the paths of ascending offsets.
class PathFinder
{
public:
    explicit PathFinder(QByteArrayView a_text)
        : m_reader(a_text)
    {}

    /// The path of the element that the offset lies in, and of the attribute when the
    /// offset is that of an attribute.
    [[nodiscard]] QString pathAt(qsizetype a_iOffset);

private:
    void advance();

    XmlTextReader m_reader;
    std::vector<Step> m_open;     ///< the element started last is the innermost one
    std::optional<Step> m_closed; ///< the element whose end tag was read last
    bool m_bEnded = false;
};

/// Reads the next start tag or end tag.
void PathFinder::advance()
{
    m_closed.reset();
    if (m_reader.nextChild()) {
        const XmlText* pId = m_reader.attribute(QLatin1String("ID"));
        pId = pId != nullptr ? pId : m_reader.attribute(QLatin1String("UID"));
        m_open.push_back(
            {m_reader.name(), pId != nullptr ? std::make_optional(pId->bytes.toByteArray()) : std::nullopt});
    } else if (!m_open.empty()) {
        m_closed = std::move(m_open.back());
        m_open.pop_back();
    }
    m_bEnded = m_open.empty();
}

QString PathFinder::pathAt(qsizetype a_iOffset)
{
    while (!m_bEnded && m_reader.position() <= a_iOffset) {
        advance();
    }
    QStringList steps;
    const bool bStarted = !m_closed && !m_open.empty();
    const std::size_t uiOutside = bStarted && a_iOffset < m_reader.offset() ? 1 : 0;
    for (std::size_t i = 0; i + uiOutside < m_open.size(); ++i) {
        if (steps.size() < s_iShownSteps) {
            steps.append(m_open[i].text());
        }
    }
    if (m_open.size() > static_cast<std::size_t>(s_iShownSteps)) {
        steps.append(QStringLiteral("…"));
    }
    if (m_closed) {
        steps.append(m_closed->text());
    } else if (bStarted) {
        for (const XmlAttribute& attribute : m_reader.attributes()) {
            if (attribute.value.offset == a_iOffset) {
                steps.append(u'@' + shortened(QString::fromUtf8(attribute.name), s_iShownLabel));
            }
        }
    }
    return steps.join(u'/');
}

} // namespace

QString shownText(QByteArrayView a_text)
{
    // A character has at most 4 bytes.
    const QByteArrayView head = a_text.first(std::min(a_text.size(), s_iShownCharacters * 4));
    return shortened(QString::fromUtf8(head), s_iShownCharacters);
}

QString errorSentence(const QString& a_sError)
{
    static const QRegularExpression s_place(QStringLiteral("^line [0-9]+, column [0-9]+: "));
    QString sReason = a_sError;
    sReason.remove(s_place);
    return sReason.endsWith(u'.') ? sReason : sReason + u'.'; // texts of the parser have a full stop
}

QString similarName(QByteArrayView a_name, std::span<const QLatin1String> a_names)
{
    QStringList names;
    for (const QLatin1String sName : a_names) {
        names.append(sName);
    }
    return similarName(shownText(a_name.trimmed()), names);
}

QString similarName(const QString& a_sName, const QStringList& a_names)
{
    constexpr qsizetype iLettersPerError = 3; // one wrong letter in three is still similar
    constexpr qsizetype iLongest = 32;        // the comparison takes time in proportion to the square
    if (a_sName.size() > iLongest) {
        return {};
    }
    qsizetype iLeast = std::max<qsizetype>(1, a_sName.size() / iLettersPerError) + 1;
    QString sSimilar;
    for (const QString& sName : a_names) {
        if (sName.compare(a_sName, Qt::CaseInsensitive) == 0) {
            return sName;
        }
        if (std::abs(sName.size() - a_sName.size()) >= iLeast) {
            continue;
        }
        if (const qsizetype iDistance = editDistance(a_sName, sName, iLeast); iDistance < iLeast) {
            iLeast = iDistance;
            sSimilar = sName;
        }
    }
    return sSimilar;
}

ReadingEntry* XmlDeviations::entryFor(QLatin1String a_sRule, qsizetype a_iOffset)
{
    if (a_sRule == ReadingReport::s_sBrokenOff) {
        m_brokenOff = {a_iOffset, {}};
        m_brokenOff->entry.rule = a_sRule;
        m_brokenOff->entry.severity = severityOf(a_sRule);
        return &m_brokenOff->entry;
    }
    if (static_cast<std::size_t>(a_iOffset) > static_cast<std::size_t>(m_iLast)) {
        ++m_unlisted[a_sRule];
        return nullptr;
    }
    if (m_deviations.size() >= 2 * s_uiMost) {
        keepFirst();
    }
    Deviation& deviation = m_deviations.emplace_back();
    deviation.offset = a_iOffset;
    deviation.entry.rule = a_sRule;
    deviation.entry.severity = severityOf(a_sRule);
    return &deviation.entry;
}

/// Keeps the first deviations in the order of the text, and counts the others.
void XmlDeviations::keepFirst()
{
    const auto byOffset = [](const Deviation& a_first, const Deviation& a_second) {
        // A place that is not known comes last.
        return static_cast<std::size_t>(a_first.offset) < static_cast<std::size_t>(a_second.offset);
    };
    std::stable_sort(m_deviations.begin(), m_deviations.end(), byOffset);
    const std::size_t uiMost = s_uiMost - (m_brokenOff ? 1 : 0);
    while (m_deviations.size() > uiMost) {
        ++m_unlisted[m_deviations.back().entry.rule];
        m_deviations.pop_back();
    }
    if (m_deviations.size() == uiMost) {
        m_iLast = m_deviations.back().offset;
    }
}

ReadingReport XmlDeviations::report(QByteArrayView a_text)
{
    keepFirst();
    if (m_brokenOff) { // the end of the document, and worth more than another entry
        m_deviations.push_back(std::move(*m_brokenOff));
    }
    ReadingReport report;
    PathFinder paths(a_text);
    XmlPosition position;
    qsizetype iFrom = 0;
    for (Deviation& deviation : m_deviations) {
        if (deviation.offset >= 0) {
            const qsizetype iOffset = std::min(deviation.offset, a_text.size());
            position = advanced(position, a_text.sliced(iFrom, iOffset - iFrom));
            iFrom = iOffset;
            deviation.entry.line = position.line;
            deviation.entry.column = position.column;
            deviation.entry.path = paths.pathAt(iOffset);
        }
        report.add(std::move(deviation.entry));
    }
    for (auto it = m_unlisted.cbegin(); it != m_unlisted.cend(); ++it) {
        report.addUnlisted(it.key(), severityOf(it.key()), it.value());
    }
    m_deviations.clear();
    m_brokenOff.reset();
    m_unlisted.clear();
    return report;
}

} // namespace Simulation
