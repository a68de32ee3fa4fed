#ifndef DEFAULTDATA_WAVEWRITER_H
#define DEFAULTDATA_WAVEWRITER_H

#include <QByteArray>

#include <cstdint>
#include <vector>

namespace DefaultData {

/// The content of "Signal.wav": 16-bit PCM, one channel, `a_uiRate` frames per
/// second.
[[nodiscard]] QByteArray writeWave(const std::vector<std::int16_t>& a_samples, std::uint32_t a_uiRate);

} // namespace DefaultData

#endif
