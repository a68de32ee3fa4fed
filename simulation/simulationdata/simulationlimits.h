#ifndef SIMULATIONDATA_SIMULATIONLIMITS_H
#define SIMULATIONDATA_SIMULATIONLIMITS_H

#include "simulationdata/simulationdata_export.h"

#include <QString>

#include <cstdint>

namespace Simulation {

/// The limits on the cost of one input. Every reader and every query whose cost
/// depends on a file or a peer checks them. When a limit is exceeded, the reader or
/// query fails in its ordinary way and traces one line with the name of the limit.
///
/// The values apply to the whole process. Any thread may read and set them. Set them
/// before the first document is read.
class SIMULATIONDATA_EXPORT Limits
{
public:
    enum Limit : int {
        DocumentBytes,      ///< bytes of one document
        NestingDepth,       ///< elements inside each other
        ElementAttributes,  ///< attributes of one element
        DoctypeBytes,       ///< bytes of a document type declaration
        EntityDeclarations, ///< entities that a document defines
        ScenarioObjects,    ///< objects of one scenario document
        RecordElements,     ///< elements of a record that is held as a tree (XmlElement)
        AnswerActivities,   ///< activities in one answer
        HopChannels,        ///< channels of a fast hopper
        AllHopChannels,     ///< channels of all fast hoppers together
        ArcPoints,          ///< points of one arc inserted into a movement
        DataBytes,          ///< bytes of one answer from a data file
        WaveChunks,         ///< chunks of a wave file
        CuePoints,          ///< cue points of a wave file
        CueLabelBytes,      ///< bytes of all cue labels of a wave file
        ArchiveBytes,       ///< bytes that one archive unpacks to
        ArchiveEntries,     ///< entries of an archive
        UpdateIds,          ///< update ids of a package that the cache follows
        InflatedBytes,      ///< bytes of one compressed content after decompression
        PendingBytes,       ///< bytes that wait for one peer
        DeploymentObjects,  ///< stations and devices of one deployment document
        ListedDevices,      ///< devices of a table of devices
        AllPendingBytes,    ///< bytes that wait for all peers of a service, including unfinished commands
        LimitCount          ///< number of limits, not a limit
    };

    Limits() = delete;

    /// The value in force; 0 for an unknown limit.
    [[nodiscard]] static std::uint64_t value(Limit a_eLimit);

    /// Sets the value of a limit; 0 restores the default. A value beyond the memory
    /// of the machine has no protective effect.
    static void setValue(Limit a_eLimit, std::uint64_t a_uiValue);

    [[nodiscard]] static std::uint64_t defaultValue(Limit a_eLimit);

    /// The name of the limit in traces and error texts, for example "nesting depth".
    [[nodiscard]] static const char* name(Limit a_eLimit);

    /// The error text of an exceeded limit, for example "nesting depth limit of 256
    /// exceeded".
    [[nodiscard]] static QString exceeded(Limit a_eLimit);

    /// The reason for the default value: one sentence in English.
    [[nodiscard]] static const char* reason(Limit a_eLimit);
};

} // namespace Simulation

#endif
