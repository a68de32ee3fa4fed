#include "outbox.h"

#include <QByteArrayView>

#include <algorithm>
#include <utility>

namespace SimulationTool {

namespace {

/// The estimated memory of an entry (bytes), without the bytes of its command.
constexpr qint64 s_iEntryBytes = 128;

} // namespace

OutgoingCommand::OutgoingCommand(QByteArray a_bytes, std::shared_ptr<qint64> a_pTotal, OutgoingKind a_eKind)
    : m_bytes(std::move(a_bytes))
    , m_pTotal(std::move(a_pTotal))
    , m_eKind(a_eKind)
{}

void OutgoingCommand::beginWaiting() const
{
    if (m_iOutboxes++ == 0) {
        *m_pTotal += m_bytes.size();
    }
}

void OutgoingCommand::endWaiting() const
{
    if (--m_iOutboxes == 0) {
        *m_pTotal -= m_bytes.size();
    }
}

Outbox::Outbox(std::shared_ptr<qint64> a_pTotal)
    : m_pTotal(std::move(a_pTotal))
{}

void Outbox::append(const OutgoingCommandPtr& a_pCommand)
{
    if (a_pCommand == nullptr) {
        return;
    }
    supersede(a_pCommand->kind());
    if (a_pCommand->kind() == OutgoingKind::Other && !m_entries.empty() &&
        m_entries.back().command == a_pCommand && m_entries.back().key.isEmpty()) {
        ++m_entries.back().times;
        return;
    }
    const auto entry = add(a_pCommand, QString());
    if (a_pCommand->kind() == OutgoingKind::ScenarioLoad) {
        m_scenario = entry;
    } else if (a_pCommand->kind() == OutgoingKind::DeploymentLoad) {
        m_deployment = entry;
    }
}

/// Removes the waiting commands that a command of this kind supersedes. An
/// unregistration instead protects all waiting commands from removal.
void Outbox::supersede(OutgoingKind a_eKind)
{
    switch (a_eKind) {
    case OutgoingKind::Other:
    case OutgoingKind::ScenarioRun:
        break;
    case OutgoingKind::ScenarioLoad:
    case OutgoingKind::ScenarioUnload:
        removeScenario();
        break;
    case OutgoingKind::DeploymentLoad:
        if (m_deployment != m_entries.end()) {
            remove(std::exchange(m_deployment, m_entries.end()));
        }
        break;
    case OutgoingKind::Unregistration:
        m_reports.clear();
        m_scenario = m_entries.end();
        m_deployment = m_entries.end();
        break;
    }
}

/// Removes the waiting scenario, and the starts and pauses after it. Visits only the
/// entries from that scenario on. The next scenario is appended after all of these
/// entries, so each entry is visited at most once, however many scenarios are appended.
void Outbox::removeScenario()
{
    auto it = std::exchange(m_scenario, m_entries.end());
    while (it != m_entries.end()) {
        const auto each = it++;
        const OutgoingKind eKind = each->command->kind();
        if (eKind == OutgoingKind::ScenarioLoad || eKind == OutgoingKind::ScenarioRun) {
            remove(each);
        }
    }
}

void Outbox::report(const QString& a_sKey, const OutgoingCommandPtr& a_pCommand)
{
    if (a_pCommand == nullptr) {
        return;
    }
    if (const auto it = m_reports.constFind(a_sKey); it != m_reports.constEnd()) {
        OutgoingCommandPtr& pFormer = (*it)->command;
        m_iBytes += a_pCommand->bytes().size() - pFormer->bytes().size();
        a_pCommand->beginWaiting();
        pFormer->endWaiting();
        pFormer = a_pCommand;
        return;
    }
    m_reports.insert(a_sKey, add(a_pCommand, a_sKey));
}

Outbox::Entries::iterator Outbox::add(const OutgoingCommandPtr& a_pCommand, const QString& a_sKey)
{
    a_pCommand->beginWaiting();
    m_iBytes += a_pCommand->bytes().size() + s_iEntryBytes;
    *m_pTotal += s_iEntryBytes;
    return m_entries.insert(m_entries.end(), {a_pCommand, a_sKey});
}

void Outbox::remove(Entries::iterator a_entry)
{
    m_iBytes -= a_entry->command->bytes().size() + s_iEntryBytes;
    *m_pTotal -= s_iEntryBytes;
    a_entry->command->endWaiting();
    m_entries.erase(a_entry);
}

QByteArray Outbox::take(qsizetype a_iMost)
{
    QByteArray taken;
    while (taken.size() < a_iMost && !m_entries.empty()) {
        Entry& first = m_entries.front();
        if (m_iTaken == 0) {
            keepFirst();
        }
        const QByteArrayView rest = QByteArrayView(first.command->bytes()).sliced(m_iTaken);
        const qsizetype iPiece = std::min(rest.size(), a_iMost - taken.size());
        taken.append(rest.first(iPiece));
        m_iTaken += iPiece;
        if (iPiece == rest.size()) {
            m_iTaken = 0;
            if (--first.times == 0) {
                remove(m_entries.begin());
            }
        }
    }
    return taken;
}

/// Protects the first entry from being superseded, because a part of it was taken.
void Outbox::keepFirst()
{
    const auto first = m_entries.begin();
    // m_reports may contain a later entry for this key, appended after an unregistration.
    if (const auto it = m_reports.constFind(first->key); it != m_reports.constEnd() && *it == first) {
        m_reports.erase(it);
    }
    for (Entries::iterator* const pEach : {&m_scenario, &m_deployment}) {
        if (*pEach == first) {
            *pEach = m_entries.end();
        }
    }
}

void Outbox::clear()
{
    for (const Entry& entry : m_entries) {
        entry.command->endWaiting();
    }
    *m_pTotal -= s_iEntryBytes * static_cast<qint64>(m_entries.size());
    m_entries.clear();
    m_reports.clear();
    m_scenario = m_entries.end();
    m_deployment = m_entries.end();
    m_iTaken = 0;
    m_iBytes = 0;
}

} // namespace SimulationTool
