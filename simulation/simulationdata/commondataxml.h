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
/// A reading operation expects the reader on the start of the element that encloses
/// the fragment. It leaves the reader on the end of that element. Unknown children
/// are skipped. Missing or unreadable numbers are 0.
class SIMULATIONDATA_EXPORT CommonDataXml
{
public:
    CommonDataXml() = delete;

    /// Returns new settings that the caller owns, made from the last child "Fixed"
    /// or "Movement". Returns null when there is no such child.
    [[nodiscard]] static IPositionSettings* readPositionSettings(QXmlStreamReader& a_reader);
    /// Writes "Fixed" or "Movement". Writes no element when the settings are null.
    static void writePositionSettings(IPositionSettings* a_pSettings, QXmlStreamWriter& a_writer);

    /// Reads "Lon" and "Lat" (degrees) in any order; a missing one is 0.
    [[nodiscard]] static TPos readCoordinate(QXmlStreamReader& a_reader);
    /// Writes "Lon", then "Lat", with 14 significant digits.
    static void writeCoordinate(const TPos& a_position, QXmlStreamWriter& a_writer);

    /// Reads the "Position" children. Speed and name are read for major points only.
    [[nodiscard]] static QVector<MovementPoint> readMovements(QXmlStreamReader& a_reader);
    static void writeMovements(const QVector<MovementPoint>& a_movements, QXmlStreamWriter& a_writer);

    /// Convert points to a separate document with the root "MovementsXml" and back.
    /// When the text is not such a document, movementsForXml() returns the points
    /// before the error.
    [[nodiscard]] static QString xmlForMovements(const QVector<MovementPoint>& a_movements);
    [[nodiscard]] static QVector<MovementPoint> movementsForXml(const QString& a_sXml);

    /// Returns "STOP", "RESTART" or "INACTIVE"; "RESTART" for an unknown value.
    [[nodiscard]] static QString endBehaviorToString(EndBehaviourType a_eBehaviour);
    /// Returns the value for "STOP", "RESTART" or "INACTIVE", case-sensitive; Stop for
    /// any other text.
    [[nodiscard]] static EndBehaviourType stringToEndBehavior(QStringView a_sText);

    /// Whether the text contains "true" in any letter case.
    [[nodiscard]] static bool toBool(QStringView a_sText);
};

} // namespace Simulation

#endif
