#ifndef SIMULATIONDATA_PERSISTENTID_P_H
#define SIMULATIONDATA_PERSISTENTID_P_H

#include <QString>

namespace Simulation {

/// A new identity for a document: its name, the time in whole seconds since
/// 1970-01-01 UTC and the machine's id, joined by "-". The name is cleaned, so
/// that the document is read back with the id that its writer keeps.
[[nodiscard]] QString createPersistentId(const QString& a_sName);

} // namespace Simulation

#endif
