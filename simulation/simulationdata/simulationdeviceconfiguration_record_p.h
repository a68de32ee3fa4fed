#ifndef SIMULATIONDATA_SIMULATIONDEVICECONFIGURATION_RECORD_P_H
#define SIMULATIONDATA_SIMULATIONDEVICECONFIGURATION_RECORD_P_H

#include "simulationdata/io/trace_p.h"
#include "simulationdata/xmlelement.h"

#include <QByteArray>
#include <QString>

namespace Simulation {

/// The root of the record in the bytes; null after one trace when the bytes cannot be
/// read.
[[nodiscard]] inline XmlElement readRecord(const QByteArray& a_xml, const char* a_szSource)
{
    QString sError;
    XmlElement root = XmlElement::parse(a_xml, &sError);
    if (root.isNull()) {
        traceError(a_szSource, [&] {
            return QStringLiteral("Cannot read a record of %1 bytes: %2")
                .arg(QString::number(a_xml.size()), sError);
        });
    }
    return root;
}

/// The root to which the fields of a record are added: a new root for a null base, else
/// the root of the base.
[[nodiscard]] inline XmlElement recordRoot(const QByteArray& a_base, const QString& a_sTag,
                                           const char* a_szSource)
{
    return a_base.isNull() ? XmlElement::create(a_sTag) : readRecord(a_base, a_szSource);
}

} // namespace Simulation

#endif
