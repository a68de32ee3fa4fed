#include "signalpackage.h"

#include <algorithm>

namespace Simulation {

bool SignalPackage::hasDigitalModulation() const
{
    return !m_sDigitalModulation.isEmpty() && m_eAnalogModulation == AnalogModulations::Digital;
}

QString SignalPackage::fullName() const
{
    return QStringLiteral("%1/%2").arg(m_sPath, m_sName);
}

QString SignalPackage::cleanId(const QString& a_sId)
{
    constexpr QStringView unsafe(u"\\/:*?\"<>|.");
    QString sClean = a_sId;
    std::replace_if(
        sClean.begin(), sClean.end(), [&](QChar a_cUnit) { return unsafe.contains(a_cUnit); }, u'_');
    return sClean;
}

QString SignalPackage::cleanId() const
{
    return cleanId(m_sId);
}

} // namespace Simulation
