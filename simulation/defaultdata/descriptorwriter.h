#ifndef DEFAULTDATA_DESCRIPTORWRITER_H
#define DEFAULTDATA_DESCRIPTORWRITER_H

#include <QByteArray>
#include <QString>

#include <cstdint>

namespace DefaultData {

/// A data file of a package, with the values for its descriptor.
struct Content
{
    QByteArray bytes;           ///< content; the descriptor contains its CRC-32
    QString file;               ///< name inside the package
    QString format;             ///< for display
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

/// The content of "Signal.xml". The descriptor has more elements than the library reads.
/// Other programs use the additional elements to check the data files.
[[nodiscard]] QByteArray writeDescriptor(const Descriptor& a_descriptor);

} // namespace DefaultData

#endif
