#ifndef SIMULATIONDATA_COMMONDATAXML_P_H
#define SIMULATIONDATA_COMMONDATAXML_P_H

#include "simulationdata/tpos.h"
#include "simulationdata/xml/xmltext_p.h"

#include "simulationdata/enumerations.h"
#include "simulationdata/movementpoint.h"
#include "simulationdata/xml/xmlwalk_p.h"

#include <QHash>
#include <QString>
#include <QVector>

#include <cstdint>
#include <limits>
#include <memory>

namespace Simulation {

class IPositionSettings;

/// Ranges of values in the documents, and their units.
inline constexpr XmlRange s_milliseconds{0.0, 4294967295.0, false, "milliseconds"};
inline constexpr XmlRange s_longMilliseconds{0.0, std::numeric_limits<double>::infinity(), false,
                                             "milliseconds"};
inline constexpr XmlRange s_anyMilliseconds{-std::numeric_limits<double>::infinity(),
                                            std::numeric_limits<double>::infinity(), false, "milliseconds"};
inline constexpr XmlRange s_frequencies{0.0, std::numeric_limits<double>::infinity(), true, "Hz"};
inline constexpr XmlRange s_fractions{0.0, 1.0, false, ""};
inline constexpr XmlRange s_notNegative{0.0, std::numeric_limits<double>::infinity(), false, ""};

/// These work like the operations of CommonDataXml, for the documents' own reader and writer.
/// `a_bMayBeEmpty`: an element without a position is not reported.
[[nodiscard]] std::unique_ptr<IPositionSettings> readPositionSettings(XmlReader& a_reader,
                                                                      bool a_bMayBeEmpty);
void writePositionSettings(XmlWriter& a_writer, IPositionSettings* a_pSettings);

/// The numbers of a coordinate (degrees), as elements "Lon" and "Lat".
extern const XmlField<TPos> s_coordinateFields[2];

/// Reads element "Movement", which may have a single point.
[[nodiscard]] std::unique_ptr<IPositionSettings> readMovement(XmlReader& a_reader);
[[nodiscard]] QVector<MovementPoint> readMovements(XmlReader& a_reader);
void writeMovements(XmlWriter& a_writer, const QVector<MovementPoint>& a_movements);

/// Reads the attribute "EndBehavior", the only one of the current element. Stop when it
/// is missing or unknown.
[[nodiscard]] EndBehaviourType readEndBehavior(XmlReader& a_reader);

/// The text of the current element, which is then read; the former text when the document
/// breaks off.
[[nodiscard]] QString readText(XmlReader& a_reader, const QString& a_sFormer = {});

/// The value of an attribute whose presence alone counts: always true. Another value than
/// "true" is reported.
[[nodiscard]] bool readMark(XmlReader& a_reader, const XmlText& a_value);

/// The version of the format; a newer one than `a_uiKnown` and an older one are reported.
[[nodiscard]] std::uint32_t readVersion(XmlReader& a_reader, const XmlText& a_value, std::uint32_t a_uiKnown);
/// Reports that the root element, which was started last, names no version.
void reportMissingVersion(XmlReader& a_reader);

/// Reports that the element that was started last lacks its id.
void reportMissingId(XmlReader& a_reader);
/// Reports an id that an earlier element has: both elements are read as one object.
void reportMerged(XmlReader& a_reader, const XmlText& a_id);

/// A new persistent id for a document: its name, the time in whole seconds since
/// 1970-01-01 UTC and the machine's id, joined by "-". Characters that XML forbids are
/// removed from the name, so that the id is read back as it was written.
[[nodiscard]] QString createPersistentId(const QString& a_sName);

/// Counts objects by their ids, to report ids that several objects share. A document
/// identifies objects by their ids, so its reader gets only one object for each id.
class SharedIds
{
public:
    /// Counts the id as it is written, without the characters that XML forbids.
    void add(const QString& a_sId) { ++m_counts[cleanXmlText(a_sId)]; }

    /// An error text; empty if no id is shared. The text names up to three shared ids,
    /// shortened if they are long, and for each the number of objects that share it.
    /// Further shared ids are only counted. The text ends with what to do. `a_szNoun`
    /// names the objects ("emitters").
    [[nodiscard]] QString text(const char* a_szNoun) const;

private:
    QHash<QString, qsizetype> m_counts;
};

} // namespace Simulation

#endif
