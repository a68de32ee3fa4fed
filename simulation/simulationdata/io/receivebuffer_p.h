#ifndef SIMULATIONDATA_RECEIVEBUFFER_P_H
#define SIMULATIONDATA_RECEIVEBUFFER_P_H

#include <QByteArray>
#include <QByteArrayView>

namespace Simulation {

/// Bytes that have come and wait to be taken from the front. Time is linear in
/// the bytes, whatever pieces they come and go in: what is taken leaves a gap,
/// which closes when it has grown larger than the rest.
class ReceiveBuffer
{
public:
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

    void skip(qsizetype a_iBytes)
    {
        m_iTaken += a_iBytes;
        if (size() == 0) {
            clear();
        }
    }

    QByteArray take(qsizetype a_iBytes)
    {
        QByteArray taken = m_bytes.mid(m_iTaken, a_iBytes);
        skip(a_iBytes);
        return taken;
    }

    QByteArray takeAll() { return take(size()); }

    /// Gives the memory back, too.
    void clear()
    {
        m_bytes = QByteArray();
        m_iTaken = 0;
    }

private:
    QByteArray m_bytes;
    qsizetype m_iTaken = 0; ///< the gap at the front
};

} // namespace Simulation

#endif
