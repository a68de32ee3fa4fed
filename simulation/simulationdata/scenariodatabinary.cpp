#include "scenariodatabinary.h"

#include "objectreleaser_p.h"
#include "scenariodatabinary_p.h"
#include "simulationdata/io/documentfile_p.h"
#include "simulationdata/io/trace_p.h"
#include "simulationdata/scenarionetwork.h"
#include "simulationdata/simulationlimits.h"
#include "simulationdata/szenarioemitter.h"

#include "kpbase/replacedfile.h"

#include <QIODevice>

#include <algorithm>
#include <iterator>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

namespace Simulation {

namespace {

constexpr const char* s_szSource = "simulation/simulationdata/scenariodatabinary";

const QString s_sNoLink = QStringLiteral("%%NONE%%");

CompactEmitter compactEmitter(const SzenarioEmitter& a_emitter, bool a_bDefault)
{
    const auto target = a_emitter.linkTargetEmitter();
    return {&a_emitter,
            target.get(),
            {a_emitter.id(), a_emitter.name(), a_emitter.description(), a_emitter.isActive(), a_bDefault,
             target ? target->id() : s_sNoLink, a_emitter.getClass()}};
}

bool failToWrite(const QString& a_sReason)
{
    traceError(s_szSource,
               [&] { return QStringLiteral("Cannot write a compact scenario: %1").arg(a_sReason); });
    return false;
}

bool mayHold(qsizetype a_iObjects)
{
    return static_cast<std::uint64_t>(a_iObjects) <= Limits::value(Limits::ScenarioObjects);
}

/// The size of a compact scenario (bytes). No value, with a reason, when no reader
/// accepts it.
std::optional<std::int64_t> streamBytes(const std::vector<CompactEmitter>& a_emitters, QString* a_pReason)
{
    constexpr std::size_t uiLargestCount = std::numeric_limits<std::int32_t>::max();
    if (a_emitters.size() > uiLargestCount || !mayHold(static_cast<qsizetype>(a_emitters.size()))) {
        *a_pReason = Limits::exceeded(Limits::ScenarioObjects);
        return std::nullopt;
    }
    std::int64_t iBytes = s_iCompactCountBytes;
    for (const CompactEmitter& emitter : a_emitters) {
        const auto record = compactBytes(emitter.record);
        if (!record) {
            *a_pReason = QStringLiteral("a text of \"%1\" is too long").arg(emitter.record.id);
            return std::nullopt;
        }
        iBytes += *record;
    }
    return checkDocumentBytes(iBytes, a_pReason) ? std::optional(iBytes) : std::nullopt;
}

} // namespace

ScenarioDataBinary::ScenarioDataBinary(ISignalPackageProvider* a_pProvider)
    : m_pProvider(a_pProvider)
{}

ScenarioDataBinary::~ScenarioDataBinary()
{
    ObjectReleaser::release(m_emitters, m_networks, m_defaultEmitter);
}

void ScenarioDataBinary::setScenarioEmitter(const QSet<std::shared_ptr<SzenarioEmitter>>& a_emitters)
{
    ObjectReleaser::replace(m_emitters, a_emitters);
    if (!m_emitters.contains(m_defaultEmitter)) {
        ObjectReleaser::release(m_defaultEmitter);
    }
}

void ScenarioDataBinary::setScenarioNetworks(const QSet<std::shared_ptr<ScenarioNetwork>>& a_networks)
{
    ObjectReleaser::replace(m_networks, a_networks);
}

void ScenarioDataBinary::setDefaultEmitter(const std::shared_ptr<SzenarioEmitter>& a_emitter)
{
    auto former = std::exchange(m_defaultEmitter, a_emitter);
    if (!m_emitters.contains(former)) {
        ObjectReleaser::release(former);
    }
}

QByteArray ScenarioDataBinary::toBinary() const
{
    std::vector<CompactEmitter> emitters;
    emitters.reserve(static_cast<std::size_t>(m_emitters.size()));
    std::transform(
        m_emitters.cbegin(), m_emitters.cend(), std::back_inserter(emitters),
        [this](const auto& a_emitter) { return compactEmitter(*a_emitter, a_emitter == m_defaultEmitter); });
    QString sReason;
    const std::optional<std::int64_t> bytes = streamBytes(emitters, &sReason);
    if (!bytes) {
        failToWrite(sReason);
        return {};
    }
    QByteArray data(static_cast<qsizetype>(*bytes), Qt::Uninitialized);
    char* pEnd = writeCompactCount(data.data(), static_cast<std::int32_t>(emitters.size()));
    for (const CompactRecord* pRecord : inLinkOrder(emitters)) {
        pEnd = writeCompactRecord(pEnd, *pRecord);
    }
    return data;
}

bool ScenarioDataBinary::toBinary(QIODevice* a_pDevice) const
{
    if (a_pDevice == nullptr || !a_pDevice->isWritable()) {
        return failToWrite(QStringLiteral("no device is open for writing"));
    }
    const QByteArray data = toBinary();
    if (data.isEmpty()) {
        return false;
    }
    return writeThrough(*a_pDevice, data) || failToWrite(a_pDevice->errorString());
}

std::shared_ptr<SzenarioEmitter> ScenarioDataBinary::readEmitter(CompactReader& a_reader)
{
    CompactRecord record;
    m_sErrorString = a_reader.readRecord(record);
    if (!m_sErrorString.isEmpty()) {
        return nullptr;
    }
    auto emitter = std::make_shared<SzenarioEmitter>(record.id, record.name);
    emitter->setDescription(record.description);
    emitter->setActive(record.active);
    emitter->setClass(record.emitterClass);
    link(emitter, record.linkTarget);
    m_emittersById.insert(record.id, emitter);
    m_emitters.insert(emitter);
    if (record.isDefault && !std::exchange(m_bDefaultRead, true)) {
        setDefaultEmitter(emitter);
    }
    return emitter;
}

void ScenarioDataBinary::link(const std::shared_ptr<SzenarioEmitter>& a_emitter, const QString& a_sTargetId)
{
    if (a_sTargetId == s_sNoLink) {
        return;
    }
    const auto target = a_sTargetId != a_emitter->id() ? emitterForId(a_sTargetId) : nullptr;
    if (target) {
        a_emitter->setLinkTargetEmitter(target);
        target->addLinkedEmitter(a_emitter);
    } else if (!a_sTargetId.isEmpty()) {
        m_unresolvedLinks.append({a_emitter->id(), a_sTargetId});
    }
}

std::shared_ptr<SzenarioEmitter> ScenarioDataBinary::emitterForId(const QString& a_sId) const
{
    return m_emittersById.value(a_sId);
}

bool ScenarioDataBinary::fromBinary(const QByteArray& a_data)
{
    CompactReader reader(a_data);
    return readFrom(&reader);
}

bool ScenarioDataBinary::fromBinary(QIODevice* a_pDevice)
{
    if (a_pDevice == nullptr || !a_pDevice->isReadable()) {
        return readFrom(nullptr);
    }
    CompactReader reader(*a_pDevice);
    return readFrom(&reader);
}

bool ScenarioDataBinary::readFrom(CompactReader* a_pReader)
{
    m_sErrorString.clear();
    m_unresolvedLinks.clear();
    m_bDefaultRead = false;
    bool bRead = false;
    if (a_pReader == nullptr) {
        m_sErrorString = QStringLiteral("no device is open for reading");
    } else {
        for (const std::shared_ptr<SzenarioEmitter>& emitter : std::as_const(m_emitters)) {
            m_emittersById.insert(emitter->id(), emitter);
        }
        bRead = readEmitters(*a_pReader);
        m_emittersById.clear();
    }
    if (!bRead) {
        traceError(s_szSource,
                   [&] { return QStringLiteral("Compact scenario broke off: %1").arg(m_sErrorString); });
    }
    return bRead;
}

bool ScenarioDataBinary::readEmitters(CompactReader& a_reader)
{
    std::int32_t iCount = 0;
    if (const QString sError = a_reader.readCount(iCount); !sError.isEmpty()) {
        m_sErrorString = QStringLiteral("count: ") + sError;
        return false;
    }
    const auto breakOff = [&](std::int32_t a_iRecord, const QString& a_sReason) {
        m_sErrorString = QStringLiteral("record %1 of %2%3")
                             .arg(QString::number(a_iRecord), QString::number(iCount), a_sReason);
        return false;
    };
    for (std::int32_t iRecord = 1; iRecord <= iCount; ++iRecord) {
        if (!mayHold(m_emitters.size() + m_networks.size() + 1)) {
            return breakOff(iRecord, QStringLiteral(": ") + Limits::exceeded(Limits::ScenarioObjects));
        }
        if (!readEmitter(a_reader)) {
            return breakOff(iRecord, QStringLiteral(", ") + m_sErrorString);
        }
    }
    return true;
}

} // namespace Simulation
