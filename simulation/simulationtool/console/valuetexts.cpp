#include "valuetexts.h"

#include "simulationdata/emissionsettings.h"

#include <QLocale>

#include <array>
#include <charconv>
#include <cmath>

namespace SimulationTool {

namespace {

constexpr double s_dKilo = 1e3;
constexpr double s_dMega = 1e6;
constexpr double s_dGiga = 1e9;
constexpr double s_dFixedLimit = 1e9; ///< numbers of this magnitude and above are shown in scientific form
constexpr int s_iScientificDigits = 6;
constexpr int s_iLevelDecimals = 3;
constexpr float s_fFixedLevelFrom = 0.1F;
constexpr float s_fFixedLevelTo = 1e5F;
constexpr std::size_t s_uiFloatTextBytes = 32; ///< about twice the longest result

} // namespace

QString yesNo(bool a_bValue)
{
    return a_bValue ? QStringLiteral("yes") : QStringLiteral("no");
}

QString plainNumber(double a_dValue)
{
    return QString::number(a_dValue, 'g', QLocale::FloatingPointShortest);
}

QString shortNumber(float a_fValue)
{
    std::array<char, s_uiFloatTextBytes> text{};
    const std::to_chars_result end = std::to_chars(text.data(), text.data() + text.size(), a_fValue);
    return QString::fromLatin1(text.data(), end.ptr - text.data());
}

QString levelText(float a_fLevel)
{
    const float fMagnitude = std::fabs(a_fLevel);
    const bool bFixed =
        fMagnitude == 0.0F || (fMagnitude >= s_fFixedLevelFrom && fMagnitude < s_fFixedLevelTo);
    return QString::number(static_cast<double>(a_fLevel), bFixed ? 'f' : 'e', s_iLevelDecimals);
}

QString frequencyText(double a_dFrequency)
{
    const double dMagnitude = std::fabs(a_dFrequency);
    if (dMagnitude >= s_dGiga) {
        return plainNumber(a_dFrequency / s_dGiga) + QStringLiteral(" GHz");
    }
    if (dMagnitude >= s_dMega) {
        return plainNumber(a_dFrequency / s_dMega) + QStringLiteral(" MHz");
    }
    if (dMagnitude >= s_dKilo) {
        return plainNumber(a_dFrequency / s_dKilo) + QStringLiteral(" kHz");
    }
    return plainNumber(a_dFrequency) + QStringLiteral(" Hz");
}

QString fixedNumber(double a_dValue, int a_iDecimals)
{
    return std::fabs(a_dValue) < s_dFixedLimit ? QString::number(a_dValue, 'f', a_iDecimals)
                                               : QString::number(a_dValue, 'g', s_iScientificDigits);
}

QString durationText(qint64 a_iMilliseconds)
{
    return a_iMilliseconds == Simulation::EmissionSettings::s_iUnlimited
               ? QStringLiteral("unlimited")
               : QStringLiteral("%1 ms").arg(a_iMilliseconds);
}

QString endBehaviourText(Simulation::EndBehaviourType a_eBehaviour)
{
    switch (a_eBehaviour) {
    case Simulation::EndBehaviourType::Stop:
        return QStringLiteral("then stays at the end");
    case Simulation::EndBehaviourType::Inactive:
        return QStringLiteral("then falls silent");
    case Simulation::EndBehaviourType::Restart:
        break;
    }
    return QStringLiteral("then begins again");
}

QString endBehaviourName(Simulation::EndBehaviourType a_eBehaviour)
{
    switch (a_eBehaviour) {
    case Simulation::EndBehaviourType::Stop:
        return QStringLiteral("stop");
    case Simulation::EndBehaviourType::Inactive:
        return QStringLiteral("inactive");
    case Simulation::EndBehaviourType::Restart:
        break;
    }
    return QStringLiteral("restart");
}

QString counted(quint64 a_uiCount, const char* a_szNoun)
{
    return QStringLiteral("%1 %2%3").arg(QString::number(a_uiCount), QLatin1String(a_szNoun),
                                         a_uiCount == 1 ? QString() : QStringLiteral("s"));
}

QString orDash(const QString& a_sText)
{
    return a_sText.isEmpty() ? QStringLiteral("-") : a_sText;
}

} // namespace SimulationTool
