#include "xmlwalk_p.h"

namespace Simulation {

namespace {

bool isRequired(XmlOccurs a_eOccurs)
{
    return a_eOccurs == XmlOccurs::Once || a_eOccurs == XmlOccurs::Several || a_eOccurs == XmlOccurs::First;
}

} // namespace

void XmlNames::reportUnknownElement(XmlReader& a_reader) const
{
    a_reader.deviations()->add(
        ReadingReport::s_sUnknownElement, a_reader.offset(), [&](ReadingEntry& a_entry) {
            a_entry.found = shownText(a_reader.name());
            a_entry.suggestion = similarName(a_reader.name(), m_names);
            a_entry.message =
                QStringLiteral("The element is not known here: it is skipped with its content.");
        });
}

void XmlNames::reportUnknownAttribute(XmlReader& a_reader, const XmlAttribute& a_attribute) const
{
    // Authors who validate with a schema name it in the document.
    if (a_attribute.name.startsWith("xmlns") || a_attribute.name.startsWith("xsi:")) {
        return;
    }
    a_reader.deviations()->add(
        ReadingReport::s_sUnknownAttribute, a_attribute.value.offset, [&](ReadingEntry& a_entry) {
            a_entry.found = shownText(a_attribute.name);
            a_entry.suggestion = similarName(a_attribute.name, m_names);
            a_entry.message = QStringLiteral("The attribute is not known here: its value is ignored.");
        });
}

void XmlNames::reportMissingElements(XmlReader& a_reader, qsizetype a_iOffset, std::uint32_t a_uiSeen) const
{
    QStringList choice;
    bool bChosen = false;
    for (std::size_t i = 0; i < m_names.size(); ++i) {
        const bool bSeen = (a_uiSeen >> i & 1U) != 0;
        if (m_occurs[i] == XmlOccurs::OneOf) {
            bChosen = bChosen || bSeen;
            choice.append(m_names[i]);
        } else if (isRequired(m_occurs[i]) && !bSeen) {
            a_reader.deviations()->add(
                ReadingReport::s_sMissingElement, a_iOffset, [&](ReadingEntry& a_entry) {
                    a_entry.message =
                        QStringLiteral("The element \"%1\" is missing: what it describes keeps its default.")
                            .arg(m_names[i]);
                });
        }
    }
    if (!choice.isEmpty() && !bChosen) {
        a_reader.deviations()->add(ReadingReport::s_sMissingElement, a_iOffset, [&](ReadingEntry& a_entry) {
            a_entry.message = QStringLiteral("One of the elements %1 is missing: nothing is set.")
                                  .arg(choice.join(QStringLiteral(", ")));
        });
    }
}

void XmlNames::reportMissingAttributes(XmlReader& a_reader, std::uint32_t a_uiSeen) const
{
    for (std::size_t i = 0; i < m_names.size(); ++i) {
        if (m_occurs[i] == XmlOccurs::Once && (a_uiSeen >> i & 1U) == 0) {
            a_reader.deviations()->add(
                ReadingReport::s_sMissingAttribute, a_reader.offset(), [&](ReadingEntry& a_entry) {
                    a_entry.message =
                        QStringLiteral("The attribute \"%1\" is missing: it is read as empty, 0 or false.")
                            .arg(m_names[i]);
                });
        }
    }
}

void reportDuplicateElement(XmlReader& a_reader, bool a_bFirstCounts)
{
    if (a_reader.deviations() != nullptr) {
        a_reader.deviations()->add(
            ReadingReport::s_sDuplicateElement, a_reader.offset(), [&](ReadingEntry& a_entry) {
                a_entry.found = shownText(a_reader.name());
                a_entry.message =
                    a_bFirstCounts
                        ? QStringLiteral("An element before it has the same meaning: the first one is used.")
                        : QStringLiteral("An element before it has the same meaning: the last one is used.");
            });
    }
}

void readXmlEnd(XmlReader& a_reader)
{
    while (a_reader.nextChild()) {
        if (a_reader.deviations() != nullptr) {
            XmlNames(std::vector<XmlChild<int>>{}).reportUnknownElement(a_reader);
        }
        a_reader.skip();
    }
}

} // namespace Simulation
