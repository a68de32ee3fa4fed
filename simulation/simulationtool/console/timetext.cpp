#include "timetext.h"

#include <QRegularExpression>

#include <array>

namespace SimulationTool {

namespace {

struct TimeUnit
{
    const char* name;
    std::uint64_t milliseconds;
};

constexpr std::array<TimeUnit, 5> s_units{
    {{"", 1}, {"ms", 1}, {"s", 1000}, {"min", 60'000}, {"h", 3'600'000}}};

constexpr qsizetype s_iMaxDigits = 12; ///< on each side of the point, so that no product overflows 64 bits

/// Converts the digits after the decimal point to milliseconds. `a_uiUnit` is the
/// length of the unit (ms). No value when the result is not a whole number.
std::optional<std::uint64_t> fractionOf(const QString& a_sDigits, std::uint64_t a_uiUnit)
{
    std::uint64_t uiScale = 1;
    for (qsizetype i = 0; i < a_sDigits.size(); ++i) {
        uiScale *= 10;
    }
    const std::uint64_t uiScaled = a_sDigits.toULongLong() * a_uiUnit;
    return uiScaled % uiScale == 0 ? std::make_optional(uiScaled / uiScale) : std::nullopt;
}

std::optional<std::uint64_t> millisecondsOf(const QString& a_sText)
{
    static const QRegularExpression s_time(
        QStringLiteral("\\A([0-9]{1,%1})(?:\\.([0-9]{1,%1}))?([a-z]*)\\z").arg(s_iMaxDigits));
    const QRegularExpressionMatch match = s_time.match(a_sText);
    for (const TimeUnit& unit : s_units) {
        if (match.hasMatch() && match.captured(3) == QLatin1String(unit.name)) {
            const auto fraction = fractionOf(match.captured(2), unit.milliseconds);
            return fraction
                       ? std::make_optional(match.captured(1).toULongLong() * unit.milliseconds + *fraction)
                       : std::nullopt;
        }
    }
    return std::nullopt;
}

} // namespace

std::optional<std::uint32_t> timeOf(const QString& a_sText, const QString& a_sOption, std::uint32_t a_uiMin,
                                    QString& a_sReason)
{
    const std::optional<std::uint64_t> time = millisecondsOf(a_sText);
    if (time && *time >= a_uiMin && *time <= UINT32_MAX) {
        return static_cast<std::uint32_t>(*time);
    }
    a_sReason = QStringLiteral("%1 needs a time from %2 to %3 ms, in whole ms or with a unit (1500, 1500ms, "
                               "1.5s, 2min, 1h), not \"")
                    .arg(a_sOption, QString::number(a_uiMin), QString::number(UINT32_MAX)) +
                a_sText + u'"';
    return std::nullopt;
}

} // namespace SimulationTool
