#ifndef SIMULATIONDATA_RECEIVEBUFFER_P_H
#define SIMULATIONDATA_RECEIVEBUFFER_P_H

#include <QByteArray>
#include <QByteArrayView>

namespace Simulation {

/// A queue of received bytes, which are appended at the end and taken from the front.
/// Taking bytes leaves a gap at the front. append() closes a gap that is larger than
/// the remaining bytes. The total time is therefore linear in the number of bytes,
/// whatever the sizes of the pieces. Used by one thread at a time; a default object is
/// empty.
class ReceiveBuffer
{
public:
    /// The bytes that have not been taken. Valid until the next change.
    [[nodiscard]] QByteArrayView bytes() const { return QByteArrayView(m_bytes).sliced(m_iTaken); }
    [[nodiscard]] qsizetype size() const { return m_bytes.size() - m_iTaken; }

    void append(const QByteArray& a_bytes)
    {
        if (m_iTaken > size()) {
            m_bytes.remove(0, m_iTaken);
            m_iTaken = 0;
        }
        m_bytes.append(a_bytes);
    }

    /// Drops bytes from the front, at most size().
    void skip(qsizetype a_iBytes)
    {
        m_iTaken += a_iBytes;
        if (size() == 0) {
            clear();
        }
    }

    /// Returns and drops bytes from the front, at most size().
    QByteArray take(qsizetype a_iBytes)
    {
        QByteArray taken = m_bytes.mid(m_iTaken, a_iBytes);
        skip(a_iBytes);
        return taken;
    }

    QByteArray takeAll() { return take(size()); }

    /// Also frees the memory.
    void clear()
    {
        m_bytes = QByteArray();
        m_iTaken = 0;
    }

private:
    QByteArray m_bytes;
    qsizetype m_iTaken = 0; ///< size of the gap at the front (bytes)
};

} // namespace Simulation

#endif
