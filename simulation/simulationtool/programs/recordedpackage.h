#ifndef SIMULATIONTOOL_RECORDEDPACKAGE_H
#define SIMULATIONTOOL_RECORDEDPACKAGE_H

#include "spectrumlayout.h"

#include <QString>

namespace SimulationTool {

class Recording;

/// The data files of a signal package that is made from a recording.
struct RecordedPackage
{
    QString recordingName; ///< in messages
    QString packageName;   ///< in messages
    QString folder;        ///< where to write the files
    SpectrumLayout layout;
    bool audio = false; ///< whether the package gets the audio "Signal.wav" as well
};

/// Writes the spectra "Signal.ssf" and the audio of an open recording, which is read once,
/// in blocks. Returns false with an error text that begins with a name, or without one
/// when interrupted.
[[nodiscard]] bool writeRecordedFiles(Recording& a_recording, const RecordedPackage& a_package,
                                      QString& a_sError);

} // namespace SimulationTool

#endif
