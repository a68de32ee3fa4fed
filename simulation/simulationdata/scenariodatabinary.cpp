#include "scenariodatabinary.h"

#include "objectreleaser_p.h"
#include "scenariodatabinary_p.h"
#include "simulationdata/io/documentfile_p.h"
#include "simulationdata/io/trace_p.h"
#include "simulationdata/scenarionetwork.h"
#include "simulationdata/simulationlimits.h"
#include "simulationdata/szenarioemitter.h"

#include "kpbase/replacedfile.h"

#include <QBuffer>
#include <QDataStream>

#include <limits>
#include <utility>

namespace Simulation {

namespace {

constexpr const char* s_szSource = "simulation/simulationdata/scenariodatabinary";

const QString s_sNoLink = QStringLiteral("%%NONE%%");

constexpr std::int64_t s_iCountBytes = 4;

CompactRecord recordOf(const SzenarioEmitter& a_emitter, bool a_bDefault)
{
    const auto target = a_emitter.linkTargetEmitter();
    return {a_emitter.id(),       a_emitter.name(), a_emitter.description(),
            a_emitter.isActive(), a_bDefault,       target ? target->id() : s_sNoLink,
            a_emitter.getClass()};
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

/// Whether a reader accepts the scenario. Otherwise `a_pReason` receives the reason.
bool ScenarioDataBinary::fitsReader(QString* a_pReason) const
{
    constexpr qsizetype iLargestCount = std::numeric_limits<qint32>::max();
    if (m_emitters.size() > iLargestCount || !mayHold(m_emitters.size())) {
        *a_pReason = Limits::exceeded(Limits::ScenarioObjects);
        return false;
    }
    std::int64_t iBytes = s_iCountBytes;
    for (const std::shared_ptr<SzenarioEmitter>& emitter : m_emitters) {
        const auto record = compactBytes(recordOf(*emitter, false));
        if (!record) {
            *a_pReason = QStringLiteral("a text of \"%1\" is too long").arg(emitter->id());
            return false;
        }
        iBytes += *record;
    }
    return checkDocumentBytes(iBytes, a_pReason);
}

QByteArray ScenarioDataBinary::toBinary() const
{
    if (QString sReason; !fitsReader(&sReason)) {
        failToWrite(sReason);
        return {};
    }
    QByteArray data;
    QDataStream stream(&data, QIODevice::WriteOnly);
    prepareCompactStream(stream);
    stream << static_cast<qint32>(m_emitters.size());
    for (const std::shared_ptr<SzenarioEmitter>& emitter : inLinkOrder(m_emitters, m_defaultEmitter.get())) {
        writeEmitter(stream, emitter);
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

void ScenarioDataBinary::writeEmitter(QDataStream& a_stream, std::shared_ptr<SzenarioEmitter> a_emitter) const
{
    writeCompactRecord(a_stream, recordOf(*a_emitter, a_emitter == m_defaultEmitter));
}

std::shared_ptr<SzenarioEmitter> ScenarioDataBinary::readEmitter(QDataStream& a_stream)
{
    CompactRecord record;
    m_sErrorString = readCompactRecord(a_stream, record, m_iStreamBytes);
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
    QBuffer buffer;
    buffer.setData(a_data);
    buffer.open(QIODevice::ReadOnly);
    return fromBinary(&buffer);
}

bool ScenarioDataBinary::fromBinary(QIODevice* a_pDevice)
{
    m_sErrorString.clear();
    m_unresolvedLinks.clear();
    m_bDefaultRead = false;
    bool bRead = false;
    if (a_pDevice == nullptr || !a_pDevice->isReadable()) {
        m_sErrorString = QStringLiteral("no device is open for reading");
    } else {
        for (const std::shared_ptr<SzenarioEmitter>& emitter : std::as_const(m_emitters)) {
            m_emittersById.insert(emitter->id(), emitter);
        }
        QDataStream stream(a_pDevice);
        prepareCompactStream(stream);
        bRead = readEmitters(stream);
        m_emittersById.clear();
    }
    if (!bRead) {
        traceError(s_szSource,
                   [&] { return QStringLiteral("Compact scenario broke off: %1").arg(m_sErrorString); });
    }
    return bRead;
}

bool ScenarioDataBinary::readEmitters(QDataStream& a_stream)
{
    m_iStreamBytes = 0;
    qint32 iCount = 0;
    if (const QString sError = readCompactCount(a_stream, iCount, m_iStreamBytes); !sError.isEmpty()) {
        m_sErrorString = QStringLiteral("count: ") + sError;
        return false;
    }
    const auto breakOff = [&](qint32 a_iRecord, const QString& a_sReason) {
        m_sErrorString = QStringLiteral("record %1 of %2%3")
                             .arg(QString::number(a_iRecord), QString::number(iCount), a_sReason);
        return false;
    };
    for (qint32 iRecord = 1; iRecord <= iCount; ++iRecord) {
        if (!mayHold(m_emitters.size() + m_networks.size() + 1)) {
            return breakOff(iRecord, QStringLiteral(": ") + Limits::exceeded(Limits::ScenarioObjects));
        }
        if (!readEmitter(a_stream)) {
            return breakOff(iRecord, QStringLiteral(", ") + m_sErrorString);
        }
    }
    return true;
}

} // namespace Simulation
