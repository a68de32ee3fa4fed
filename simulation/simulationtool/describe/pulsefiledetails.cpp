#include "pulsefiledetails.h"

#include "console/inputfile.h"
#include "console/report.h"
#include "console/valuetexts.h"

#include "simulationdata/pdwfile.h"

#include <QFileInfo>
#include <QStringList>
#include <QtEndian>

#include <algorithm>
#include <array>
#include <utility>

/// A block header or a pulse word as bytes; pulse words are only counted.
struct CPackedPDW
{
    std::array<char, PDWFile::s_uiRecordBytes> bytes{};
};
static_assert(sizeof(CPackedPDW) == PDWFile::s_uiRecordBytes, "the reader fills the whole word");

namespace SimulationTool {

namespace {

constexpr std::uint32_t s_uiWordBytes = 4;
constexpr std::uint64_t s_uiShownErrors = 10;
static_assert(PDWFile::s_uiHeaderBytes == PDWFile::s_uiRecordBytes, "headers are read as records");

// Indices of the 32-bit words of a block header.
constexpr std::size_t s_uiMagicWord = 0;
constexpr std::size_t s_uiSizeWord = 1;
constexpr std::size_t s_uiNumberWord = 2;
constexpr std::size_t s_uiCountWord = 6;
/// Words with the same value in every header: index, value.
constexpr std::array<std::pair<std::size_t, std::uint32_t>, 4> s_constants{
    {{3, 512}, {4, 2}, {5, 0}, {7, 8}}};

/// The result of reading all blocks.
struct Walk
{
    void error(std::uint64_t a_uiBlock, const QString& a_sWhat)
    {
        if (++errorCount <= s_uiShownErrors) {
            errors.append(QStringLiteral("Block %1: %2").arg(QString::number(a_uiBlock), a_sWhat));
        }
    }

    std::uint64_t blocks = 0;
    std::uint64_t records = 0;      ///< complete records
    std::uint64_t missingBytes = 0; ///< of the last block
    std::uint64_t errorCount = 0;
    QStringList errors;  ///< the first s_uiShownErrors
    bool isLost = false; ///< a header was missing at a block's start
};

std::uint32_t wordOf(const CPackedPDW& a_header, std::size_t a_uiWord)
{
    return qFromLittleEndian<std::uint32_t>(a_header.bytes.data() + a_uiWord * s_uiWordBytes);
}

void checkHeader(const CPackedPDW& a_header, Walk& a_walk)
{
    const std::uint64_t uiCount = wordOf(a_header, s_uiCountWord);
    const std::uint64_t uiSize =
        (PDWFile::s_uiHeaderBytes + PDWFile::s_uiRecordBytes * uiCount) / s_uiWordBytes;
    const auto check = [&](const QString& a_sWhat, std::uint64_t a_uiFound, std::uint64_t a_uiExpected) {
        if (a_uiFound != a_uiExpected) {
            a_walk.error(a_walk.blocks,
                         QStringLiteral("%1 is %2 instead of %3")
                             .arg(a_sWhat, QString::number(a_uiFound), QString::number(a_uiExpected)));
        }
    };
    check(QStringLiteral("length word"), wordOf(a_header, s_uiSizeWord), uiSize);
    check(QStringLiteral("number"), wordOf(a_header, s_uiNumberWord), a_walk.blocks);
    for (const auto& [uiWord, uiValue] : s_constants) {
        check(QStringLiteral("word %1").arg(uiWord), wordOf(a_header, uiWord), uiValue);
    }
    if (uiCount > PDWFile::s_uiRecordsPerBlock) {
        a_walk.error(a_walk.blocks,
                     QStringLiteral("%1 records, more than %2")
                         .arg(QString::number(uiCount), QString::number(PDWFile::s_uiRecordsPerBlock)));
    }
}

/// Reads all blocks of a file of `a_uiBytes` bytes. The file must begin with a
/// header.
Walk walkBlocks(PDWFile& a_file, std::uint64_t a_uiBytes)
{
    Walk walk;
    CPackedPDW word;
    while (a_uiBytes > 0) {
        if (a_file.getPDW(&word) == 0) {
            break; // the file became shorter
        }
        if (a_uiBytes < PDWFile::s_uiHeaderBytes) {
            walk.missingBytes = PDWFile::s_uiHeaderBytes - a_uiBytes;
            break;
        }
        if (wordOf(word, s_uiMagicWord) != PDWFile::s_uiBlockMagic) {
            walk.error(walk.blocks, QStringLiteral("no header, %1 bytes before the end").arg(a_uiBytes));
            walk.isLost = true;
            break;
        }
        a_uiBytes -= PDWFile::s_uiHeaderBytes;
        checkHeader(word, walk);
        ++walk.blocks;
        const std::uint64_t uiRecords = wordOf(word, s_uiCountWord);
        const std::uint64_t uiThere = std::min(uiRecords, a_uiBytes / PDWFile::s_uiRecordBytes);
        for (std::uint64_t i = 0; i < uiThere && a_file.getPDW(&word) != 0; ++i) {
            // The records are only read to reach the next header.
        }
        walk.records += uiThere;
        if (uiThere < uiRecords) {
            walk.missingBytes = uiRecords * PDWFile::s_uiRecordBytes - a_uiBytes;
            break;
        }
        a_uiBytes -= uiThere * PDWFile::s_uiRecordBytes;
    }
    return walk;
}

Verdict describeBlocks(Report& a_report, PDWFile& a_file, std::uint64_t a_uiBytes)
{
    const Walk walk = walkBlocks(a_file, a_uiBytes);
    a_report.field("blocks", QStringLiteral("Blocks"), countValue(walk.blocks));
    a_report.field("records", QStringLiteral("Records"), countValue(walk.records));
    if (walk.errorCount > 0) {
        QStringList errors = walk.errors;
        if (walk.errorCount > s_uiShownErrors) {
            errors.append(QStringLiteral("and %1 more").arg(walk.errorCount - s_uiShownErrors));
        }
        a_report.field("inconsistent", QStringLiteral("Inconsistent"),
                       {errors.join(u'\n'), QJsonArray::fromStringList(errors)});
    }
    Verdict verdict = sizeVerdict(static_cast<std::int64_t>(walk.missingBytes));
    if (walk.isLost) {
        verdict = {ExitCode::Findings, QStringLiteral("broken after %1").arg(counted(walk.blocks, "block"))};
    } else if (walk.errorCount > 0) {
        const QString sSize = verdict.code == ExitCode::Ok ? QString() : QStringLiteral(", ") + verdict.text;
        verdict = {ExitCode::Findings, QStringLiteral("inconsistent") + sSize};
    }
    return verdict;
}

} // namespace

Verdict describePulseFile(Report& a_report, const InputFile& a_file)
{
    a_report.heading(QStringLiteral("Pulse descriptor words"));
    a_report.value("kind", QStringLiteral("pulse descriptor words"));
    a_report.field("file", QStringLiteral("File"), a_file.name());
    const auto uiBytes = static_cast<std::uint64_t>(QFileInfo(a_file.path()).size());
    a_report.field("size_bytes", QStringLiteral("Size"), countValue(uiBytes, "byte"));
    CPackedPDW first;
    {
        PDWFile file(a_file.path(), false, false);
        if (!file.is_open()) {
            return refusedVerdict(QStringLiteral("cannot be opened"));
        }
        static_cast<void>(file.getPDW(&first));
    }
    if (wordOf(first, s_uiMagicWord) == PDWFile::s_uiBlockMagic) {
        PDWFile file(a_file.path(), false, true);
        return describeBlocks(a_report, file, uiBytes);
    }
    a_report.field("blocks", QStringLiteral("Blocks"),
                   {QStringLiteral("none: a file without headers"), QJsonValue(0)});
    a_report.field("records", QStringLiteral("Records"), countValue(uiBytes / PDWFile::s_uiRecordBytes));
    const std::uint64_t uiRest = uiBytes % PDWFile::s_uiRecordBytes;
    return sizeVerdict(uiRest == 0 ? 0 : static_cast<std::int64_t>(PDWFile::s_uiRecordBytes - uiRest));
}

} // namespace SimulationTool
