#ifndef SIMULATIONDATA_FREQUENCYSETTINGSXML_P_H
#define SIMULATIONDATA_FREQUENCYSETTINGSXML_P_H

class QXmlStreamReader;
class QXmlStreamWriter;

namespace Simulation {

class IFrequencySettings;

/// The last known form among the children of the element on which the reader
/// stands, as new settings owned by the caller; null when there is none.
[[nodiscard]] IFrequencySettings* readFrequencySettings(QXmlStreamReader& a_reader);

/// Writes element "Frequency" with the form of the settings' kind; nothing for
/// null.
void writeFrequencySettings(QXmlStreamWriter& a_writer, const IFrequencySettings* a_pSettings);

} // namespace Simulation

#endif
