#include "emitterselection.h"

#include "simulationdata/szenarioemitter.h"

#include <QSet>

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <utility>
#include <vector>

namespace SimulationTool {

namespace {

constexpr qsizetype s_iMaxComparedLength = 64; ///< longer texts are not compared
constexpr qsizetype s_iLettersPerSlip = 4;     ///< text length per additional allowed typing error

/// The edit distance of two texts: the number of letters to insert, delete or replace,
/// regardless of case. The result is exact below `a_iLimit`; otherwise it is only
/// known to be at least `a_iLimit`. O(n m) time, O(m) memory.
qsizetype slips(const QString& a_sFirst, const QString& a_sSecond, qsizetype a_iLimit)
{
    if (std::abs(a_sFirst.size() - a_sSecond.size()) >= a_iLimit) {
        return a_iLimit;
    }
    // Keeps one row of the table of Wagner and Fischer (Journal of the ACM 21, 1974):
    // row[i] is the edit distance between the letters read so far and the first i letters
    // of the second text.
    std::vector<qsizetype> row(static_cast<std::size_t>(a_sSecond.size()) + 1);
    std::iota(row.begin(), row.end(), 0);
    for (const QChar cFirst : a_sFirst) {
        qsizetype iDiagonal = std::exchange(row[0], row[0] + 1);
        for (std::size_t i = 1; i < row.size(); ++i) {
            const bool bSame = cFirst.toLower() == a_sSecond.at(static_cast<qsizetype>(i) - 1).toLower();
            const qsizetype iBest = std::min({row[i] + 1, row[i - 1] + 1, iDiagonal + (bSame ? 0 : 1)});
            iDiagonal = std::exchange(row[i], iBest);
        }
        if (*std::min_element(row.cbegin(), row.cend()) >= a_iLimit) {
            return a_iLimit;
        }
    }
    return row.back();
}

/// The id or name with the smallest edit distance to a text; empty when none is
/// similar.
QString nearest(const Emitters& a_emitters, const QString& a_sText)
{
    QString sNearest;
    qsizetype iFewest = std::min(a_sText.size(), a_sText.size() / s_iLettersPerSlip + 2);
    if (a_sText.size() > s_iMaxComparedLength) {
        return sNearest;
    }
    for (const auto& emitter : a_emitters) {
        for (const QString& sCandidate : {emitter->id(), emitter->name()}) {
            const qsizetype iSlips = sCandidate.isEmpty() ? iFewest : slips(a_sText, sCandidate, iFewest);
            if (iSlips < iFewest) {
                iFewest = iSlips;
                sNearest = sCandidate;
            }
        }
    }
    return sNearest;
}

/// The indices of the emitters with this id or, when no id matches, this name.
QList<qsizetype> placesOf(const Emitters& a_emitters, const QString& a_sText)
{
    QList<qsizetype> byId;
    QList<qsizetype> byName;
    for (qsizetype i = 0; i < a_emitters.size(); ++i) {
        if (a_emitters.at(i)->id() == a_sText) {
            byId.append(i);
        } else if (a_emitters.at(i)->name() == a_sText) {
            byName.append(i);
        }
    }
    return byId.isEmpty() ? byName : byId;
}

} // namespace

bool selectEmitters(Emitters& a_emitters, const QStringList& a_texts, QString& a_sReason)
{
    QSet<qsizetype> wanted;
    for (const QString& sText : a_texts) {
        const QList<qsizetype> places = placesOf(a_emitters, sText);
        if (places.isEmpty()) {
            const QString sNearest = nearest(a_emitters, sText);
            a_sReason = QStringLiteral("the scenario has no emitter \"") + sText + u'"';
            if (!sNearest.isEmpty()) {
                a_sReason += QStringLiteral(": did you mean \"") + sNearest + QStringLiteral("\"?");
            }
            return false;
        }
        wanted.unite(QSet<qsizetype>(places.cbegin(), places.cend()));
    }
    if (!a_texts.isEmpty()) {
        Emitters selected;
        for (qsizetype i = 0; i < a_emitters.size(); ++i) {
            if (wanted.contains(i)) {
                selected.append(a_emitters.at(i));
            }
        }
        a_emitters = selected;
    }
    return true;
}

} // namespace SimulationTool
