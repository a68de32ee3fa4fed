#ifndef SIMULATIONDATA_SCENARIODATABINARY_P_H
#define SIMULATIONDATA_SCENARIODATABINARY_P_H

#include <cstdint>
#include <optional>
#include <QByteArrayView>
#include <QString>
#include <vector>

class QIODevice;

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

/// Reads the values of a compact scenario from a device or from memory. The results of
/// the operations are error texts, empty on success; after an error the reader must
/// not be used any more. The bytes read are counted against Limits::DocumentBytes.
/// Memory grows with the bytes read, not with the sizes that the stream claims.
class CompactReader
{
public:
    /// Reads from the current position of the device, but no bytes after a value. The
    /// device is not owned and must be readable.
    explicit CompactReader(QIODevice& a_device)
        : m_pDevice(&a_device)
    {}
    /// The bytes are not copied.
    explicit CompactReader(QByteArrayView a_bytes)
        : m_unread(a_bytes)
    {}

    /// Reads the number of records. A negative number is an error.
    [[nodiscard]] QString readCount(std::int32_t& a_iCount);
    /// Reads a record into a new object.
    [[nodiscard]] QString readRecord(CompactRecord& a_record);

private:
    [[nodiscard]] QString read(QString& a_sText);
    [[nodiscard]] QString read(bool& a_bFlag);
    template<typename Number>
    [[nodiscard]] QString readNumber(Number& a_number);
    [[nodiscard]] QString readUnits(QString& a_sText, qsizetype a_iUnits);
    [[nodiscard]] bool fill(void* a_pBytes, qsizetype a_iBytes);
    [[nodiscard]] bool fillFromDevice(char* a_pBytes, qsizetype a_iBytes);
    [[nodiscard]] QString claim(std::int64_t a_iBytes);

    QIODevice* m_pDevice = nullptr; ///< null when the bytes are in memory
    QByteArrayView m_unread;
    std::int64_t m_iBytes = 0; ///< bytes read
};

/// The size of the number of records (bytes).
constexpr std::int64_t s_iCompactCountBytes = 4;
/// The size of a record (bytes); no value when a text is too long for its length
/// field.
[[nodiscard]] std::optional<std::int64_t> compactBytes(const CompactRecord& a_record);

/// Write the number of records, or one record, to memory. The caller provides
/// s_iCompactCountBytes or compactBytes() bytes. The result is the end of the written
/// bytes.
char* writeCompactCount(char* a_pBytes, std::int32_t a_iCount);
char* writeCompactRecord(char* a_pBytes, const CompactRecord& a_record);

/// An emitter with its record. The pointers identify the objects and are not followed.
struct CompactEmitter
{
    const SzenarioEmitter* emitter = nullptr;
    const SzenarioEmitter* target = nullptr; ///< null without a link
    CompactRecord record;
};

/// Sorts the emitters so that every link target comes before the emitters that are
/// linked to it. Where the links leave a choice, the smallest emitter is next. The
/// keys of this comparison are id, name, class, description, the default emitter before
/// all others, id of the link target, and inactive before active. In a circle of links
/// the smallest emitter is placed without regard to its target. Targets that are not
/// among the emitters are ignored. O(n log n). The result points into `a_emitters`.
[[nodiscard]] std::vector<const CompactRecord*> inLinkOrder(const std::vector<CompactEmitter>& a_emitters);

} // namespace Simulation

#endif
