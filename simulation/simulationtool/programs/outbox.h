#ifndef SIMULATIONTOOL_OUTBOX_H
#define SIMULATIONTOOL_OUTBOX_H

#include <QByteArray>
#include <QHash>
#include <QString>

#include <list>
#include <memory>

namespace SimulationTool {

/// The kind of a command. It determines the effect on waiting commands, see Outbox.
enum class OutgoingKind {
    Other,
    ScenarioLoad,
    ScenarioUnload,
    ScenarioRun, ///< a start or a pause of the loaded scenario
    DeploymentLoad,
    Unregistration, ///< the device then ignores orders until the service confirms it again
};

/// A command that waits for one or more peers. The outboxes of these peers share the
/// bytes of the command. A counter sums the bytes that wait for all peers. The counter
/// includes a command once, while at least one outbox contains the command. A command
/// that is only kept for devices that register later is not included.
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

    /// Whether at least one outbox contains this command.
    [[nodiscard]] bool isWaiting() const { return m_iOutboxes > 0; }

    // Called in pairs, by outboxes only
    void beginWaiting() const;
    void endWaiting() const;

private:
    const QByteArray m_bytes;
    const std::shared_ptr<qint64> m_pTotal; ///< bytes that wait for all peers
    const OutgoingKind m_eKind;
    mutable qsizetype m_iOutboxes = 0; ///< number of outbox entries with this command
};

/// Null, or a command that is not empty.
using OutgoingCommandPtr = std::shared_ptr<const OutgoingCommand>;

/// The commands that wait for one peer to read them, in sending order. Owned by the
/// peer; used on its thread.
///
/// For a peer that reads slowly, only the newest report of each key and the newest
/// document of each kind wait. A command of which a part was taken is not removed. A new
/// command has this effect on the other commands that already wait:
///
///   a report             replaces the waiting report with the same key;
///   a scenario or        removes the waiting scenario, and the starts and pauses after
///   an unload            that scenario, because they would apply to another scenario;
///   a deployment         removes the waiting deployment;
///   an unregistration    protects all waiting commands from removal and replacement by
///                        later commands, because the peer may ignore the later ones.
///
/// All other commands keep their order. Stops and unloads are never removed: they are
/// small, and with them every run ends as early as it would without any removal.
///
/// A device therefore ends in the same state as if it had received every command. Each
/// scenario replaces the loaded scenario, even when the new one cannot be read. Only the
/// newest deployment sets the device's place. Every start applies to the scenario for
/// which it was sent.
class Outbox
{
public:
    /// `a_pTotal` counts the bytes of all outboxes.
    explicit Outbox(std::shared_ptr<qint64> a_pTotal);
    ~Outbox() { clear(); }
    Outbox(const Outbox&) = delete;
    Outbox& operator=(const Outbox&) = delete;

    /// Appends a command and removes those that it supersedes. Ignores null.
    void append(const OutgoingCommandPtr& a_pCommand);

    /// Replaces the waiting report with this key. Appends the command when there is no
    /// such report, when a part of that report was taken already, or when an
    /// unregistration follows that report. The key must not be empty. Ignores null.
    void report(const QString& a_sKey, const OutgoingCommandPtr& a_pCommand);

    [[nodiscard]] bool isEmpty() const { return m_entries.empty(); }

    /// The memory (bytes) of the commands and, estimated, of their entries. Successive
    /// repetitions of one command count once.
    [[nodiscard]] qint64 bytes() const { return m_iBytes; }

    /// Takes the next bytes, at most `a_iMost`. A command may be taken in pieces.
    [[nodiscard]] QByteArray take(qsizetype a_iMost);

    void clear();

private:
    struct Entry
    {
        OutgoingCommandPtr command;
        QString key; ///< of a report; empty for any other command
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
    Entries::iterator m_scenario = m_entries.end();   ///< a waiting scenario; end() without one
    Entries::iterator m_deployment = m_entries.end(); ///< a waiting deployment; end() without one

    qsizetype m_iTaken = 0; ///< taken bytes of the first entry
    qint64 m_iBytes = 0;
};

} // namespace SimulationTool

#endif
