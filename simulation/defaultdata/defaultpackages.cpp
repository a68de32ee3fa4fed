#include "defaultpackages.h"

#include "descriptorwriter.h"
#include "simulationdata/signalshapewriter.h"
#include "simulationdata/wavefilewriter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <vector>

namespace DefaultData {

namespace {

constexpr double s_dTurn = 2.0 * std::numbers::pi; // radians

constexpr std::uint32_t s_uiBandwidth = 10'000;      // Hz
constexpr std::uint32_t s_uiPackageDuration = 3'000; // ms
constexpr float s_fBasePower = 1.418e-12F;
constexpr std::uint32_t s_uiRecords = 100;
constexpr std::uint32_t s_uiRecordsPerSecond = 10;
constexpr std::uint32_t s_uiMsPerSecond = 1'000;

constexpr std::uint32_t s_uiAudioRate = 32'000; // frames per second
constexpr std::uint32_t s_uiFrames = 95'990;    // just under the 96,000 frames of the package's duration
constexpr std::uint32_t s_uiFadeFrames = 640;   // 20 ms
constexpr double s_dAmplitude = 16'000.0;       // half of full scale

/// Spectra are rounded to steps of 1 / this value, because the last digits of sines
/// differ between mathematics libraries.
constexpr double s_dStepsPerUnit = 4'096.0;

/// A flat top with raised-cosine edges: 1 inside, 0 outside. The middle of the edge,
/// with the value 0.5, is at |offset| = `a_dEdge`. With t running from 0 to 1 across
/// the width of the edge, the value is (1 + cos(pi t)) / 2.
double flatTop(double a_dOffset, double a_dEdge, double a_dEdgeWidth)
{
    const double dOut = std::clamp((std::abs(a_dOffset) - a_dEdge) / a_dEdgeWidth + 0.5, 0.0, 1.0);
    return 0.5 + 0.5 * std::cos(0.5 * s_dTurn * dOut);
}

double bell(double a_dOffset, double a_dCentre, double a_dWidth)
{
    const double dDistance = (a_dOffset - a_dCentre) / a_dWidth;
    return std::exp(-0.5 * dDistance * dDistance);
}

/// A slow variation around 1. The variation is the sum of two sines that are not
/// symmetric to each other, so that no two neighbouring records are alike.
double breath(double a_dPhase)
{
    return 1.0 + 0.25 * std::sin(a_dPhase) + 0.1 * std::sin(3.0 * a_dPhase + 1.0);
}

// Shapes of spectra: power above the noise floor, in multiples of the floor.
// `a_dOffset` runs from -1 to 1 over the bandwidth, `a_dPhase` from 0 to 2 pi over
// all records.

/// The spectrum of a voice, symmetric to the carrier: a flat top with two moving
/// formants. In units of half the bandwidth the first is at about 0.15. The second is
/// half as strong and is at about 0.4.
double voiceShape(double a_dOffset, double a_dPhase)
{
    const double dSide = std::abs(a_dOffset);
    const double dFormants = bell(dSide, 0.15 + 0.04 * std::sin(2.0 * a_dPhase), 0.06) +
                             0.5 * bell(dSide, 0.4 + 0.08 * std::sin(a_dPhase), 0.08);
    return 7.0 * breath(a_dPhase) * flatTop(a_dOffset, 0.6, 0.5) * (0.3 + dFormants);
}

double gaussShape(double a_dOffset, double a_dPhase)
{
    return 12.0 * breath(a_dPhase) * bell(a_dOffset, 0.0, 0.25 + 0.05 * std::sin(a_dPhase));
}

double rectShape(double a_dOffset, double a_dPhase)
{
    return 4.0 * breath(a_dPhase) * flatTop(a_dOffset, 0.8, 0.1);
}

// Sounds: values from -1 to 1; `a_dTime` in seconds.

/// Five harmonics of a low voice with three syllables per second. The pitch, the
/// derivative of the phase, is 140 + 26.4 cos(2 pi 0.7 t) Hz. The strengths add up
/// to 1, and the envelope of the syllables runs from 0.1 to 1.
double voiceSound(double a_dTime, std::uint32_t& /*a_uiNoise*/)
{
    constexpr std::array<double, 5> strengths{0.35, 0.25, 0.2, 0.12, 0.08};
    const double dPhase = s_dTurn * (140.0 * a_dTime + 6.0 * std::sin(s_dTurn * 0.7 * a_dTime));
    double dSum = 0.0;
    for (std::size_t i = 0; i < strengths.size(); ++i) {
        dSum += strengths[i] * std::sin(static_cast<double>(i + 1) * dPhase);
    }
    return dSum * (0.55 - 0.45 * std::cos(s_dTurn * 3.0 * a_dTime));
}

/// Linear congruential generator (Numerical Recipes, 2nd ed., 7.1: "an even quicker
/// generator"). Its upper 16 bits are scaled to [-1, 1].
double nextNoise(std::uint32_t& a_uiNoise)
{
    // Wraps modulo 2^32 on purpose.
    a_uiNoise = a_uiNoise * 1'664'525U + 1'013'904'223U;
    return static_cast<double>(a_uiNoise >> 16U) / 32'767.5 - 1.0;
}

/// Two bursts of noise per second, with a Gaussian envelope of 75 ms standard
/// deviation.
double noiseSound(double a_dTime, std::uint32_t& a_uiNoise)
{
    const double dInBurst = 2.0 * a_dTime - std::floor(2.0 * a_dTime);
    return nextNoise(a_uiNoise) * bell(dInBurst, 0.5, 0.15);
}

/// Four beeps of 800 Hz per second, each 125 ms long with edges of 12.5 ms.
double beepSound(double a_dTime, std::uint32_t& /*a_uiNoise*/)
{
    const double dInBeep = 4.0 * a_dTime - std::floor(4.0 * a_dTime);
    return std::sin(s_dTurn * 800.0 * a_dTime) * flatTop(dInBeep - 0.5, 0.25, 0.05);
}

struct Recipe
{
    const char* name;
    const char* id; ///< scenarios refer to this id, so it must never change
    std::uint32_t points;
    double (*shape)(double a_dOffset, double a_dPhase);
    double (*sound)(double a_dTime, std::uint32_t& a_uiNoise);
};

constexpr std::array<Recipe, 3> s_recipes{{
    {"Default", "c0d40372-37c8-4ad4-9fb1-97bfc477769c", 512, voiceShape, voiceSound},
    {"Gauss 10kHz", "9a567123-d88f-4177-9b57-b02c1ec104f7", 512, gaussShape, noiseSound},
    {"Rect 10kHz", "b696e61d-dcae-42b4-b794-4a4adb8476c0", 256, rectShape, beepSound},
}};

/// The content of "Signal.ssf".
QByteArray makeShape(const Recipe& a_recipe)
{
    using Simulation::SignalShapeWriter;
    QByteArray bytes = SignalShapeWriter::header(
        {s_uiBandwidth, s_fBasePower, s_uiRecords, s_uiRecordsPerSecond, a_recipe.points});
    for (std::uint32_t uiRecord = 0; uiRecord < s_uiRecords; ++uiRecord) {
        const double dPhase = s_dTurn * uiRecord / s_uiRecords;
        std::vector<float> spectrum;
        for (std::uint32_t uiPoint = 0; uiPoint < a_recipe.points; ++uiPoint) {
            const double dOffset = (2.0 * uiPoint + 1.0) / a_recipe.points - 1.0;
            const double dPower = 1.0 + a_recipe.shape(dOffset, dPhase);
            spectrum.push_back(static_cast<float>(std::round(dPower * s_dStepsPerUnit) / s_dStepsPerUnit));
        }
        bytes += SignalShapeWriter::record(spectrum);
    }
    return bytes;
}

/// The content of "Signal.wav": the sound, faded at both ends, because the recording
/// repeats.
QByteArray makeSound(const Recipe& a_recipe)
{
    std::vector<std::int16_t> samples;
    std::uint32_t uiNoise = 1;
    for (std::uint32_t uiFrame = 0; uiFrame < s_uiFrames; ++uiFrame) {
        const double dToEnd = std::min(uiFrame, s_uiFrames - 1 - uiFrame);
        const double dFade = std::min(dToEnd / s_uiFadeFrames, 1.0);
        const double dSound = a_recipe.sound(static_cast<double>(uiFrame) / s_uiAudioRate, uiNoise);
        samples.push_back(static_cast<std::int16_t>(std::lround(s_dAmplitude * dFade * dSound)));
    }
    return Simulation::WaveFileWriter::header(s_uiFrames, s_uiAudioRate) +
           Simulation::WaveFileWriter::samples(samples);
}

Package makePackage(const Recipe& a_recipe)
{
    Package package;
    package.id = QLatin1String(a_recipe.id);
    package.name = QLatin1String(a_recipe.name);
    package.signalShape = makeShape(a_recipe);
    package.audio = makeSound(a_recipe);
    Descriptor descriptor;
    descriptor.id = package.id;
    descriptor.name = package.name;
    descriptor.bandwidth = s_uiBandwidth;
    descriptor.duration = s_uiPackageDuration;
    descriptor.signalShape = {package.signalShape, QStringLiteral("Signal.ssf"), QStringLiteral("SSF 2"),
                              s_uiRecords * s_uiMsPerSecond / s_uiRecordsPerSecond};
    descriptor.audio = {package.audio, QStringLiteral("Signal.wav"),
                        QStringLiteral("PCM 16 bit mono 32000 Hz"),
                        s_uiFrames / (s_uiAudioRate / s_uiMsPerSecond)};
    package.descriptor = writeDescriptor(descriptor);
    return package;
}

} // namespace

QList<Package> defaultPackages()
{
    QList<Package> packages;
    for (const Recipe& recipe : s_recipes) {
        packages.append(makePackage(recipe));
    }
    return packages;
}

} // namespace DefaultData
