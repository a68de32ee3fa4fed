#include "commondataxml_p.h"

namespace Simulation {

bool readMark(XmlReader& a_reader, const XmlText& a_value)
{
    if (a_value.bytes != "true" && a_reader.deviations() != nullptr) {
        a_reader.deviations()->add(
            ReadingReport::s_sIgnoredValue, a_value.offset, [&](ReadingEntry& a_entry) {
                a_entry.found = shownText(a_value.bytes);
                a_entry.message =
                    QStringLiteral("The attribute counts as \"true\" whatever its value: remove it where "
                                   "it does not apply.");
            });
    }
    return true;
}

std::uint32_t readVersion(XmlReader& a_reader, const XmlText& a_value, std::uint32_t a_uiKnown)
{
    bool bNumber = false;
    const std::uint32_t uiVersion = readUInt32(a_value.bytes, &bNumber);
    if (!bNumber) {
        return a_reader.unsignedNumber(a_value); // reports the text
    }
    if (uiVersion == a_uiKnown || a_reader.deviations() == nullptr) {
        return uiVersion;
    }
    const bool bNewer = uiVersion > a_uiKnown;
    a_reader.deviations()->add(
        bNewer ? ReadingReport::s_sNewerVersion : ReadingReport::s_sOlderVersion, a_value.offset,
        [&](ReadingEntry& a_entry) {
            a_entry.found = shownText(a_value.bytes);
            a_entry.message =
                (bNewer ? QStringLiteral(
                              "Version %1 is newer than %2, the newest that is known: what is new in it is "
                              "skipped.")
                        : QStringLiteral(
                              "Version %1 is older than %2: the document is read, and saved in version %2."))
                    .arg(QString::number(uiVersion), QString::number(a_uiKnown));
        });
    return uiVersion;
}

void reportMissingVersion(XmlReader& a_reader)
{
    if (a_reader.deviations() != nullptr) {
        a_reader.deviations()->add(
            ReadingReport::s_sOlderVersion, a_reader.offset(), [&](ReadingEntry& a_entry) {
                a_entry.message =
                    QStringLiteral("The document names no version: it is read as one of version 0.");
            });
    }
}

void reportMissingId(XmlReader& a_reader)
{
    if (a_reader.deviations() != nullptr) {
        a_reader.deviations()->add(
            ReadingReport::s_sMissingId, a_reader.offset(), [&](ReadingEntry& a_entry) {
                a_entry.found = shownText(a_reader.name());
                a_entry.message =
                    QStringLiteral("The element has no attribute \"ID\": it is skipped with its content.");
            });
    }
}

void reportMerged(XmlReader& a_reader, const XmlText& a_id)
{
    if (a_reader.deviations() != nullptr) {
        a_reader.deviations()->add(ReadingReport::s_sDuplicateId, a_id.offset, [&](ReadingEntry& a_entry) {
            a_entry.found = shownText(a_id.bytes);
            a_entry.message =
                QStringLiteral("An earlier element has this id: both are read as one object, and the "
                               "values of this element replace the earlier ones.");
        });
    }
}

} // namespace Simulation
