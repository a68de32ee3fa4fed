#ifndef SIMULATIONTOOL_OUTBOX_H
#define SIMULATIONTOOL_OUTBOX_H

#include <QByteArray>
#include <QHash>
#include <QString>

#include <deque>
#include <memory>

namespace SimulationTool {

/// A command on its way to one peer or many, which share its bytes. A counter
/// of what waits for all peers includes them once, as long as an outbox holds the
/// command: what is only kept for later waits for nobody.
class OutgoingCommand
{
public:
    OutgoingCommand(QByteArray a_bytes, std::shared_ptr<qint64> a_pTotal);
    ~OutgoingCommand() = default;
    OutgoingCommand(const OutgoingCommand&) = delete;
    OutgoingCommand& operator=(const OutgoingCommand&) = delete;

    [[nodiscard]] const QByteArray& bytes() const { return m_bytes; }

    /// Whether it waits in an outbox.
    [[nodiscard]] bool isWaiting() const { return m_iOutboxes > 0; }

    // For outboxes, which call them in pairs.
    void beginWaiting() const;
    void endWaiting() const;

private:
    const QByteArray m_bytes;
    const std::shared_ptr<qint64> m_pTotal; ///< what waits for all peers (bytes)
    mutable qsizetype m_iOutboxes = 0;      ///< entries that hold it
};

/// Never holds an empty command; null without a command.
using OutgoingCommandPtr = std::shared_ptr<const OutgoingCommand>;

/// The commands that wait for one peer to read, in the order in which they leave.
///
/// A report of something supersedes an earlier one that still waits, so a peer
/// that reads slowly makes us hold no more than the newest of each.
class Outbox
{
public:
    /// `a_pTotal` counts what all outboxes hold.
    explicit Outbox(std::shared_ptr<qint64> a_pTotal);
    ~Outbox() { clear(); }
    Outbox(const Outbox&) = delete;
    Outbox& operator=(const Outbox&) = delete;

    /// Null is passed over.
    void append(const OutgoingCommandPtr& a_pCommand);

    /// Takes the place of the report with that key, which must not be empty, if
    /// nothing of it has left yet.
    void report(const QString& a_sKey, const OutgoingCommandPtr& a_pCommand);

    [[nodiscard]] bool isEmpty() const { return m_entries.empty(); }

    /// What the commands hold, and what holding them takes. One that waits several
    /// times in a row counts once.
    [[nodiscard]] qint64 bytes() const { return m_iBytes; }

    /// The next bytes, at most so many. Commands leave in pieces if need be.
    [[nodiscard]] QByteArray take(qsizetype a_iMost);

    void clear();

private:
    struct Entry
    {
        OutgoingCommandPtr command;
        QString key; ///< empty if it is no report
        quint64 times = 1;
    };

    void add(const OutgoingCommandPtr& a_pCommand, const QString& a_sKey);
    void removeFirst();

    const std::shared_ptr<qint64> m_pTotal;
    std::deque<Entry> m_entries;
    QHash<QString, quint64> m_reports; ///< the numbers of the entries by key
    quint64 m_uiFirst = 0;             ///< the number of the first entry
    qsizetype m_iTaken = 0;            ///< bytes of the first entry that have left
    qint64 m_iBytes = 0;
};

} // namespace SimulationTool

#endif
