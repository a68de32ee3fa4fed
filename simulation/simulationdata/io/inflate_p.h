#ifndef SIMULATIONDATA_INFLATE_P_H
#define SIMULATIONDATA_INFLATE_P_H

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <optional>

namespace Simulation {

/// Uncompresses what qCompress made: the length of the content as 4 bytes, most
/// significant first, and a zlib stream. The length is only a hint: whatever it
/// claims, memory grows with the content that is really there, and no further
/// than Limits::InflatedBytes. Bytes behind the end of the stream are passed
/// over.
///
/// Nothing when the bytes are no such form, are cut short or damaged, or hold
/// more than the limit; `*a_pReason` then says why. Nothing is traced: whether
/// that is an error is the caller's to say. May be called from any thread.
[[nodiscard]] std::optional<QByteArray> inflateBounded(QByteArrayView a_data, QString* a_pReason);

} // namespace Simulation

#endif
