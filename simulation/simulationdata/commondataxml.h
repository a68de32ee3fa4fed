#ifndef SIMULATIONDATA_COMMONDATAXML_H
#define SIMULATIONDATA_COMMONDATAXML_H

#include "simulationdata/enumerations.h"
#include "simulationdata/movementpoint.h"
#include "simulationdata/simulationdata_export.h"
#include "simulationdata/tpos.h"

#include <QString>
#include <QStringView>
#include <QVector>

class QXmlStreamReader;
class QXmlStreamWriter;

namespace Simulation {

class IPositionSettings;

/// The XML fragments that scenario and deployment documents share: positions,
/// movements and truth values. Static operations only.
///
/// A reading operation begins with the reader on the start of the element that
/// encloses the fragment and ends with the reader on that element's end. Unknown
/// children are skipped. Missing or unreadable numbers are 0.
class SIMULATIONDATA_EXPORT CommonDataXml
{
public:
    CommonDataXml() = delete;

    /// Returns the last "Fixed" or "Movement" among the children as new settings that
    /// the caller owns; null if there is none.
    [[nodiscard]] static IPositionSettings* readPositionSettings(QXmlStreamReader& a_reader);
    /// Writes "Fixed" or "Movement". Null writes nothing.
    static void writePositionSettings(IPositionSettings* a_pSettings, QXmlStreamWriter& a_writer);

    /// "Lon" and "Lat" in any order, degrees; a missing one is 0.
    [[nodiscard]] static TPos readCoordinate(QXmlStreamReader& a_reader);
    /// "Lon", then "Lat", with 14 significant digits.
    static void writeCoordinate(const TPos& a_position, QXmlStreamWriter& a_writer);

    /// Reads the "Position" children. Speed and name are read for major points only.
    [[nodiscard]] static QVector<MovementPoint> readMovements(QXmlStreamReader& a_reader);
    static void writeMovements(const QVector<MovementPoint>& a_movements, QXmlStreamWriter& a_writer);

    /// The points as a separate document, root "MovementsXml", and back. From a text
    /// that is not such a document, the points before the error are returned.
    [[nodiscard]] static QString xmlForMovements(const QVector<MovementPoint>& a_movements);
    [[nodiscard]] static QVector<MovementPoint> movementsForXml(const QString& a_sXml);

    /// "STOP", "RESTART" or "INACTIVE"; "RESTART" for any other value.
    [[nodiscard]] static QString endBehaviorToString(EndBehaviourType a_eBehaviour);
    /// The value for such a text, case-sensitive; Stop for any other text.
    [[nodiscard]] static EndBehaviourType stringToEndBehavior(QStringView a_sText);

    /// Whether the text contains "true" in any letter case.
    [[nodiscard]] static bool toBool(QStringView a_sText);
};

} // namespace Simulation

#endif
