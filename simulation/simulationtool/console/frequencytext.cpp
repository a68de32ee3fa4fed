#include "frequencytext.h"

#include "valuetexts.h"

#include "simulationdata/frequency.h"

#include <QRegularExpression>

namespace SimulationTool {

std::optional<double> frequencyOf(const QString& a_sText, const QString& a_sOption, double a_dMin,
                                  double a_dMax, QString& a_sReason)
{
    // The library's reader ignores what follows the unit. Here it is a typing error.
    static const QRegularExpression s_frequency(
        QStringLiteral("\\A(-?)([0-9]{1,15}(?:\\.[0-9]{1,15})?) ?([kKmMgG]?(?:Hz)?)\\z"));
    const QRegularExpressionMatch match = s_frequency.match(a_sText);
    if (match.hasMatch()) {
        const QString sUnit = match.captured(3).left(match.captured(3).startsWith(u'H') ? 0 : 1);
        const double dMagnitude = Units::Frequency::fromString(match.captured(2) + sUnit, 0.0);
        const double dValue = match.captured(1).isEmpty() ? dMagnitude : -dMagnitude;
        if (dValue >= a_dMin && dValue <= a_dMax) {
            return dValue;
        }
    }
    a_sReason = QStringLiteral(
                    "%1 needs a frequency from %2 to %3, in Hz or with a unit (9600, 12.5k, 2.4MHz), not \"")
                    .arg(a_sOption, frequencyText(a_dMin), frequencyText(a_dMax)) +
                a_sText + u'"';
    return std::nullopt;
}

} // namespace SimulationTool
