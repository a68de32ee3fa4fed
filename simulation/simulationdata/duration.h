#ifndef SIMULATIONDATA_DURATION_H
#define SIMULATIONDATA_DURATION_H

#include "simulationdata/simulationdata_export.h"

#include <QString>

namespace Units {

/// Durations (ms) as text. Static operations only: an object has no state. Any thread
/// may call.
class SIMULATIONDATA_EXPORT Duration
{
public:
    /// Returns a duration (ms) as "hh:mm:ss" and the letter s, for example
    /// "01:02:03s". Milliseconds are dropped. A full day starts again at 00:00:00.
    /// Values from 2^31 count as negative, that is, before midnight: 0xFFFFFFFF
    /// gives "23:59:59s".
    [[nodiscard]] static QString toString(unsigned int a_uiMilliseconds);
};

} // namespace Units

#endif
