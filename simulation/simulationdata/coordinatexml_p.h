#ifndef SIMULATIONDATA_COORDINATEXML_P_H
#define SIMULATIONDATA_COORDINATEXML_P_H

#include "simulationdata/tpos.h"

class QString;
class QXmlStreamReader;

namespace Simulation {

/// Two child elements in any order, degrees; a missing or unreadable one is 0.
/// Called and left as the operations of CommonDataXml, which share it with
/// documents that call the elements otherwise.
[[nodiscard]] TPos readCoordinate(QXmlStreamReader& a_reader, const QString& a_sLongitude,
                                  const QString& a_sLatitude);

} // namespace Simulation

#endif
