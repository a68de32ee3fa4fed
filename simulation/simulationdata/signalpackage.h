#ifndef SIMULATIONDATA_SIGNALPACKAGE_H
#define SIMULATIONDATA_SIGNALPACKAGE_H

#include "simulationdata/enumerations.h"
#include "simulationdata/simulationdata_export.h"

#include <QString>
#include <QStringList>

#include <cstdint>

namespace Simulation {

/// The record of one signal package: the values of its descriptor, and the values
/// that a store takes from the package's folder.
///
/// A plain value. In a default object the id is empty, which means that there is no
/// package. Its modulation is CW, and all other values are empty, 0 or false.
class SIMULATIONDATA_EXPORT SignalPackage
{
public:
    /// Identifies the package in all stores; emissions refer to it.
    [[nodiscard]] QString id() const { return m_sId; }
    void setId(const QString& a_sId) { m_sId = a_sId; }

    /// Ids of older packages that this one replaces.
    [[nodiscard]] const QStringList& updateIds() const { return m_updateIds; }
    void setUpdateIds(const QStringList& a_updateIds) { m_updateIds = a_updateIds; }

    /// The absolute path of the package's folder; not part of the descriptor.
    [[nodiscard]] QString path() const { return m_sPath; }
    void setPath(const QString& a_sPath) { m_sPath = a_sPath; }

    /// The name for display.
    [[nodiscard]] QString name() const { return m_sName; }
    void setName(const QString& a_sName) { m_sName = a_sName; }

    [[nodiscard]] QString author() const { return m_sAuthor; }
    void setAuthor(const QString& a_sAuthor) { m_sAuthor = a_sAuthor; }

    /// Creation time or version of the package; a larger value is newer.
    [[nodiscard]] std::uint32_t timestamp() const { return m_uiTimestamp; }
    void setTimestamp(std::uint32_t a_uiTimestamp) { m_uiTimestamp = a_uiTimestamp; }

    /// The bandwidth, in a unit that the author of the package chooses. Descriptors
    /// do not contain the unit.
    [[nodiscard]] float signalBandwidth() const { return m_fSignalBandwidth; }
    void setSignalBandwidth(float a_fBandwidth) { m_fSignalBandwidth = a_fBandwidth; }

    [[nodiscard]] AnalogModulations analogModulation() const { return m_eAnalogModulation; }
    void setAnalogModulation(AnalogModulations a_eModulation) { m_eAnalogModulation = a_eModulation; }

    /// The name of the digital modulation. It has a meaning only when the analog
    /// modulation is Digital, see hasDigitalModulation().
    [[nodiscard]] QString digitalModulation() const { return m_sDigitalModulation; }
    void setDigitalModulation(const QString& a_sModulation) { m_sDigitalModulation = a_sModulation; }

    /// Duration of the signal, in a unit that the author of the package chooses.
    [[nodiscard]] std::uint32_t duration() const { return m_uiDuration; }
    void setDuration(std::uint32_t a_uiDuration) { m_uiDuration = a_uiDuration; }

    /// Whether the package's folder contains "Signal.wav" (audio), "Signal.sdf"
    /// (symbols) or "Signal.rdf" (results); not part of the descriptor.
    [[nodiscard]] bool hasAudioContent() const { return m_bHasAudioContent; }
    void setHasAudioContent(bool a_bContent) { m_bHasAudioContent = a_bContent; }
    [[nodiscard]] bool hasSymbolDataContent() const { return m_bHasSymbolDataContent; }
    void setHasSymbolDataContent(bool a_bContent) { m_bHasSymbolDataContent = a_bContent; }
    [[nodiscard]] bool hasResultDataContent() const { return m_bHasResultDataContent; }
    void setHasResultDataContent(bool a_bContent) { m_bHasResultDataContent = a_bContent; }

    /// Whether the analog modulation is Digital and the digital modulation has a
    /// name. With another analog modulation the name is ignored.
    [[nodiscard]] bool hasDigitalModulation() const;

    /// Path and name, joined by a slash.
    [[nodiscard]] QString fullName() const;

    /// Returns the id as part of a file name: "_" replaces the full stop and each of
    /// \ / : * ? " < > |.
    [[nodiscard]] static QString cleanId(const QString& a_sId);
    [[nodiscard]] QString cleanId() const;

private:
    QString m_sId;
    QStringList m_updateIds;
    QString m_sPath;
    QString m_sName;
    QString m_sAuthor;
    std::uint32_t m_uiTimestamp = 0;
    float m_fSignalBandwidth = 0.0F;
    AnalogModulations m_eAnalogModulation = AnalogModulations::CW;
    QString m_sDigitalModulation;
    std::uint32_t m_uiDuration = 0;
    bool m_bHasAudioContent = false;
    bool m_bHasSymbolDataContent = false;
    bool m_bHasResultDataContent = false;
};

} // namespace Simulation

#endif
