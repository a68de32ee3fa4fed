#ifndef SIMULATIONDATA_XMLDEVIATIONS_P_H
#define SIMULATIONDATA_XMLDEVIATIONS_P_H

#include "simulationdata/readingreport.h"

#include <QByteArrayView>
#include <QHash>
#include <QLatin1String>
#include <QString>
#include <QStringList>

#include <optional>
#include <span>
#include <vector>

namespace Simulation {

/// Collects where a document deviates from its format. Only offsets are stored while the
/// document is read; report() calculates lines and paths. Memory is bounded: of many
/// deviations only those are kept that the report can list, and the others are counted.
/// One object is used for one reading.
class XmlDeviations
{
public:
    /// Counts a deviation, and lists it if there is room. `a_iOffset` is its place (bytes
    /// from the start of the text; -1: not known). `a_makeTexts(ReadingEntry&)` sets the
    /// texts. It is called only for a listed deviation.
    template<typename MakeTexts>
    void add(QLatin1String a_sRule, qsizetype a_iOffset, const MakeTexts& a_makeTexts)
    {
        if (ReadingEntry* const pEntry = entryFor(a_sRule, a_iOffset)) {
            a_makeTexts(*pEntry);
        }
    }

    /// The report about a document with that text, with lines, columns and paths.
    [[nodiscard]] ReadingReport report(QByteArrayView a_text);

private:
    struct Deviation
    {
        qsizetype offset = 0;
        ReadingEntry entry;
    };

    ReadingEntry* entryFor(QLatin1String a_sRule, qsizetype a_iOffset);
    void keepFirst();

    std::vector<Deviation> m_deviations;
    std::optional<Deviation> m_brokenOff;    ///< always listed
    qsizetype m_iLast = -1;                  ///< later ones are only counted; -1: all are kept
    QHash<QLatin1String, qint64> m_unlisted; ///< by rule
};

/// The first characters of a text that is shown in an entry.
[[nodiscard]] QString shownText(QByteArrayView a_text);

/// The reason of an error text, without its place, as the end of a sentence.
[[nodiscard]] QString errorSentence(const QString& a_sError);

/// The name that was probably meant: one that differs in its letter case only, or in few
/// characters. Empty when there is none.
[[nodiscard]] QString similarName(QByteArrayView a_name, std::span<const QLatin1String> a_names);
[[nodiscard]] QString similarName(const QString& a_sName, const QStringList& a_names);

} // namespace Simulation

#endif
