#include "encodedcommand.h"

#include "simulationdata/simulationservicecommunication.h"

#include <QTcpSocket>

namespace SimulationTool {

namespace {

/// A socket without a connection, which keeps what is written to it.
class RecordingSocket : public QTcpSocket
{
public:
    RecordingSocket() { setOpenMode(QIODevice::WriteOnly | QIODevice::Unbuffered); }

    [[nodiscard]] QByteArray takeBytes() { return std::move(m_bytes); }

    qint64 bytesToWrite() const override { return 0; }

protected:
    qint64 writeData(const char* a_pData, qint64 a_iSize) override
    {
        m_bytes.append(a_pData, a_iSize);
        return a_iSize;
    }

private:
    QByteArray m_bytes;
};

} // namespace

QByteArray encodedCommand(const CommandSender& a_send)
{
    RecordingSocket socket;
    Simulation::SimulationServiceCommunication communication(&socket);
    a_send(communication);
    return communication.hasLostCommands() ? QByteArray() : socket.takeBytes();
}

} // namespace SimulationTool
