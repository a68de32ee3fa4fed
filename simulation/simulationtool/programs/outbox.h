#ifndef SIMULATIONTOOL_OUTBOX_H
#define SIMULATIONTOOL_OUTBOX_H

#include <QByteArray>
#include <QHash>
#include <QString>

#include <list>
#include <memory>

namespace SimulationTool {

/// What a command means to those that still wait before it, see Outbox.
enum class OutgoingKind {
    Other,
    ScenarioLoad,
    ScenarioUnload,
    ScenarioRun, ///< a start or a pause of the scenario that is loaded then
    DeploymentLoad,
    Unregistration, ///< the device ignores what follows until it is confirmed again
};

/// A command on its way to one peer or many, which share its bytes. A counter
/// of what waits for all peers includes them once, as long as an outbox holds the
/// command: what is only kept for later waits for nobody.
class OutgoingCommand
{
public:
    OutgoingCommand(QByteArray a_bytes, std::shared_ptr<qint64> a_pTotal,
                    OutgoingKind a_eKind = OutgoingKind::Other);
    ~OutgoingCommand() = default;
    OutgoingCommand(const OutgoingCommand&) = delete;
    OutgoingCommand& operator=(const OutgoingCommand&) = delete;

    [[nodiscard]] const QByteArray& bytes() const { return m_bytes; }
    [[nodiscard]] OutgoingKind kind() const { return m_eKind; }

    /// Whether it waits in an outbox.
    [[nodiscard]] bool isWaiting() const { return m_iOutboxes > 0; }

    // For outboxes, which call them in pairs.
    void beginWaiting() const;
    void endWaiting() const;

private:
    const QByteArray m_bytes;
    const std::shared_ptr<qint64> m_pTotal; ///< what waits for all peers (bytes)
    const OutgoingKind m_eKind;
    mutable qsizetype m_iOutboxes = 0; ///< entries that hold it
};

/// Never holds an empty command; null without a command.
using OutgoingCommandPtr = std::shared_ptr<const OutgoingCommand>;

/// The commands that wait for one peer to read, in the order in which they leave.
///
/// A peer that reads slowly makes us hold no more than the newest of each report
/// and document. What has begun to leave stays; of what still waits
///
///   a report             takes the place of the earlier report of its key,
///   a scenario, and an   remove the earlier scenario, and the starts and pauses
///   unload               after it: they would meet another scenario,
///   a deployment         removes the earlier deployment, and
///   an unregistration    has all before it stay: the peer may ignore what follows.
///
/// All else stays, in its order. A stop and an unload are small, and end what runs
/// as early as before. So a device ends in the state in which the whole sequence
/// leaves it, and every start meets the scenario that it was meant for: a scenario
/// ends what was loaded before, readable or not, and the place of a device depends
/// on the newest deployment only.
class Outbox
{
public:
    /// `a_pTotal` counts what all outboxes hold.
    explicit Outbox(std::shared_ptr<qint64> a_pTotal);
    ~Outbox() { clear(); }
    Outbox(const Outbox&) = delete;
    Outbox& operator=(const Outbox&) = delete;

    /// Removes what the command supersedes. Null is passed over.
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

    using Entries = std::list<Entry>;

    Entries::iterator add(const OutgoingCommandPtr& a_pCommand, const QString& a_sKey);
    void supersede(OutgoingKind a_eKind);
    void removeScenario();
    void keepFirst();
    void remove(Entries::iterator a_entry);

    const std::shared_ptr<qint64> m_pTotal;
    Entries m_entries;

    // Entries that may be superseded
    QHash<QString, Entries::iterator> m_reports;      ///< by key
    Entries::iterator m_scenario = m_entries.end();   ///< a load; the end without
    Entries::iterator m_deployment = m_entries.end(); ///< the end without

    qsizetype m_iTaken = 0; ///< bytes of the first entry that have left
    qint64 m_iBytes = 0;
};

} // namespace SimulationTool

#endif
