#include "signalpackagecheck.h"

#include "simulationdata/audiofile.h"
#include "simulationdata/io/datafile_p.h"
#include "simulationdata/io/documentfile_p.h"
#include "simulationdata/resultdatafile.h"
#include "simulationdata/signalpackage.h"
#include "simulationdata/signalpackagecontent.h"
#include "simulationdata/signalpackagefolder.h"
#include "simulationdata/signalshapefile.h"
#include "simulationdata/symboldatafile.h"
#include "simulationdata/wavefilereader.h"
#include "simulationdata/xmlelement.h"

#include <QFile>
#include <QFileInfo>

#include <zlib.h>

#include <algorithm>
#include <array>
#include <limits>
#include <optional>
#include <vector>

namespace Simulation {

namespace {

constexpr std::size_t s_uiPieceBytes = std::size_t{64} * 1024; ///< read at once for a checksum
constexpr std::uint32_t s_uiRounding = 1; ///< ms by which two durations of one signal may differ

QString bytesText(std::uint64_t a_uiBytes)
{
    return QString::number(a_uiBytes) + (a_uiBytes == 1 ? QLatin1String(" byte") : QLatin1String(" bytes"));
}

SignalPackageProblem refused(const QString& a_sReason)
{
    return {{}, QStringLiteral("refused: ") + a_sReason, true};
}

/// The problem of a file whose items have a rate. A file that opens but has the length
/// 0 has a problem, because its rate or count is unusable. `a_pLength` returns the
/// length (ms; frames for a wave file).
template<typename Reader>
SignalPackageProblem timedProblem(const Reader& a_reader, std::uint32_t (Reader::*a_pLength)() const)
{
    if (!a_reader.isOpen()) {
        return refused(a_reader.errorString());
    }
    QString sText = SignalPackageCheck::sizeError(a_reader.missingBytes());
    if (sText.isEmpty() && (a_reader.*a_pLength)() == 0) {
        sText = QStringLiteral("whole, but by its rate and count nothing can be read");
    }
    return {{}, sText, false};
}

template<typename Reader>
SignalPackageProblem problemOfFile(const QString& a_sFile)
{
    Reader reader(a_sFile);
    static_cast<void>(reader.open());
    return SignalPackageCheck::problemOf(reader);
}

/// An audio signal must meet more conditions than a readable wave file.
SignalPackageProblem problemOfAudio(const QString& a_sFile)
{
    AudioFile audio(a_sFile);
    return audio.open() ? problemOfFile<WaveFileReader>(a_sFile) : refused(audio.errorString());
}

/// The length (ms) of a readable file; no value when it cannot be read.
template<typename Reader>
std::optional<std::uint32_t> lengthOf(const QString& a_sFile, std::uint32_t (Reader::*a_pLength)() const)
{
    Reader reader(a_sFile);
    return reader.open() ? std::make_optional((reader.*a_pLength)()) : std::nullopt;
}

std::optional<std::uint32_t> shapeLength(const QString& a_sFile)
{
    return lengthOf(a_sFile, &SignalShapeFile::duration);
}

std::optional<std::uint32_t> audioLength(const QString& a_sFile)
{
    return lengthOf(a_sFile, &AudioFile::length);
}

/// A kind of data file in a package.
struct DataFile
{
    QString (*path)(const QString& a_sFolder);
    SignalPackageProblem (*problem)(const QString& a_sFile);
    const char* szBlock; ///< the element of the descriptor that describes the file; null = none is known
    std::optional<std::uint32_t> (*length)(const QString& a_sFile);
};

constexpr std::array<DataFile, 4> s_dataFiles{{
    {&SignalPackageFolder::signalShapeFilePath, &problemOfFile<SignalShapeFile>, "SignalShape", &shapeLength},
    {&SignalPackageFolder::audioFilePath, &problemOfAudio, "Audio", &audioLength},
    {&SignalPackageFolder::symbolDataFilePath, &problemOfFile<SymbolDataFile>, nullptr, nullptr},
    {&SignalPackageFolder::resultDataFilePath, &problemOfFile<ResultDataFile>, nullptr, nullptr},
}};

/// The descriptor of the package in a folder; null when it cannot be read.
XmlElement descriptorIn(const QString& a_sFolder)
{
    const QString sFile = SignalPackageFolder::signalFilePath(a_sFolder);
    QString sReason;
    const auto descriptor =
        QFileInfo(sFile).isFile() ? loadDocument(sFile, &sReason) : std::optional<QByteArray>();
    return descriptor ? XmlElement::parse(*descriptor) : XmlElement();
}

/// What a descriptor says about a data file. No value when it does not describe the
/// file: a block without a name stands for no file.
std::optional<SignalPackageContent> contentOf(const XmlElement& a_descriptor, const DataFile& a_file)
{
    const XmlElement block =
        a_file.szBlock == nullptr ? XmlElement() : a_descriptor.firstChild(QLatin1String(a_file.szBlock));
    SignalPackageContent content;
    content.setName(block.childText(QStringLiteral("Name")));
    content.setChecksum(block.childText(QStringLiteral("Checksum")).trimmed());
    content.setDuration(block.childUnsigned(QStringLiteral("Duration")));
    return content.name().isEmpty() ? std::nullopt : std::make_optional(content);
}

/// The problem of a data file, with its name.
SignalPackageProblem problemIn(const QString& a_sFolder, const DataFile& a_file,
                               const XmlElement& a_descriptor)
{
    const QString sFile = a_file.path(a_sFolder);
    SignalPackageProblem problem;
    if (QFileInfo::exists(sFile)) {
        problem = a_file.problem(sFile);
    } else if (contentOf(a_descriptor, a_file)) {
        problem = {{}, QStringLiteral("missing, but the descriptor describes it"), false};
    }
    problem.file = QFileInfo(sFile).fileName();
    return problem;
}

/// The CRC-32 of a regular file; no value when it cannot be read to its end.
std::optional<std::uint32_t> checksumOf(const QString& a_sFile)
{
    QFile file(a_sFile);
    QString sReason;
    if (!openDataFile(file, &sReason)) {
        return std::nullopt;
    }
    std::vector<char> piece(s_uiPieceBytes);
    uLong uiChecksum = crc32(0, nullptr, 0);
    while (true) {
        const qint64 iRead = file.read(piece.data(), static_cast<qint64>(piece.size()));
        if (iRead <= 0) {
            return iRead == 0 ? std::make_optional(static_cast<std::uint32_t>(uiChecksum)) : std::nullopt;
        }
        uiChecksum =
            crc32(uiChecksum, reinterpret_cast<const Bytef*>(piece.data()), static_cast<uInt>(iRead));
    }
}

/// What differs between a file and its description; empty when nothing does.
QString differences(const QString& a_sFile, const DataFile& a_file, const SignalPackageContent& a_content)
{
    QStringList texts;
    bool bNumber = false;
    const std::uint32_t uiStated = a_content.checksum().toUInt(&bNumber);
    if (bNumber && uiStated != 0) {
        if (const auto checksum = checksumOf(a_sFile); checksum && *checksum != uiStated) {
            texts.append(QStringLiteral("has the checksum %1, the descriptor says %2")
                             .arg(QString::number(*checksum), QString::number(uiStated)));
        }
    }
    const std::uint32_t uiDuration = a_content.duration();
    if (const auto length = a_file.length(a_sFile);
        length && uiDuration != 0 &&
        std::max(*length, uiDuration) - std::min(*length, uiDuration) > s_uiRounding) {
        texts.append(QStringLiteral("lasts %1 ms, the descriptor says %2 ms")
                         .arg(QString::number(*length), QString::number(uiDuration)));
    }
    return texts.join(QStringLiteral(" and "));
}

} // namespace

QList<SignalPackageProblem> SignalPackageCheck::damage(const QString& a_sFolder)
{
    QList<SignalPackageProblem> problems;
    const SignalPackage package = SignalPackageFolder::signalPackage(a_sFolder);
    const QString sDescriptor = SignalPackageFolder::signalFilePath(a_sFolder);
    const QString sError = descriptorError(package, sDescriptor);
    if (!sError.isEmpty()) {
        problems.append(refused(sError));
        problems.last().file = QFileInfo(sDescriptor).fileName();
    }
    const XmlElement descriptor = sError.isEmpty() ? descriptorIn(a_sFolder) : XmlElement();
    for (const DataFile& file : s_dataFiles) {
        const SignalPackageProblem problem = problemIn(a_sFolder, file, descriptor);
        if (!problem.text.isEmpty()) {
            problems.append(problem);
        }
    }
    const bool bShape = QFileInfo::exists(SignalPackageFolder::signalShapeFilePath(a_sFolder));
    if (const QString sDuration = durationError(package);
        sError.isEmpty() && bShape && !sDuration.isEmpty()) {
        problems.append({{}, sDuration, false});
    }
    return problems;
}

QList<SignalPackageProblem> SignalPackageCheck::contradictions(const QString& a_sFolder)
{
    QList<SignalPackageProblem> problems;
    const XmlElement descriptor = descriptorIn(a_sFolder);
    for (const DataFile& file : s_dataFiles) {
        const auto content = contentOf(descriptor, file);
        if (!content || !problemIn(a_sFolder, file, descriptor).text.isEmpty()) {
            continue;
        }
        const QString sFile = file.path(a_sFolder);
        if (const QString sText = differences(sFile, file, *content); !sText.isEmpty()) {
            problems.append({QFileInfo(sFile).fileName(), sText, false});
        }
    }
    return problems;
}

QString SignalPackageCheck::descriptorError(const SignalPackage& a_package, const QString& a_sFile)
{
    if (!a_package.id().isEmpty()) {
        return {};
    }
    QString sReason;
    const auto descriptor =
        QFileInfo(a_sFile).isFile() ? loadDocument(a_sFile, &sReason) : std::optional<QByteArray>();
    if (!descriptor) {
        return sReason.isEmpty() ? QStringLiteral("cannot be read") : sReason;
    }
    return XmlElement::parse(*descriptor, &sReason).isNull() ? sReason : QStringLiteral("names no id");
}

QString SignalPackageCheck::durationError(const SignalPackage& a_package)
{
    return a_package.duration() == 0 ? QStringLiteral("no duration") : QString();
}

QString SignalPackageCheck::sizeError(std::int64_t a_iMissingBytes)
{
    if (a_iMissingBytes == 0) {
        return {};
    }
    if (a_iMissingBytes == std::numeric_limits<std::int64_t>::max()) {
        return QStringLiteral("truncated: the header declares more than a file can contain");
    }
    const auto uiBytes = static_cast<std::uint64_t>(a_iMissingBytes);
    return a_iMissingBytes > 0 ? QStringLiteral("truncated by ") + bytesText(uiBytes)
                               : bytesText(0 - uiBytes) + QStringLiteral(" more than the header declares");
}

SignalPackageProblem SignalPackageCheck::problemOf(const SignalShapeFile& a_reader)
{
    return timedProblem(a_reader, &SignalShapeFile::duration);
}

SignalPackageProblem SignalPackageCheck::problemOf(const SymbolDataFile& a_reader)
{
    return timedProblem(a_reader, &SymbolDataFile::length);
}

SignalPackageProblem SignalPackageCheck::problemOf(const ResultDataFile& a_reader)
{
    return timedProblem(a_reader, &ResultDataFile::length);
}

SignalPackageProblem SignalPackageCheck::problemOf(const WaveFileReader& a_reader)
{
    return timedProblem(a_reader, &WaveFileReader::length);
}

} // namespace Simulation
