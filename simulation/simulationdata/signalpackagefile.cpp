#include "signalpackagefile.h"

#include "simulationdata/io/documentfile_p.h"
#include "simulationdata/io/numbers_p.h"
#include "simulationdata/io/trace_p.h"
#include "simulationdata/xml/xmlrecord_p.h"
#include "simulationdata/xml/xmltext_p.h"
#include "simulationdata/xml/xmltextreader_p.h"
#include "simulationdata/xml/xmlwalk_p.h"
#include "simulationdata/xmlelement.h"

#include <QFileInfo>
#include <QSet>

#include <limits>

namespace Simulation {

namespace {

constexpr const char* s_szSource = "simulation/simulationdata/signalpackagefile";

// The names of elements and attributes in a descriptor.
constexpr QLatin1String s_sSignalPackage("SignalPackage");
constexpr QLatin1String s_sFileFormatVersion("FileFormatVersion");
constexpr QLatin1String s_sTimestamp("Timestamp");
constexpr QLatin1String s_sUid("UID");
constexpr QLatin1String s_sUpdateId("UpdateID");
constexpr QLatin1String s_sMetaData("MetaData");
constexpr QLatin1String s_sName("Name");
constexpr QLatin1String s_sAuthor("Author");
constexpr QLatin1String s_sBandwidth("Bandwidth");
constexpr QLatin1String s_sAnalogModulation("AnalogModulation");
constexpr QLatin1String s_sDuration("Duration");
constexpr QLatin1String s_sDigitalModulation("DigitalModulation");

constexpr XmlRange s_bandwidths{0.0, std::numeric_limits<double>::infinity(), false, "Hz"};

/// A descriptor while it is read.
struct Descriptor
{
    SignalPackage package;
    QStringList updateIds;
    qsizetype digitalModulation = -1; ///< offset of its element; -1: it is missing or empty
};

/// The version is not used; another one than the known one is reported.
void readFormatVersion(XmlReader& a_reader, const XmlText& a_value, Descriptor& /*a_descriptor*/)
{
    if (a_reader.unsignedNumber(a_value) > 0 && a_reader.deviations() != nullptr) {
        a_reader.deviations()->add(
            ReadingReport::s_sNewerVersion, a_value.offset, [&](ReadingEntry& a_entry) {
                a_entry.found = shownText(a_value.bytes);
                a_entry.message = QStringLiteral(
                    "The version is newer than 0, the only one that is known: what is new in it "
                    "is skipped.");
            });
    }
}

/// Reports another root element; it is read as a descriptor all the same.
void reportOtherRoot(XmlReader& a_reader)
{
    if (!isName(a_reader.name(), s_sSignalPackage) && a_reader.deviations() != nullptr) {
        a_reader.deviations()->add(
            ReadingReport::s_sOtherRoot, a_reader.offset(), [&](ReadingEntry& a_entry) {
                a_entry.found = shownText(a_reader.name());
                a_entry.message = QStringLiteral(
                    "The root element is not \"SignalPackage\": it is read as a descriptor all "
                    "the same.");
            });
    }
}

/// Reports a text that is none of the modulations. Descriptors made elsewhere write "None",
/// which is read as CW.
void reportUnknownModulation(XmlReader& a_reader, const XmlText& a_text)
{
    const QStringList names = analogModulationTexts();
    const QString sText = a_text.string();
    if (names.contains(sText) || sText == u"None" || a_reader.deviations() == nullptr) {
        return;
    }
    a_reader.deviations()->add(ReadingReport::s_sUnknownValue, a_text.offset, [&](ReadingEntry& a_entry) {
        a_entry.found = shownText(a_text.bytes);
        a_entry.suggestion = similarName(a_entry.found, names);
        a_entry.message =
            QStringLiteral("The value is none of %1: \"CW\" is used.").arg(names.join(QStringLiteral(", ")));
    });
}

/// Reports the name of a digital modulation that has no effect.
void reportIgnoredModulation(XmlReader& a_reader, const Descriptor& a_descriptor)
{
    if (a_descriptor.digitalModulation < 0 || a_descriptor.package.hasDigitalModulation() ||
        a_reader.deviations() == nullptr) {
        return;
    }
    a_reader.deviations()->add(
        ReadingReport::s_sIgnoredValue, a_descriptor.digitalModulation, [&](ReadingEntry& a_entry) {
            a_entry.found = shownText(a_descriptor.package.digitalModulation().toUtf8());
            a_entry.message = QStringLiteral(
                "The analog modulation is not \"Digital\": the digital modulation is ignored.");
        });
}

/// Skip an element or attribute that descriptors made elsewhere have and that is not
/// needed.
void passElement(XmlReader& a_reader, Descriptor& /*a_descriptor*/)
{
    a_reader.skip();
}
void passAttribute(XmlReader& /*a_reader*/, const XmlText& /*a_value*/, Descriptor& /*a_descriptor*/)
{}

const XmlAttributeField<Descriptor> s_rootAttributes[] = {
    {s_sFileFormatVersion, &readFormatVersion, XmlOccurs::Once},
    {s_sTimestamp,
     [](XmlReader& a_reader, const XmlText& a_value, Descriptor& a_descriptor) {
         a_descriptor.package.setTimestamp(a_reader.unsignedNumber(a_value));
     },
     XmlOccurs::Once},
    {s_sUid,
     [](XmlReader& /*a_reader*/, const XmlText& a_value, Descriptor& a_descriptor) {
         a_descriptor.package.setId(a_value.string());
     },
     XmlOccurs::Once},
    {QLatin1String("Version"), &passAttribute},
};

const XmlAttributeField<QString> s_updateAttributes[] = {
    {s_sUid,
     [](XmlReader& /*a_reader*/, const XmlText& a_value, QString& a_sId) { a_sId = a_value.string(); },
     XmlOccurs::Once},
};

template<auto Set>
void readTextTo(XmlReader& a_reader, Descriptor& a_descriptor)
{
    if (const auto text = a_reader.text()) {
        (a_descriptor.package.*Set)(text->string());
    }
}

const XmlChild<Descriptor> s_metaData[] = {
    {s_sName, &readTextTo<&SignalPackage::setName>, XmlOccurs::First},
    {s_sAuthor, &readTextTo<&SignalPackage::setAuthor>, XmlOccurs::FirstIfAny},
    {QLatin1String("Library"), &passElement},
    {QLatin1String("Created"), &passElement},
    {QLatin1String("UserEditable"), &passElement},
};

void readUpdateId(XmlReader& a_reader, Descriptor& a_descriptor)
{
    QString sId;
    readXmlAttributes(a_reader, sId, s_updateAttributes);
    readXmlEnd(a_reader);
    a_descriptor.updateIds.append(sId);
}

/// Reads a number that other programs and checks need, and the package does not.
void readNumber(XmlReader& a_reader, Descriptor& /*a_descriptor*/)
{
    if (const auto text = a_reader.text()) {
        (void)a_reader.unsignedNumber(*text);
    }
}

const XmlChild<Descriptor> s_content[] = {
    {s_sName, &passElement, XmlOccurs::First},
    {QLatin1String("SourceName"), &passElement},
    {QLatin1String("Checksum"), &readNumber, XmlOccurs::FirstIfAny},
    {QLatin1String("Format"), &passElement},
    {s_sDuration, &readNumber, XmlOccurs::FirstIfAny},
};

void readContent(XmlReader& a_reader, Descriptor& a_descriptor)
{
    readXmlChildren(a_reader, a_descriptor, s_content);
}

const XmlChild<Descriptor> s_rootElements[] = {
    {s_sUpdateId, &readUpdateId, XmlOccurs::AnyTimes},
    {s_sMetaData,
     [](XmlReader& a_reader, Descriptor& a_descriptor) {
         readXmlChildren(a_reader, a_descriptor, s_metaData);
     },
     XmlOccurs::First},
    {s_sBandwidth,
     [](XmlReader& a_reader, Descriptor& a_descriptor) {
         if (const auto text = a_reader.text()) {
             a_descriptor.package.setSignalBandwidth(a_reader.singleNumber(*text, s_bandwidths));
         }
     },
     XmlOccurs::First},
    {s_sAnalogModulation,
     [](XmlReader& a_reader, Descriptor& a_descriptor) {
         if (const auto text = a_reader.text()) {
             a_descriptor.package.setAnalogModulation(analogModulationFromString(text->string()));
             reportUnknownModulation(a_reader, *text);
         }
     },
     XmlOccurs::First},
    {s_sDuration,
     [](XmlReader& a_reader, Descriptor& a_descriptor) {
         if (const auto text = a_reader.text()) {
             a_descriptor.package.setDuration(a_reader.unsignedNumber(*text));
         }
     },
     XmlOccurs::First},
    {s_sDigitalModulation,
     [](XmlReader& a_reader, Descriptor& a_descriptor) {
         const qsizetype iOffset = a_reader.offset();
         readTextTo<&SignalPackage::setDigitalModulation>(a_reader, a_descriptor);
         a_descriptor.digitalModulation = a_descriptor.package.digitalModulation().isEmpty() ? -1 : iOffset;
     },
     XmlOccurs::FirstIfAny},
    {QLatin1String("SignalShape"), &readContent},
    {QLatin1String("Audio"), &readContent},
};

/// Writes each id once, at its first position.
void writeUpdateIds(XmlElement& a_root, const QStringList& a_ids)
{
    QSet<QString> written;
    for (const QString& sId : a_ids) {
        if (!written.contains(sId)) {
            written.insert(sId);
            a_root.appendChild(s_sUpdateId).setAttribute(s_sUid, sId);
        }
    }
}

void traceUnreadable(const QString& a_sWhat, const QString& a_sReason)
{
    traceError(s_szSource, [&] {
        return QStringLiteral("Cannot read the signal package descriptor %1: %2").arg(a_sWhat, a_sReason);
    });
}

/// `a_sWhat` names the descriptor in a trace. `a_pReport` may be null; an error is then
/// traced, and otherwise reported.
SignalPackage readDescriptor(const QByteArray& a_descriptor, const QString& a_sWhat, ReadingReport* a_pReport)
{
    Descriptor descriptor;
    XmlDeviations deviations;
    QString sReason;
    const XmlRecord record(a_descriptor, &sReason);
    if (sReason.isEmpty()) {
        XmlTextReader reader(record.text(), a_pReport != nullptr ? &deviations : nullptr,
                             record.root().data() - record.text().data());
        if (reader.nextChild()) {
            reportOtherRoot(reader);
            readXmlAttributes(reader, descriptor, s_rootAttributes);
            readXmlChildren(reader, descriptor, s_rootElements);
            descriptor.package.setUpdateIds(descriptor.updateIds);
            reportIgnoredModulation(reader, descriptor);
        }
    } else if (a_pReport == nullptr) {
        traceUnreadable(a_sWhat, sReason);
    } else {
        deviations.add(ReadingReport::s_sBrokenOff, record.errorOffset(), [&](ReadingEntry& a_entry) {
            a_entry.message = QStringLiteral("Nothing is read: %1").arg(errorSentence(sReason));
        });
    }
    if (a_pReport != nullptr) {
        *a_pReport = deviations.report(record.text());
    }
    return descriptor.package;
}

} // namespace

SignalPackage SignalPackageFile::readSignalPackageDescriptor(const QByteArray& a_descriptor)
{
    return readDescriptor(a_descriptor, QStringLiteral("of %1 bytes").arg(a_descriptor.size()), nullptr);
}

ReadingReport SignalPackageFile::report(const QByteArray& a_descriptor)
{
    ReadingReport report;
    (void)readDescriptor(a_descriptor, {}, &report);
    return report;
}

QByteArray SignalPackageFile::writeSignalPackageDescriptor(const SignalPackage& a_package)
{
    XmlElement root = XmlElement::create(s_sSignalPackage);
    root.setAttribute(s_sFileFormatVersion, QStringLiteral("0"));
    root.setAttribute(s_sTimestamp, QString::number(a_package.timestamp()));
    root.setAttribute(s_sUid, a_package.id());
    writeUpdateIds(root, a_package.updateIds());
    XmlElement metaData = root.appendChild(s_sMetaData);
    metaData.setChildText(s_sName, a_package.name());
    metaData.setChildText(s_sAuthor, a_package.author());
    const auto dBandwidth = static_cast<double>(a_package.signalBandwidth());
    root.setChildText(s_sBandwidth, numberText(finiteOrZero(dBandwidth)));
    root.setChildText(s_sAnalogModulation, analogModulationToString(a_package.analogModulation()));
    root.setChildText(s_sDuration, QString::number(a_package.duration()));
    if (a_package.hasDigitalModulation()) {
        root.setChildText(s_sDigitalModulation, a_package.digitalModulation());
    }
    return root.toByteArray();
}

SignalPackage SignalPackageFile::signalPackage(const QByteArray& a_descriptor)
{
    return readSignalPackageDescriptor(a_descriptor);
}

SignalPackage SignalPackageFile::signalPackage(const QString& a_sFile)
{
    const QString sWhat = QStringLiteral("\"%1\"").arg(a_sFile);
    // Reading from a device or a pipe could block without limit.
    if (!QFileInfo(a_sFile).isFile()) {
        traceUnreadable(sWhat, QStringLiteral("no such file"));
        return {};
    }
    QString sReason;
    const std::optional<QByteArray> descriptor = loadDocument(a_sFile, &sReason);
    if (!descriptor) {
        traceUnreadable(sWhat, sReason);
        return {};
    }
    return readDescriptor(*descriptor, sWhat, nullptr);
}

bool SignalPackageFile::signalPackageFile(const SignalPackage& a_package, const QString& a_sFile)
{
    const QByteArray descriptor = writeSignalPackageDescriptor(a_package);
    QString sReason;
    // A descriptor that cannot be read back must not replace a readable one.
    if (XmlElement::parse(descriptor, &sReason).isNull()) {
        traceError(s_szSource,
                   [&] { return QStringLiteral("Cannot save \"%1\": %2").arg(a_sFile, sReason); });
        return false;
    }
    return saveDocument(a_sFile, descriptor);
}

} // namespace Simulation
