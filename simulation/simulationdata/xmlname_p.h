#ifndef SIMULATIONDATA_XMLNAME_P_H
#define SIMULATIONDATA_XMLNAME_P_H

#include <QByteArrayView>

namespace Simulation {

/// The bytes of the UTF-8 text that make a name of XML 1.0, colons included,
/// 0 when there is none. `a_bFirst`: the first character must be one that may
/// begin a name.
[[nodiscard]] qsizetype xmlNameLength(QByteArrayView a_bytes, bool a_bFirst = true);

/// Whether the whole text is a name.
[[nodiscard]] bool isXmlName(QByteArrayView a_text);

} // namespace Simulation

#endif
