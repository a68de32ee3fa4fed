#ifndef SIMULATIONDATA_SCENARIODATABINARY_P_H
#define SIMULATIONDATA_SCENARIODATABINARY_P_H

#include <cstdint>
#include <memory>
#include <optional>
#include <QSet>
#include <QString>
#include <vector>

class QDataStream;

namespace Simulation {

class SzenarioEmitter;

/// The values of one emitter in a compact scenario. Null and empty texts differ.
struct CompactRecord
{
    QString id;
    QString name;
    QString description;
    bool active = false;
    bool isDefault = false;
    QString linkTarget; ///< an id
    QString emitterClass;
};

/// Sets up a stream for the encoding of the format, which other programs use, too.
void prepareCompactStream(QDataStream& a_stream);

/// Read the number of records, or one record, from a stream. `a_iBytes` counts the
/// bytes read so far, against Limits::DocumentBytes. The result is the error text,
/// empty on success; after an error the stream must not be used any more. Memory
/// grows with the bytes read, not with the sizes that the stream claims.
[[nodiscard]] QString readCompactCount(QDataStream& a_stream, std::int32_t& a_iCount, std::int64_t& a_iBytes);
[[nodiscard]] QString readCompactRecord(QDataStream& a_stream, CompactRecord& a_record,
                                        std::int64_t& a_iBytes);
void writeCompactRecord(QDataStream& a_stream, const CompactRecord& a_record);

/// The size of a record (bytes); no value when a text is too long for its length
/// field.
[[nodiscard]] std::optional<std::int64_t> compactBytes(const CompactRecord& a_record);

/// Sorts the emitters so that every link target comes before the emitters that are
/// linked to it. Where the links leave a choice, the smallest emitter is next. The
/// keys of this comparison are id, name, class, description, `a_pFirst` before all
/// others, id of the link target, and inactive before active. In a circle of links the
/// smallest emitter is placed without regard to its target. Targets outside the set
/// are ignored. O(n log n). Null is not allowed in the set.
[[nodiscard]] std::vector<std::shared_ptr<SzenarioEmitter>>
inLinkOrder(const QSet<std::shared_ptr<SzenarioEmitter>>& a_emitters, const SzenarioEmitter* a_pFirst);

} // namespace Simulation

#endif
