#include "checkrules.h"

#include "simulationdata/readingreport.h"
#include "simulationdata/scenariochecker.h"

#include <algorithm>

namespace SimulationTool {

namespace {

using Simulation::CheckRule;

constexpr qsizetype s_iTextWidth = 80; ///< columns

const char s_szPage[] =
    "# Rules\n"
    "\n"
    "`simulationtool check` judges documents by these rules. Each finding names its rule, and\n"
    "`--rule` and `--no-rule` select rules. An error means that a part of the document is lost,\n"
    "changed or cannot be played. A warning means that something was probably not meant. A\n"
    "note is worth knowing; nothing is wrong, and it does not change the exit code.\n"
    "\n"
    "`scripts/rules.sh` writes this page from the table of the program.\n";

/// The sentences at a width (columns), each line after an indentation.
QString wrapped(const QString& a_sText, const QString& a_sIndent, qsizetype a_iWidth)
{
    QString sText;
    QString sLine;
    const QStringList words = a_sText.split(u' ');
    for (const QString& sWord : words) {
        if (!sLine.isEmpty() && sLine.size() + 1 + sWord.size() > a_iWidth) {
            sText += sLine + u'\n';
            sLine.clear();
        }
        sLine += (sLine.isEmpty() ? a_sIndent : QStringLiteral(" ")) + sWord;
    }
    return sText + sLine + u'\n';
}

QString sentencesOf(const CheckRule& a_rule)
{
    return a_rule.summary + QStringLiteral(" ") + a_rule.reason;
}

/// How many characters two texts share at their beginnings and ends together. One typing
/// error leaves all characters but one.
qsizetype sharedCharacters(QStringView a_sFirst, QStringView a_sSecond)
{
    const qsizetype iMost = std::min(a_sFirst.size(), a_sSecond.size());
    qsizetype iBegin = 0;
    while (iBegin < iMost && a_sFirst[iBegin] == a_sSecond[iBegin]) {
        ++iBegin;
    }
    qsizetype iEnd = 0;
    while (iBegin + iEnd < iMost &&
           a_sFirst[a_sFirst.size() - 1 - iEnd] == a_sSecond[a_sSecond.size() - 1 - iEnd]) {
        ++iEnd;
    }
    return iBegin + iEnd;
}

/// The rule that was probably meant; empty when none is similar.
QString similarRule(const QString& a_sId)
{
    QString sBest;
    qsizetype iBest = 0;
    for (const CheckRule& rule : checkRules()) {
        const QString sRule = rule.id;
        const qsizetype iShared = sharedCharacters(sRule, a_sId.toLower());
        const bool bSimilar = 2 * iShared > std::max(sRule.size(), a_sId.size());
        if (bSimilar && iShared > iBest) {
            sBest = sRule;
            iBest = iShared;
        }
    }
    return sBest;
}

} // namespace

const QList<CheckRule>& checkRules()
{
    static const QList<CheckRule> s_rules = [] {
        QList<CheckRule> rules;
        QSet<QString> ids;
        for (const auto& table : {Simulation::ReadingReport::rules(), Simulation::ScenarioChecker::rules()}) {
            for (const CheckRule& rule : table) {
                if (!ids.contains(rule.id)) {
                    ids.insert(rule.id);
                    rules.append(rule);
                }
            }
        }
        return rules;
    }();
    return s_rules;
}

qsizetype ruleIndex(const QString& a_sId)
{
    const QList<CheckRule>& rules = checkRules();
    const auto found = std::find_if(rules.cbegin(), rules.cend(),
                                    [&](const CheckRule& a_rule) { return a_rule.id == a_sId; });
    return found != rules.cend() ? found - rules.cbegin() : -1;
}

QString unknownRulesText(const QStringList& a_ids)
{
    const auto unknown =
        std::find_if(a_ids.cbegin(), a_ids.cend(), [](const QString& a_sId) { return ruleIndex(a_sId) < 0; });
    if (unknown == a_ids.cend()) {
        return {};
    }
    const QString sSimilar = similarRule(*unknown);
    return QStringLiteral("there is no rule \"%1\": ").arg(*unknown) +
           (sSimilar.isEmpty() ? QString() : QStringLiteral("did you mean \"%1\"? ").arg(sSimilar)) +
           QStringLiteral("\"simulationtool check --rules\" lists the rules");
}

QString severityName(Simulation::Severity a_eSeverity)
{
    switch (a_eSeverity) {
    case Simulation::Severity::Note:
        return QStringLiteral("note");
    case Simulation::Severity::Warning:
        return QStringLiteral("warning");
    default:
        return QStringLiteral("error");
    }
}

QString rulesText()
{
    QString sText;
    for (const CheckRule& rule : checkRules()) {
        sText += QStringLiteral("%1 (%2)\n").arg(rule.id, severityName(rule.severity)) +
                 wrapped(sentencesOf(rule), QString(4, u' '), s_iTextWidth);
    }
    return sText;
}

QString rulesPage()
{
    constexpr qsizetype iPageWidth = 96; // columns
    QString sPage = QLatin1String(s_szPage);
    for (const CheckRule& rule : checkRules()) {
        QString sSeverity = severityName(rule.severity);
        sSeverity[0] = sSeverity.at(0).toUpper();
        sPage += QStringLiteral("\n## %1\n\n").arg(rule.id) +
                 wrapped(QStringLiteral("**%1.** %2").arg(sSeverity, sentencesOf(rule)), {}, iPageWidth);
    }
    return sPage;
}

} // namespace SimulationTool
