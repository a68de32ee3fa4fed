#include "outbox.h"

#include <QByteArrayView>

#include <algorithm>
#include <utility>

namespace SimulationTool {

namespace {

/// What an entry takes beside the bytes of its command.
constexpr qint64 s_iEntryBytes = 128;

} // namespace

OutgoingCommand::OutgoingCommand(QByteArray a_bytes, std::shared_ptr<qint64> a_pTotal)
    : m_bytes(std::move(a_bytes))
    , m_pTotal(std::move(a_pTotal))
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
    if (!m_entries.empty() && m_entries.back().command == a_pCommand && m_entries.back().key.isEmpty()) {
        ++m_entries.back().times;
        return;
    }
    add(a_pCommand, QString());
}

void Outbox::report(const QString& a_sKey, const OutgoingCommandPtr& a_pCommand)
{
    if (a_pCommand == nullptr) {
        return;
    }
    if (const auto it = m_reports.constFind(a_sKey); it != m_reports.constEnd()) {
        OutgoingCommandPtr& pFormer = m_entries[*it - m_uiFirst].command;
        m_iBytes += a_pCommand->bytes().size() - pFormer->bytes().size();
        a_pCommand->beginWaiting();
        pFormer->endWaiting();
        pFormer = a_pCommand;
        return;
    }
    m_reports.insert(a_sKey, m_uiFirst + m_entries.size());
    add(a_pCommand, a_sKey);
}

void Outbox::add(const OutgoingCommandPtr& a_pCommand, const QString& a_sKey)
{
    m_entries.push_back({a_pCommand, a_sKey});
    a_pCommand->beginWaiting();
    m_iBytes += a_pCommand->bytes().size() + s_iEntryBytes;
    *m_pTotal += s_iEntryBytes;
}

QByteArray Outbox::take(qsizetype a_iMost)
{
    QByteArray taken;
    while (taken.size() < a_iMost && !m_entries.empty()) {
        Entry& first = m_entries.front();
        if (m_iTaken == 0) {
            m_reports.remove(first.key); // what has begun to leave is not replaced
        }
        const QByteArrayView rest = QByteArrayView(first.command->bytes()).sliced(m_iTaken);
        const qsizetype iPiece = std::min(rest.size(), a_iMost - taken.size());
        taken.append(rest.first(iPiece));
        m_iTaken += iPiece;
        if (iPiece == rest.size()) {
            removeFirst();
        }
    }
    return taken;
}

/// Removes one of the times that the first command waits.
void Outbox::removeFirst()
{
    m_iTaken = 0;
    if (--m_entries.front().times == 0) {
        m_iBytes -= m_entries.front().command->bytes().size() + s_iEntryBytes;
        *m_pTotal -= s_iEntryBytes;
        m_entries.front().command->endWaiting();
        m_entries.pop_front();
        ++m_uiFirst;
    }
}

void Outbox::clear()
{
    for (const Entry& entry : m_entries) {
        entry.command->endWaiting();
    }
    *m_pTotal -= s_iEntryBytes * static_cast<qint64>(m_entries.size());
    m_uiFirst += m_entries.size();
    m_entries.clear();
    m_reports.clear();
    m_iTaken = 0;
    m_iBytes = 0;
}

} // namespace SimulationTool
