#include "xmlwalk_p.h"

namespace Simulation {

void skipElement(QXmlStreamReader& a_reader)
{
    a_reader.skipCurrentElement();
}

std::optional<QString> elementText(QXmlStreamReader& a_reader)
{
    QString sText;
    for (;;) {
        switch (a_reader.readNext()) {
        case QXmlStreamReader::Characters:
        case QXmlStreamReader::EntityReference: // declared in an external document type: has no text
            sText += a_reader.text();
            break;
        case QXmlStreamReader::StartElement:
            skipElement(a_reader);
            break;
        case QXmlStreamReader::EndElement:
            return sText;
        case QXmlStreamReader::Comment:
        case QXmlStreamReader::ProcessingInstruction:
            break;
        default:
            return std::nullopt;
        }
    }
}

} // namespace Simulation
