#ifndef SIMULATIONDATA_INFLATE_P_H
#define SIMULATIONDATA_INFLATE_P_H

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <optional>

namespace Simulation {

/// Uncompresses data of qCompress(): the length of the content as 4 bytes, most
/// significant first, and a zlib stream. The length is only a hint: whatever it
/// claims, memory grows with the actual content, up to Limits::InflatedBytes. Bytes
/// after the end of the stream are ignored.
///
/// No value when the bytes do not have this form, are truncated or damaged, or hold
/// more than the limit; `*a_pReason` is then the error text, otherwise it is empty.
/// Nothing is traced: the caller decides whether this is an error. May be called from
/// any thread.
[[nodiscard]] std::optional<QByteArray> inflateBounded(QByteArrayView a_data, QString* a_pReason);

} // namespace Simulation

#endif
