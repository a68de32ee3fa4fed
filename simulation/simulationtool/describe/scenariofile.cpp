#include "scenariofile.h"

#include "console/inputfile.h"
#include "console/output.h"
#include "console/valuetexts.h"

#include "simulationdata/scenariodatabinary.h"
#include "simulationdata/scenariodataxml.h"
#include "simulationdata/scenarionetwork.h"
#include "simulationdata/simulationlimits.h"
#include "simulationdata/szenarioemitter.h"

#include <QFile>
#include <QFileInfo>
#include <QtEndian>

#include <algorithm>
#include <array>

namespace SimulationTool {

namespace {

constexpr qint64 s_iHeadBytes = 4096;

template<typename Object, typename Objects>
QList<std::shared_ptr<Object>> ordered(const Objects& a_all)
{
    QList<std::shared_ptr<Object>> objects;
    for (const auto& object : a_all) {
        if (auto wanted = std::dynamic_pointer_cast<Object>(object)) {
            objects.append(std::move(wanted));
        }
    }
    // Ordered by id, then name, because ids may occur twice and a set has no order.
    std::sort(objects.begin(), objects.end(), [](const auto& a_first, const auto& a_second) {
        const int iOrder = a_first->id().compare(a_second->id());
        return iOrder != 0 ? iOrder < 0 : a_first->name() < a_second->name();
    });
    return objects;
}

/// Whether these bytes may begin a compact scenario: they do not begin like an XML
/// document, and the number of objects in the first four bytes is within the limit.
bool mayBeCompact(const QByteArray& a_head)
{
    constexpr std::array<QByteArrayView, 3> byteOrderMarks{
        {QByteArrayView("\xEF\xBB\xBF"), QByteArrayView("\xFE\xFF"), QByteArrayView("\xFF\xFE")}};
    const bool bMarked = std::any_of(byteOrderMarks.begin(), byteOrderMarks.end(),
                                     [&](QByteArrayView a_mark) { return a_head.startsWith(a_mark); });
    if (bMarked || a_head.trimmed().startsWith('<') || a_head.size() < qsizetype{sizeof(quint32)}) {
        return false;
    }
    return qFromBigEndian<quint32>(a_head.constData()) <=
           Simulation::Limits::value(Simulation::Limits::ScenarioObjects);
}

} // namespace

std::optional<Verdict> loadScenario(Simulation::ScenarioDataXml& a_scenario, const InputFile& a_file)
{
    const bool bRead = a_scenario.fromXmlFile(a_file.path());
    const QString sReason = a_scenario.errorString();
    if (!sReason.isEmpty()) {
        complain(QStringLiteral("%1: %2").arg(a_file.name(), sReason));
    }
    return bRead ? std::make_optional(documentVerdict(sReason)) : std::nullopt;
}

Verdict documentVerdict(const QString& a_sError)
{
    return a_sError.isEmpty() ? Verdict{}
                              : Verdict{ExitCode::Findings, QStringLiteral("broke off: ") + a_sError};
}

std::optional<Verdict> loadCompact(Simulation::ScenarioDataBinary& a_scenario, const QString& a_sFile)
{
    QFile file(a_sFile);
    if (!QFileInfo(file).isFile() || !file.open(QIODevice::ReadOnly) ||
        !mayBeCompact(file.peek(s_iHeadBytes))) {
        return std::nullopt;
    }
    const bool bWhole = a_scenario.fromBinary(&file);
    const auto uiLeft = static_cast<quint64>(std::max<qint64>(file.size() - file.pos(), 0));
    if (bWhole && uiLeft == 0) {
        return Verdict();
    }
    // A file without a complete record is a compact scenario only if the file ends
    // within the first record.
    if (a_scenario.scenarioEmitter().isEmpty() && (bWhole || !file.atEnd())) {
        return std::nullopt;
    }
    return Verdict{ExitCode::Findings,
                   bWhole ? counted(uiLeft, "byte") + QStringLiteral(" more than the count declares")
                          : QStringLiteral("broken off: ") + a_scenario.errorString()};
}

QList<std::shared_ptr<Simulation::SzenarioEmitter>>
emittersOf(const Simulation::ScenarioDataBinary& a_scenario)
{
    return ordered<Simulation::SzenarioEmitter>(a_scenario.scenarioEmitter());
}

QList<std::shared_ptr<Simulation::SzenarioEmitter>> emittersOf(const Simulation::ScenarioDataXml& a_scenario)
{
    return ordered<Simulation::SzenarioEmitter>(a_scenario.scenarioObjects());
}

QList<std::shared_ptr<Simulation::ScenarioNetwork>> networksOf(const Simulation::ScenarioDataXml& a_scenario)
{
    return ordered<Simulation::ScenarioNetwork>(a_scenario.scenarioObjects());
}

} // namespace SimulationTool
