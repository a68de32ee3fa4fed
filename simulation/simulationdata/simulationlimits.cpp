#include "simulationlimits.h"

#include <array>
#include <atomic>
#include <cstddef>

namespace Simulation {

namespace {

struct LimitEntry
{
    Limits::Limit limit;
    const char* name;
    std::uint64_t defaultValue;
    const char* reason;
};

constexpr std::uint64_t s_uiKibi = 1024;
constexpr std::uint64_t s_uiMebi = 1024 * s_uiKibi;
constexpr std::uint64_t s_uiGibi = 1024 * s_uiMebi;

constexpr std::array<LimitEntry, Limits::LimitCount> s_limits{{
    {Limits::DocumentBytes, "document bytes", 256 * s_uiMebi,
     "A document is held in memory while it is read, and what it describes takes ten times as much."},
    {Limits::NestingDepth, "nesting depth", 256,
     "Our documents nest eight deep; deeper ones only cost memory."},
    {Limits::ElementAttributes, "attributes of one element", 4096,
     "The stream reader's time is quadratic in them: 100,000 take 17 s."},
    {Limits::DoctypeBytes, "bytes of a document type", 4 * s_uiKibi,
     "Scenario documents have none; its rules would be applied to every element."},
    {Limits::EntityDeclarations, "entity declarations", 0,
     "Our documents define none; 600 KB of references to them took 20 GB."},
    {Limits::ScenarioObjects, "objects of one scenario", s_uiMebi,
     "An object takes some 1,000 bytes, an element that makes one as few as ten."},
    {Limits::RecordElements, "elements of a record", 256 * s_uiKibi,
     "A tree of the shortest elements takes 16 times its text."},
    {Limits::AnswerActivities, "activities in one answer", 16 * s_uiMebi,
     "A list of them takes 24 bytes each: 384 MiB at the default."},
    {Limits::HopChannels, "hop channels", 4 * s_uiMebi,
     "The channel list takes 8 bytes each and 8 shuffle rounds to build."},
    {Limits::AllHopChannels, "hop channels of all hoppers", 32 * s_uiMebi,
     "The lists of all fast hoppers that are asked take 256 MiB together."},
    {Limits::ArcPoints, "points of an arc", 64 * s_uiKibi,
     "A way point takes 72 bytes, and no display can distinguish more points."},
    {Limits::DataBytes, "bytes of one answer from a data file", 256 * s_uiMebi,
     "More than an hour of audio; a long time span is short in a request but long in bytes."},
    {Limits::WaveChunks, "chunks of a wave file", 64 * s_uiKibi,
     "Every chunk takes a read and a seek, an empty one only eight bytes of the file."},
    {Limits::CuePoints, "cue points of a wave file", 64 * s_uiKibi,
     "Enough for two seconds of audio with a cue point in every frame."},
    {Limits::CueLabelBytes, "bytes of cue labels", s_uiMebi,
     "Labels are held in memory while the file is open, and in most files are words."},
    {Limits::ArchiveBytes, "bytes unpacked from an archive", 1024 * s_uiMebi,
     "A kilobyte can claim to unpack to a gigabyte and more."},
    {Limits::ArchiveEntries, "entries of an archive", 100'000,
     "Every entry takes a file, or some 200 bytes of memory."},
    {Limits::UpdateIds, "update ids of a package", 1024,
     "For every one the cache folder takes a copy of the descriptor."},
    {Limits::InflatedBytes, "inflated bytes", s_uiGibi,
     "A compressed megabyte may hold a gigabyte; four of the largest documents fit."},
    {Limits::PendingBytes, "bytes that wait for one peer", 256 * s_uiMebi,
     "All bytes sent to a peer that does not read stay in memory; the largest document fits."},
    {Limits::DeploymentObjects, "objects of one deployment", s_uiMebi,
     "An object takes some 500 bytes, an element that makes one as few as fifteen."},
    {Limits::ListedDevices, "listed devices", 100'000,
     "A peer may report any number of devices; nobody reads a longer table."},
    {Limits::AllPendingBytes, "bytes that wait for all peers", 96 * s_uiMebi,
     "Unfinished documents of all peers stay in memory; the largest scenario fits when compressed."},
}};

constexpr bool isInOrder()
{
    for (std::size_t i = 0; i < s_limits.size(); ++i) {
        if (static_cast<std::size_t>(s_limits[i].limit) != i) {
            return false;
        }
    }
    return true;
}
static_assert(isInOrder(), "the table is looked up by the limit's value");

/// The values that were set. 0 means the default value, so the table is initialised
/// without start-up code.
std::array<std::atomic<std::uint64_t>, Limits::LimitCount> s_values{};

bool isLimit(Limits::Limit a_eLimit)
{
    return a_eLimit >= 0 && a_eLimit < Limits::LimitCount;
}

const LimitEntry& entry(Limits::Limit a_eLimit)
{
    static constexpr LimitEntry s_unknown{Limits::LimitCount, "unknown limit", 0, ""};
    return isLimit(a_eLimit) ? s_limits[static_cast<std::size_t>(a_eLimit)] : s_unknown;
}

} // namespace

std::uint64_t Limits::value(Limit a_eLimit)
{
    if (!isLimit(a_eLimit)) {
        return 0;
    }
    const std::uint64_t uiSet = s_values[static_cast<std::size_t>(a_eLimit)].load(std::memory_order_relaxed);
    return uiSet != 0 ? uiSet : entry(a_eLimit).defaultValue;
}

void Limits::setValue(Limit a_eLimit, std::uint64_t a_uiValue)
{
    if (isLimit(a_eLimit)) {
        s_values[static_cast<std::size_t>(a_eLimit)].store(a_uiValue, std::memory_order_relaxed);
    }
}

std::uint64_t Limits::defaultValue(Limit a_eLimit)
{
    return entry(a_eLimit).defaultValue;
}

const char* Limits::name(Limit a_eLimit)
{
    return entry(a_eLimit).name;
}

QString Limits::exceeded(Limit a_eLimit)
{
    return QStringLiteral("%1 limit of %2 exceeded")
        .arg(QLatin1String(name(a_eLimit)), QString::number(value(a_eLimit)));
}

const char* Limits::reason(Limit a_eLimit)
{
    return entry(a_eLimit).reason;
}

} // namespace Simulation
