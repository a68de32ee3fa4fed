#include "jsonreport.h"

#include "terminaltext.h"
#include "valuetexts.h"

#include <QJsonDocument>

#include <cmath>
#include <limits>

namespace SimulationTool {

namespace {

constexpr int s_iHexadecimal = 16;
constexpr int s_iEscapeDigits = 4;

/// Escapes characters that JSON allows in strings although they can control a
/// terminal. Keeps line ends: they are the only control characters outside of strings.
QString escaped(const QByteArray& a_json)
{
    const QString sJson = QString::fromUtf8(a_json);
    QString sSafe;
    sSafe.reserve(sJson.size());
    for (qsizetype i = 0; i < sJson.size();) {
        const qsizetype iUnits = codePointUnits(sJson, i);
        const QStringView sPoint = QStringView(sJson).mid(i, iUnits);
        if (sPoint == u"\n" || isHarmlessText(sPoint)) {
            sSafe.append(sPoint);
        } else {
            for (const QChar cUnit : sPoint) {
                sSafe += QStringLiteral("\\u%1").arg(cUnit.unicode(), s_iEscapeDigits, s_iHexadecimal,
                                                     QLatin1Char('0'));
            }
        }
        i += iUnits;
    }
    return sSafe;
}

} // namespace

QString jsonLine(const QJsonObject& a_object)
{
    return escaped(QJsonDocument(a_object).toJson(QJsonDocument::Compact));
}

QString jsonDocument(const QJsonObject& a_object)
{
    return escaped(QJsonDocument(a_object).toJson(QJsonDocument::Indented));
}

QJsonValue jsonNumber(double a_dValue)
{
    return std::isfinite(a_dValue) ? QJsonValue(a_dValue) : QJsonValue();
}

QJsonValue jsonNumber(float a_fValue)
{
    return std::isfinite(a_fValue) ? QJsonValue(shortNumber(a_fValue).toDouble()) : QJsonValue();
}

QJsonValue jsonCount(std::uint64_t a_uiCount)
{
    constexpr auto uiMax = static_cast<std::uint64_t>(std::numeric_limits<qint64>::max());
    return a_uiCount <= uiMax ? QJsonValue(static_cast<qint64>(a_uiCount))
                              : QJsonValue(static_cast<double>(a_uiCount));
}

QJsonValue jsonText(const QString& a_sText)
{
    return a_sText.isEmpty() ? QJsonValue() : QJsonValue(a_sText);
}

} // namespace SimulationTool
