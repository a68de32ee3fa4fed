#include "newpackagearguments.h"

#include "console/commandparser.h"
#include "console/frequencytext.h"
#include "console/inputfile.h"
#include "console/timetext.h"

#include <QDir>
#include <QFileInfo>

#include <array>
#include <cmath>

namespace SimulationTool {

namespace {

const char s_szPackage[] =
    "Makes the folder OUT a signal package with a new id: its descriptor, and with\n"
    "--wave or --iq the data files of a recording. The folder appears only when it is\n"
    "whole. Put it below SignalPackages in a repository, and name its id in a scenario.\n"
    "\n"
    "  --wave  A WAVE file of 8 or 16 bits PCM or 32 bits floating point, with 1000 to\n"
    "          384000 frames per second. Its channels are averaged. The package gets the\n"
    "          audio (32000 frames per second, 16 bits) and the spectra, which show every\n"
    "          frequency on both sides of the carrier.\n"
    "  --iq    Raw interleaved I/Q samples without a header, little-endian, at --rate.\n"
    "          The package gets the spectra.\n"
    "\n"
    "Spectra: one every --step, of points --resolution apart over --bandwidth. Each is the\n"
    "mean of overlapping segments with the Hann window (Welch's method). A segment lasts\n"
    "1 / resolution, so tones two points apart are separate. A point is the strongest\n"
    "value of its part of the bandwidth. Values are linear powers, and the base power is\n"
    "1: a sine of full scale has the level 1 (0 dB of full scale) at its frequency, up to\n"
    "0.1 dB. Full scale is 32768 in s16, 1 in f32, and 127.5 about 127.5 in u8.";

const char s_szPackageExamples[] =
    "\n"
    "Frequencies are in Hz or have a unit: 9600, 12.5k, 2.4MHz.\n"
    "\n"
    "Examples:\n"
    "  simulationtool new package packages/SignalPackages/Voice --wave voice.wav --modulation AM\n"
    "  simulationtool new package Remote --iq remote.u8 --format u8 --rate 2.048M \\\n"
    "      --center 120k --bandwidth 50k --step 20ms\n"
    "\n"
    "Exit codes:\n"
    "  0  Made.\n"
    "  2  Wrong usage, the recording was refused, or OUT exists or could not be made.\n";

const QString s_sName = QStringLiteral("name");
const QString s_sAuthor = QStringLiteral("author");
const QString s_sModulation = QStringLiteral("modulation");
const QString s_sBandwidth = QStringLiteral("bandwidth");
const QString s_sWave = QStringLiteral("wave");
const QString s_sIq = QStringLiteral("iq");
const QString s_sRate = QStringLiteral("rate");
const QString s_sFormat = QStringLiteral("format");
const QString s_sCenter = QStringLiteral("center");
const QString s_sResolution = QStringLiteral("resolution");
const QString s_sForce = QStringLiteral("force");

constexpr double s_dMaxFrequency = 4e9; ///< Hz; spectra store their bandwidth in 32 bits
constexpr double s_dMinRate = 1e3;
constexpr double s_dMinResolution = 1e-3;
constexpr std::uint32_t s_uiMsPerSecond = 1'000;

struct FormatName
{
    const char* name;
    IqFormat format;
};

constexpr std::array<FormatName, 3> s_formats{
    {{"s16", IqFormat::Signed16}, {"f32", IqFormat::Float32}, {"u8", IqFormat::Unsigned8}}};

constexpr std::array<Simulation::AnalogModulations, 6> s_modulations{
    Simulation::AnalogModulations::CW,  Simulation::AnalogModulations::AM,
    Simulation::AnalogModulations::FM,  Simulation::AnalogModulations::LSB,
    Simulation::AnalogModulations::USB, Simulation::AnalogModulations::Digital};

/// Reads the values of the options into the arguments, until one is wrong.
class OptionReader
{
public:
    OptionReader(const QCommandLineParser& a_parser, NewPackageArguments& a_arguments, QString& a_sReason)
        : m_parser(a_parser)
        , m_arguments(a_arguments)
        , m_sReason(a_sReason)
    {}

    [[nodiscard]] bool read()
    {
        return readOut() && readRecording() && readModulation() && readFormat() && readFrequencies() &&
               readStep();
    }

private:
    [[nodiscard]] bool readOut();
    [[nodiscard]] bool readRecording();
    [[nodiscard]] bool readModulation();
    [[nodiscard]] bool readFormat();
    [[nodiscard]] bool readFrequencies();
    [[nodiscard]] bool readStep();
    [[nodiscard]] bool readFrequency(const QString& a_sOption, double a_dMin, double a_dMax,
                                     double& a_dValue);

    bool fail(const QString& a_sReason)
    {
        m_sReason = a_sReason;
        return false;
    }

    const QCommandLineParser& m_parser;
    NewPackageArguments& m_arguments;
    QString& m_sReason;
};

bool OptionReader::readOut()
{
    const QStringList folders = m_parser.positionalArguments();
    if (folders.size() != 1 || folders.constFirst().isEmpty()) {
        return fail(QStringLiteral("one OUT is needed, %1 given").arg(folders.size()));
    }
    const QString& sOut = folders.constFirst();
    if (isStandardStreamName(sOut)) {
        return fail(QStringLiteral("OUT must be a folder (./- is one that is called so)"));
    }
    if (sOut.endsWith(QStringLiteral(".zip"), Qt::CaseInsensitive)) {
        return fail(QStringLiteral("OUT is a folder, no archive: give a name without .zip, and pack the "
                                   "folder afterwards"));
    }
    m_arguments.out = sOut;
    // Readers name a package after its folder.
    m_arguments.name = m_parser.isSet(s_sName)
                           ? m_parser.value(s_sName)
                           : QFileInfo(QDir::cleanPath(QFileInfo(sOut).absoluteFilePath())).baseName();
    m_arguments.author = m_parser.value(s_sAuthor);
    m_arguments.force = m_parser.isSet(s_sForce);
    return true;
}

bool OptionReader::readRecording()
{
    m_arguments.wave = m_parser.value(s_sWave);
    m_arguments.iq = m_parser.value(s_sIq);
    const bool bWave = m_parser.isSet(s_sWave);
    const bool bIq = m_parser.isSet(s_sIq);
    if (bWave && bIq) {
        return fail(QStringLiteral("--wave and --iq exclude each other: give one recording"));
    }
    if ((bWave && m_arguments.wave.isEmpty()) || (bIq && m_arguments.iq.isEmpty())) {
        return fail(QStringLiteral("the name of the recording is empty"));
    }
    for (const QString& sOption : {s_sRate, s_sFormat, s_sCenter}) {
        if (m_parser.isSet(sOption) && !bIq) {
            return fail(QStringLiteral("--%1 is possible only with --iq").arg(sOption));
        }
    }
    for (const QString& sOption : {s_sResolution, s_sStep}) {
        if (m_parser.isSet(sOption) && !bIq && !bWave) {
            return fail(QStringLiteral("--%1 is possible only with --wave or --iq").arg(sOption));
        }
    }
    return !bIq || m_parser.isSet(s_sRate) ||
           fail(QStringLiteral("--iq needs --rate, the frames per second: the file itself does not have it"));
}

bool OptionReader::readModulation()
{
    if (!m_parser.isSet(s_sModulation)) {
        return true;
    }
    QStringList names;
    for (const Simulation::AnalogModulations eModulation : s_modulations) {
        names.append(Simulation::analogModulationToString(eModulation));
        if (names.constLast() == m_parser.value(s_sModulation)) {
            m_arguments.modulation = eModulation;
            return true;
        }
    }
    return fail(QStringLiteral("there is no modulation \"%1\": give one of %2")
                    .arg(m_parser.value(s_sModulation), names.join(QStringLiteral(", "))));
}

bool OptionReader::readFormat()
{
    if (!m_parser.isSet(s_sFormat)) {
        return true;
    }
    for (const FormatName& format : s_formats) {
        if (m_parser.value(s_sFormat) == QLatin1String(format.name)) {
            m_arguments.iqFormat = format.format;
            return true;
        }
    }
    return fail(
        QStringLiteral("there is no format \"%1\": give s16, f32 or u8").arg(m_parser.value(s_sFormat)));
}

/// Leaves the value as it is when the option is not given.
bool OptionReader::readFrequency(const QString& a_sOption, double a_dMin, double a_dMax, double& a_dValue)
{
    if (!m_parser.isSet(a_sOption)) {
        return true;
    }
    const auto value =
        frequencyOf(m_parser.value(a_sOption), QStringLiteral("--") + a_sOption, a_dMin, a_dMax, m_sReason);
    a_dValue = value.value_or(a_dValue);
    return value.has_value();
}

bool OptionReader::readFrequencies()
{
    double dBandwidth = 0.0;
    double dRate = 0.0;
    if (!readFrequency(s_sBandwidth, 1.0, s_dMaxFrequency, dBandwidth) ||
        !readFrequency(s_sRate, s_dMinRate, s_dMaxFrequency, dRate) ||
        !readFrequency(s_sCenter, -s_dMaxFrequency, s_dMaxFrequency, m_arguments.spectra.centre) ||
        !readFrequency(s_sResolution, s_dMinResolution, s_dMaxFrequency, m_arguments.spectra.resolution)) {
        return false;
    }
    m_arguments.spectra.bandwidth = static_cast<std::uint32_t>(std::lround(dBandwidth));
    m_arguments.iqRate = static_cast<std::uint32_t>(std::lround(dRate));
    return true;
}

bool OptionReader::readStep()
{
    if (!m_parser.isSet(s_sStep)) {
        return true;
    }
    const auto step = timeOf(m_parser.value(s_sStep), QStringLiteral("--step"), 1, m_sReason);
    if (!step) {
        return false;
    }
    if (s_uiMsPerSecond % *step != 0) {
        return fail(QStringLiteral("--step needs a time of which a second has a whole number (1, 2, 4, 5, 8, "
                                   "10, 20, 25, 40, 50, 100, 125, 200, 250, 500 or 1000 ms), not \"%1\"")
                        .arg(m_parser.value(s_sStep)));
    }
    m_arguments.spectra.step = *step;
    return true;
}

void addOptions(QCommandLineParser& a_parser)
{
    const auto add = [&](const QString& a_sName, const char* a_szText, const char* a_szValue) {
        a_parser.addOption({a_sName, QLatin1String(a_szText), QLatin1String(a_szValue)});
    };
    a_parser.addPositionalArgument(QStringLiteral("OUT"), QStringLiteral("The folder to make."));
    add(s_sWave, "The recording, a WAVE file.", "FILE");
    add(s_sIq, "The recording, raw I/Q samples.", "FILE");
    add(s_sRate, "Frames (I/Q pairs) per second of --iq, 1 kHz to 4 GHz.", "HZ");
    add(s_sFormat, "Samples of --iq: s16 (default), f32 or u8.", "FORMAT");
    add(s_sCenter, "Frequency in --iq that becomes the middle of the spectra; default 0.", "HZ");
    add(s_sBandwidth, "Width of the spectra and of the signal; default: all of the recording.", "HZ");
    add(s_sResolution, "Distance of two points of a spectrum; default: about 512 points.", "HZ");
    add(s_sStep, "Time from spectrum to spectrum, a whole part of a second; default 100ms.", "TIME");
    add(s_sModulation, "CW (default), AM, FM, LSB, USB or Digital.", "NAME");
    add(s_sName, "Name in the descriptor; default: that of the folder, as packages are listed.", "NAME");
    add(s_sAuthor, "Author in the descriptor.", "NAME");
    a_parser.addOption({s_sForce, QStringLiteral("Replace OUT if it is a signal package and nothing else.")});
    addJsonOption(a_parser);
}

} // namespace

std::optional<ExitCode> parseNewPackage(const QStringList& a_list, Output& a_output,
                                        NewPackageArguments& a_arguments)
{
    CommandParser parser(QStringLiteral("new package"),
                         QStringLiteral("OUT [--wave FILE | --iq FILE --rate HZ] [OPTIONS]"), s_szPackage,
                         s_szPackageExamples);
    addOptions(parser.get());
    if (const auto done = parser.parse(a_list, a_output)) {
        return done;
    }
    a_arguments.form = reportForm(parser.get());
    QString sReason;
    return OptionReader(parser.get(), a_arguments, sReason).read()
               ? std::nullopt
               : std::make_optional(parser.refuse(sReason));
}

} // namespace SimulationTool
