#ifndef BENCHMARKS_PROCESSMEMORY_H
#define BENCHMARKS_PROCESSMEMORY_H

#include <QByteArrayView>
#include <QFile>
#include <QString>

#include <malloc.h>

/// A memory figure of this process, converted to bytes; 0 when it is not known.
inline double processBytes(QByteArrayView a_name)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly)) {
        return 0.0;
    }
    for (QByteArray line = status.readLine(); !line.isEmpty(); line = status.readLine()) {
        if (line.startsWith(a_name)) {
            return line.mid(a_name.size()).simplified().split(' ').constFirst().toDouble() * 1024.0;
        }
    }
    return 0.0;
}

/// Returns unused memory to the system and resets the kernel's peak "VmHWM:" of this
/// process to the memory in use. False when the kernel refuses it.
inline bool resetPeakMemory()
{
    malloc_trim(0);
    QFile reset(QStringLiteral("/proc/self/clear_refs"));
    return reset.open(QIODevice::WriteOnly) && reset.write("5") == 1 && reset.flush();
}

#endif
