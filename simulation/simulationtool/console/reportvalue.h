#ifndef SIMULATIONTOOL_REPORTVALUE_H
#define SIMULATIONTOOL_REPORTVALUE_H

#include <QJsonValue>
#include <QList>
#include <QString>

namespace SimulationTool {

/// One value of a report in two forms: as text for people and as JSON for programs. Both
/// forms are made in one place, so they cannot differ.
struct ReportValue
{
    /// A text for both; an empty one is null for programs.
    // NOLINTNEXTLINE(google-explicit-constructor): a text is a value as it is
    ReportValue(const QString& a_sText);
    ReportValue(const QString& a_sText, const QJsonValue& a_json);

    QString text; ///< empty: shown as "-"
    QJsonValue json;
};

using ReportRow = QList<ReportValue>;

// Values with their usual texts

/// A count without a noun: "2".
[[nodiscard]] ReportValue countValue(quint64 a_uiCount);
/// A count with its noun in the text: "2 bytes".
[[nodiscard]] ReportValue countValue(quint64 a_uiCount, const char* a_szNoun);
/// A whole number that may be negative.
[[nodiscard]] ReportValue wholeValue(qint64 a_iNumber);
/// The shortest text that reads back as the same number.
[[nodiscard]] ReportValue numberValue(double a_dNumber);
[[nodiscard]] ReportValue numberValue(float a_fNumber);
/// A number with fixed decimals in the text and full precision in JSON.
[[nodiscard]] ReportValue numberValue(double a_dNumber, int a_iDecimals);
/// "yes" or "no" in the text, true or false in JSON.
[[nodiscard]] ReportValue flagValue(bool a_bFlag);
/// A frequency (Hz): the text uses Hz, kHz, MHz or GHz, JSON uses Hz.
[[nodiscard]] ReportValue frequencyValue(double a_dFrequency);
/// A duration in ms: "2000 ms" in the text; null for programs when unlimited.
[[nodiscard]] ReportValue durationValue(qint64 a_iMilliseconds);
/// A level, with the text of levelText().
[[nodiscard]] ReportValue levelValue(float a_fLevel);

} // namespace SimulationTool

#endif
