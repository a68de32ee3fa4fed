#ifndef SIMULATIONDATA_SIGNALPACKAGECONTENT_H
#define SIMULATIONDATA_SIGNALPACKAGECONTENT_H

#include "simulationdata/simulationdata_export.h"

#include <QString>

#include <cstdint>

namespace Simulation {

/// The record of one content item of a signal package, for example its signal shape
/// or its audio. A plain value; a default object is empty. This library writes
/// descriptors without content items.
class SIMULATIONDATA_EXPORT SignalPackageContent
{
public:
    [[nodiscard]] QString name() const { return m_sName; }
    void setName(const QString& a_sName) { m_sName = a_sName; }

    /// The duration, in a unit that the author of the package chooses.
    [[nodiscard]] std::uint32_t duration() const { return m_uiDuration; }
    void setDuration(std::uint32_t a_uiDuration) { m_uiDuration = a_uiDuration; }

    /// The checksum; a decimal number in all known descriptors.
    [[nodiscard]] QString checksum() const { return m_sChecksum; }
    void setChecksum(const QString& a_sChecksum) { m_sChecksum = a_sChecksum; }

    /// The source from which the content was made.
    [[nodiscard]] QString source() const { return m_sSource; }
    void setSource(const QString& a_sSource) { m_sSource = a_sSource; }

    [[nodiscard]] QString format() const { return m_sFormat; }
    void setFormat(const QString& a_sFormat) { m_sFormat = a_sFormat; }

private:
    QString m_sName;
    std::uint32_t m_uiDuration = 0;
    QString m_sChecksum;
    QString m_sSource;
    QString m_sFormat;
};

} // namespace Simulation

#endif
