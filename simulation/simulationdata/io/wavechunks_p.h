#ifndef SIMULATIONDATA_WAVECHUNKS_P_H
#define SIMULATIONDATA_WAVECHUNKS_P_H

#include "simulationdata/wavefilereader.h"

#include <QFile>
#include <QList>
#include <QString>

#include <cstdint>
#include <optional>

namespace Simulation {

/// The values from the chunks of a wave file, without the samples.
struct WaveContents
{
    WaveFileReader::Format format;
    bool floatSamples = false;
    std::int64_t dataOffset = 0;
    std::int64_t dataSize = 0;     ///< bytes that the file really holds
    std::int64_t missingBytes = 0; ///< bytes that the data chunk claims but the file lacks
    QList<WaveFileReader::CuePoint> cuePoints;
};

/// Reads the chunks of an open file. No value, with a reason, when it is not a
/// supported wave file.
[[nodiscard]] std::optional<WaveContents> readWaveContents(QFile& a_file, QString* a_pReason);

} // namespace Simulation

#endif
