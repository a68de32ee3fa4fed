#include "newpackagecommand.h"

#include "console/interruption.h"
#include "console/output.h"
#include "console/valuetexts.h"
#include "newpackagearguments.h"
#include "programs/newpackagefolder.h"
#include "programs/recordedpackage.h"

#include "simulationdata/signalpackage.h"
#include "simulationdata/signalpackagefile.h"
#include "simulationdata/signalpackagefolder.h"

#include "kpbase/velaos.h"

#include <QFileInfo>
#include <QUuid>

namespace SimulationTool {

namespace {

constexpr std::uint64_t s_uiMicrosecondsPerSecond = 1'000'000;

ExitCode refuse(const QString& a_sFile, const QString& a_sReason)
{
    complain(QStringLiteral("%1: %2").arg(a_sFile, a_sReason));
    return ExitCode::Unusable;
}

/// The record of the new package, without the values of a recording.
Simulation::SignalPackage packageOf(const NewPackageArguments& a_arguments)
{
    Simulation::SignalPackage package;
    package.setId(QUuid::createUuid().toString(QUuid::WithoutBraces));
    package.setName(a_arguments.name);
    package.setAuthor(a_arguments.author);
    package.setTimestamp(static_cast<std::uint32_t>(VelaOS::Get().timestamp() / s_uiMicrosecondsPerSecond));
    package.setAnalogModulation(a_arguments.modulation);
    package.setSignalBandwidth(static_cast<float>(a_arguments.spectra.bandwidth));
    return package;
}

/// Opens the recording and chooses the layout of its spectra. Complains and returns no
/// value when it is refused.
std::optional<SpectrumLayout> openRecording(Recording& a_recording, const QString& a_sFile,
                                            const SpectrumSettings& a_settings)
{
    if (!a_recording.open()) {
        static_cast<void>(refuse(a_sFile, a_recording.errorString()));
        return std::nullopt;
    }
    QString sReason;
    const auto layout = spectrumLayout(a_recording, a_settings, sReason);
    if (!layout) {
        static_cast<void>(refuse(a_sFile, sReason));
    }
    return layout;
}

void describe(Report& a_report, const NewPackageArguments& a_arguments,
              const Simulation::SignalPackage& a_package, const std::optional<SpectrumLayout>& a_layout)
{
    a_report.heading(QStringLiteral("Signal package made"));
    a_report.field("folder", QStringLiteral("Folder"), a_arguments.out);
    a_report.field("id", QStringLiteral("ID"), a_package.id());
    a_report.field("name", QStringLiteral("Name"), a_package.name());
    if (!a_layout) {
        return;
    }
    a_report.field("duration_ms", QStringLiteral("Duration"), durationValue(a_layout->duration));
    a_report.field("bandwidth_hz", QStringLiteral("Bandwidth"), frequencyValue(a_layout->bandwidth));
    a_report.field("resolution_hz", QStringLiteral("Resolution"),
                   frequencyValue(static_cast<double>(a_layout->bandwidth) / a_layout->points));
    a_report.field("points", QStringLiteral("Points"), countValue(a_layout->points));
    a_report.field("records", QStringLiteral("Spectra"),
                   {QStringLiteral("%1, one every %2 ms").arg(a_layout->records).arg(a_layout->step),
                    static_cast<qint64>(a_layout->records)});
    a_report.value("step_ms", static_cast<qint64>(a_layout->step));
}

/// The recording that the arguments name, not open yet; null without one.
std::unique_ptr<Recording> recordingOf(const NewPackageArguments& a_arguments)
{
    if (!a_arguments.wave.isEmpty()) {
        return waveRecording(a_arguments.wave);
    }
    return a_arguments.iq.isEmpty() ? nullptr
                                    : iqRecording(a_arguments.iq, a_arguments.iqFormat, a_arguments.iqRate);
}

/// Whether the file is in the folder; both may not exist.
bool isInside(const QString& a_sFile, const QString& a_sFolder)
{
    const QString sFolder = QFileInfo(a_sFolder).canonicalFilePath();
    return !sFolder.isEmpty() && QFileInfo(a_sFile).canonicalPath() == sFolder;
}

/// Writes all files of the package. Complains about a failure, unless interrupted.
ExitCode writeFiles(const Simulation::SignalPackage& a_package, Recording* a_pRecording,
                    const RecordedPackage& a_files)
{
    QString sError;
    if (a_pRecording != nullptr && !writeRecordedFiles(*a_pRecording, a_files, sError)) {
        if (!sError.isEmpty()) {
            complain(sError);
        }
        return ExitCode::Unusable;
    }
    const QString sDescriptor = Simulation::SignalPackageFolder::signalFilePath(a_files.folder);
    if (!Simulation::SignalPackageFile::signalPackageFile(a_package, sDescriptor)) {
        return refuse(a_files.packageName,
                      QStringLiteral("the descriptor Signal.xml cannot be written (--trace shows why)"));
    }
    return isInterrupted() ? ExitCode::Unusable : ExitCode::Ok;
}

ExitCode makePackage(const NewPackageArguments& a_arguments, Report& a_report)
{
    Simulation::SignalPackage package = packageOf(a_arguments);
    const QString& sFile = a_arguments.wave.isEmpty() ? a_arguments.iq : a_arguments.wave;
    const std::unique_ptr<Recording> recording = recordingOf(a_arguments);
    std::optional<SpectrumLayout> layout;
    if (recording) {
        layout = openRecording(*recording, sFile, a_arguments.spectra);
        if (!layout) {
            return ExitCode::Unusable;
        }
        package.setDuration(layout->duration);
        package.setSignalBandwidth(static_cast<float>(layout->bandwidth));
    }
    if (isInside(sFile, a_arguments.out)) {
        return refuse(
            a_arguments.out,
            QStringLiteral("holds the recording %1, which would be removed: give another OUT").arg(sFile));
    }
    catchInterruptions(); // so that an interrupted command removes the unfinished folder
    NewPackageFolder folder(a_arguments.out, a_arguments.force);
    if (!folder.open()) {
        return refuse(a_arguments.out, folder.errorString());
    }
    const ExitCode eWritten = writeFiles(package, recording.get(),
                                         {sFile, a_arguments.out, folder.path(),
                                          layout.value_or(SpectrumLayout()), !a_arguments.wave.isEmpty()});
    if (eWritten != ExitCode::Ok) {
        return eWritten;
    }
    if (!folder.commit()) {
        return refuse(a_arguments.out, folder.errorString());
    }
    describe(a_report, a_arguments, package, layout);
    return ExitCode::Ok;
}

} // namespace

ExitCode newPackage(const QStringList& a_arguments, Output& a_output)
{
    NewPackageArguments arguments;
    if (const auto done = parseNewPackage(a_arguments, a_output, arguments)) {
        return *done;
    }
    Report report(a_output, arguments.form);
    const ExitCode eCode = makePackage(arguments, report);
    if (eCode == ExitCode::Ok) {
        report.finish();
    }
    return eCode;
}

} // namespace SimulationTool
