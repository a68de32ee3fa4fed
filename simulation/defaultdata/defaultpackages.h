#ifndef DEFAULTDATA_DEFAULTPACKAGES_H
#define DEFAULTDATA_DEFAULTPACKAGES_H

#include <QByteArray>
#include <QList>
#include <QString>

namespace DefaultData {

/// A signal package as the content of its files.
struct Package
{
    QString id;
    QString name;
    QByteArray signalShape; ///< "Signal.ssf"
    QByteArray audio;       ///< "Signal.wav"
    QByteArray descriptor;  ///< "Signal.xml"
};

/// The three default packages: "Default" contains a voice, "Gauss 10kHz" bursts of noise,
/// and "Rect 10kHz" a keyed tone. The signals are calculated, with the same result on
/// every machine.
[[nodiscard]] QList<Package> defaultPackages();

} // namespace DefaultData

#endif
