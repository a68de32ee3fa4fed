#ifndef DEFAULTDATA_DESCRIPTORWRITER_H
#define DEFAULTDATA_DESCRIPTORWRITER_H

#include <QByteArray>
#include <QString>

#include <cstdint>

namespace DefaultData {

/// A data file of a package, as its descriptor describes it.
struct Content
{
    QByteArray bytes;           ///< the descriptor holds their CRC-32
    QString file;               ///< name inside the package
    QString format;             ///< for people
    std::uint32_t duration = 0; ///< ms
};

struct Descriptor
{
    QString id;
    QString name;
    std::uint32_t bandwidth = 0; ///< Hz
    std::uint32_t duration = 0;  ///< ms
    Content signalShape;
    Content audio;
};

/// The bytes of "Signal.xml". They hold more than the library reads: who else
/// reads such descriptors checks the data files against them.
[[nodiscard]] QByteArray writeDescriptor(const Descriptor& a_descriptor);

} // namespace DefaultData

#endif
