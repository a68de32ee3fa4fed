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

/// What a compact scenario holds of one emitter. Null and empty texts are told
/// apart.
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

/// Sets a stream to the encoding of the form, which other programs read and
/// write too.
void prepareCompactStream(QDataStream& a_stream);

/// Takes the count of records, or a record, from a stream. `a_iBytes` counts
/// what the stream has given so far, against Limits::DocumentBytes. What is wrong
/// is told by the result, which is empty when nothing is; the stream is of no
/// use then. Memory follows what the stream holds, not what it claims.
[[nodiscard]] QString readCompactCount(QDataStream& a_stream, std::int32_t& a_iCount, std::int64_t& a_iBytes);
[[nodiscard]] QString readCompactRecord(QDataStream& a_stream, CompactRecord& a_record,
                                        std::int64_t& a_iBytes);
void writeCompactRecord(QDataStream& a_stream, const CompactRecord& a_record);

/// The bytes that a record takes; nothing when a text is longer than its length
/// can tell.
[[nodiscard]] std::optional<std::int64_t> compactBytes(const CompactRecord& a_record);

/// The emitters in an order in which every link target comes before those that
/// are linked to it and, among those that may come next, always the one of the
/// smallest id; equal ids by name, class and description, of twins `a_pFirst`
/// first and then by link target and active flag. Where links run in a
/// circle its smallest emitter does not wait for its target. Targets outside
/// the set are waited for by nobody. O(n log n), null is not allowed.
[[nodiscard]] std::vector<std::shared_ptr<SzenarioEmitter>>
inLinkOrder(const QSet<std::shared_ptr<SzenarioEmitter>>& a_emitters, const SzenarioEmitter* a_pFirst);

} // namespace Simulation

#endif
