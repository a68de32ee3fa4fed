#include "reportvalue.h"

#include "jsonreport.h"
#include "valuetexts.h"

#include "simulationdata/emissionsettings.h"

namespace SimulationTool {

ReportValue::ReportValue(const QString& a_sText)
    : ReportValue(a_sText, jsonText(a_sText))
{}

ReportValue::ReportValue(const QString& a_sText, const QJsonValue& a_json)
    : text(a_sText)
    , json(a_json)
{}

ReportValue countValue(quint64 a_uiCount)
{
    return {QString::number(a_uiCount), jsonCount(a_uiCount)};
}

ReportValue countValue(quint64 a_uiCount, const char* a_szNoun)
{
    return {counted(a_uiCount, a_szNoun), jsonCount(a_uiCount)};
}

ReportValue wholeValue(qint64 a_iNumber)
{
    return {QString::number(a_iNumber), QJsonValue(a_iNumber)};
}

ReportValue numberValue(double a_dNumber)
{
    return {plainNumber(a_dNumber), jsonNumber(a_dNumber)};
}

ReportValue numberValue(float a_fNumber)
{
    return {shortNumber(a_fNumber), jsonNumber(a_fNumber)};
}

ReportValue numberValue(double a_dNumber, int a_iDecimals)
{
    return {fixedNumber(a_dNumber, a_iDecimals), jsonNumber(a_dNumber)};
}

ReportValue flagValue(bool a_bFlag)
{
    return {yesNo(a_bFlag), a_bFlag};
}

ReportValue frequencyValue(double a_dFrequency)
{
    return {frequencyText(a_dFrequency), jsonNumber(a_dFrequency)};
}

ReportValue durationValue(qint64 a_iMilliseconds)
{
    const bool bUnlimited = a_iMilliseconds == Simulation::EmissionSettings::s_iUnlimited;
    return {durationText(a_iMilliseconds), bUnlimited ? QJsonValue() : QJsonValue(a_iMilliseconds)};
}

ReportValue levelValue(float a_fLevel)
{
    return {levelText(a_fLevel), jsonNumber(a_fLevel)};
}

} // namespace SimulationTool
