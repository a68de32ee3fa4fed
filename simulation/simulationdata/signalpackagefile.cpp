#include "signalpackagefile.h"

#include "simulationdata/io/documentfile_p.h"
#include "simulationdata/io/numbers_p.h"
#include "simulationdata/io/trace_p.h"
#include "simulationdata/xml/xmltext_p.h"
#include "simulationdata/xmlelement.h"

#include <QFileInfo>
#include <QSet>

#include <cmath>
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

float readBandwidth(const QString& a_sText)
{
    const double dValue = readDouble(a_sText);
    return std::abs(dValue) <= static_cast<double>(std::numeric_limits<float>::max())
               ? static_cast<float>(dValue)
               : 0.0F;
}

QStringList readUpdateIds(const XmlElement& a_root)
{
    QStringList ids;
    for (XmlElement update = a_root.firstChild(s_sUpdateId); !update.isNull();
         update = update.nextSibling(s_sUpdateId)) {
        ids.append(update.attribute(s_sUid));
    }
    return ids;
}

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

/// `a_sWhat` names the descriptor in a trace.
SignalPackage readDescriptor(const QByteArray& a_descriptor, const QString& a_sWhat)
{
    SignalPackage package;
    QString sReason;
    const XmlElement root = XmlElement::parse(a_descriptor, &sReason);
    if (root.isNull()) {
        traceUnreadable(a_sWhat, sReason);
        return package;
    }
    package.setTimestamp(root.attribute(s_sTimestamp).toUInt());
    package.setId(root.attribute(s_sUid));
    package.setUpdateIds(readUpdateIds(root));
    const XmlElement metaData = root.firstChild(s_sMetaData);
    package.setName(metaData.childText(s_sName));
    package.setAuthor(metaData.childText(s_sAuthor));
    package.setSignalBandwidth(readBandwidth(root.childText(s_sBandwidth)));
    package.setAnalogModulation(analogModulationFromString(root.childText(s_sAnalogModulation)));
    package.setDuration(root.childUnsigned(s_sDuration));
    package.setDigitalModulation(root.childText(s_sDigitalModulation));
    return package;
}

} // namespace

SignalPackage SignalPackageFile::readSignalPackageDescriptor(const QByteArray& a_descriptor)
{
    return readDescriptor(a_descriptor, QStringLiteral("of %1 bytes").arg(a_descriptor.size()));
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
    return readDescriptor(*descriptor, sWhat);
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
