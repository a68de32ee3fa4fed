#ifndef SIMULATIONDATA_SIMULATIONSERVICECOMMUNICATION_PAYLOAD_P_H
#define SIMULATIONDATA_SIMULATIONSERVICECOMMUNICATION_PAYLOAD_P_H

#include <QByteArray>
#include <QString>

namespace Simulation {

/// Bytes as text of an XML element in UTF-8. Compressed: Base64 of what
/// qCompress() makes of them. Otherwise each byte is one Latin-1 character.
[[nodiscard]] QByteArray compressPayload(const QByteArray& a_data, bool a_bCompress);

/// The bytes back, with the reason in `*a_pError` and empty when they cannot be
/// decompressed or go beyond Limits::InflatedBytes.
///
/// Takes the text over, so that no more than the text and the result are held
/// at a time.
[[nodiscard]] QByteArray uncompressPayload(QByteArray&& a_text, bool a_bCompressed, QString* a_pError);

} // namespace Simulation

#endif
