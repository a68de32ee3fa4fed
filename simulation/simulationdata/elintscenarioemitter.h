#ifndef SIMULATIONDATA_ELINTSCENARIOEMITTER_H
#define SIMULATIONDATA_ELINTSCENARIOEMITTER_H

#include "simulationdata/szenarioemitter.h"

namespace Simulation {

/// An emitter whose pulses are described by a file of emitter description words. The
/// file replaces the schedule. The emitter is active while its active flag is set
/// and its frequency and position are active. A new object has no file.
class SIMULATIONDATA_EXPORT ElintScenarioEmitter : public SzenarioEmitter
{
public:
    ElintScenarioEmitter(const QString& a_sId, const QString& a_sName);
    ~ElintScenarioEmitter() override;

    [[nodiscard]] ScenarioObjectType type() const override;

    /// Also copies the file name. copy() does not copy the file name.
    [[nodiscard]] std::shared_ptr<ScenarioObject> clone() override;

    [[nodiscard]] bool isActiveAt(unsigned int a_uiTime) const override;
    [[nodiscard]] Transmission transmissionAt(unsigned int a_uiTime) const override;

    [[nodiscard]] QString getEDWFile() const { return m_sEDWFile; }
    /// The capital letter is part of the interface.
    void SetEDWFile(const QString& a_sFile) { m_sEDWFile = a_sFile; }

private:
    QString m_sEDWFile;
};

} // namespace Simulation

#endif
