#include "scenariochecker_rules_p.h"

#include <algorithm>
#include <array>

namespace Simulation {

namespace {

using Checker = ScenarioChecker;

constexpr std::array s_rules{
    CheckRule{
        Checker::s_sInvalidSignalPackage, Severity::Error,
        QLatin1String("An emission has no signal package, or one that the provider does not know."),
        QLatin1String(
            "There would be no signal to send, so the emission gets the default package if there is one: "
            "name a package of the repository.")},
    CheckRule{Checker::s_sDuplicateId, Severity::Error,
              QLatin1String("Several emitters, devices or stations have the same id."),
              QLatin1String("A reader makes one object of them, in which the last one overwrites the others: "
                            "give each an id of its own.")},
    CheckRule{
        Checker::s_sInvalidClass, Severity::Warning,
        QLatin1String("The class of an emitter is none of the known classes."),
        QLatin1String("Programs that choose emitters by their class do not find it: correct the class.")},
    CheckRule{Checker::s_sMissingSettings, Severity::Error,
              QLatin1String("An object has no frequency, position or transmitter settings."),
              QLatin1String("It could never send, so it gets the settings of a new object: set its own.")},
    CheckRule{Checker::s_sOverlappingEmissions, Severity::Error,
              QLatin1String("An emission begins before an earlier one of the same emitter or network has "
                            "ended."),
              QLatin1String(
                  "Only the emission that began last is sent, and the earlier one is cut off: shorten the "
                  "earlier one or move the later one.")},
    CheckRule{
        Checker::s_sEmissionAfterPeriod, Severity::Error,
        QLatin1String("An emission begins at or after the end of the schedule's period."),
        QLatin1String("The schedule starts again before the emission begins, so it is never sent: move it or "
                      "lengthen the period.")},
    CheckRule{Checker::s_sEmissionBeyondPeriod, Severity::Warning,
              QLatin1String("An emission ends after the end of the schedule's period."),
              QLatin1String(
                  "The schedule starts again before the emission ends, so its rest is not sent: shorten it "
                  "or lengthen the period.")},
    CheckRule{Checker::s_sEmptyGroup, Severity::Warning,
              QLatin1String("A group of a schedule names no emission, directly or through other groups."),
              QLatin1String("Whatever is done with the group has no effect: add emissions or remove it.")},
    CheckRule{Checker::s_sNetworkWithoutMembers, Severity::Warning,
              QLatin1String("A network has no member that also refers to the network."),
              QLatin1String("Nothing in its schedule is sent: add emitters or remove the network.")},
    CheckRule{Checker::s_sNetworkWithoutHead, Severity::Warning,
              QLatin1String("The head of a network refers to another network or to none."),
              QLatin1String("The head does not send with the network: make a member the head.")},
    CheckRule{Checker::s_sForeignEmission, Severity::Error,
              QLatin1String("An emission of a network names no emitter, or one that is not a member."),
              QLatin1String("Only members send by the schedule of a network, so the emission is never sent: "
                            "name a member, or add the emitter to the network.")},
    CheckRule{Checker::s_sCutLink, Severity::Error,
              QLatin1String("A chain of link targets runs in a circle or leaves the scenario."),
              QLatin1String(
                  "The emitter stays at its own position, or follows one that the saved document does not "
                  "describe: link it to an emitter of the scenario that leads to none of its followers.")},
    CheckRule{Checker::s_sPositionOutOfRange, Severity::Error,
              QLatin1String("A latitude is outside of -90 to 90 degrees or a longitude outside of -180 to "
                            "180 degrees."),
              QLatin1String("There is no such place, so distances and headings cannot be calculated: correct "
                            "the position.")},
    CheckRule{
        Checker::s_sMovementWithoutSpeed, Severity::Warning,
        QLatin1String("A leg of a movement has a length but no speed above 0 km/h."),
        QLatin1String("The leg takes no time, so the object jumps to its end: give the point a speed.")},
    CheckRule{
        Checker::s_sJumpingPosition, Severity::Warning,
        QLatin1String("A leg of a movement is faster than 40000 km/h, or crosses the date line from one "
                      "sign of the longitude to the other."),
        QLatin1String(
            "The position jumps, at the date line the long way round the globe: correct the speed, or "
            "let one movement end and another begin at the date line.")},
    CheckRule{
        Checker::s_sJumpAtRestart, Severity::Note,
        QLatin1String("A movement that restarts ends at another place than it began."),
        QLatin1String("The position jumps from the end to the start: end the movement where it began if "
                      "this is not meant.")},
    CheckRule{
        Checker::s_sRangeBeyondBandwidth, Severity::Note,
        QLatin1String("A hopper or a sweep covers a wider range than the bandwidth of a signal package."),
        QLatin1String(
            "The signal is moved through the range as a whole and never fills it: use a wider package if "
            "the range was meant to be filled.")},
    CheckRule{Checker::s_sDamagedPackage, Severity::Error,
              QLatin1String("A file of a signal package is missing, truncated or cannot be read."),
              QLatin1String(
                  "The signal cannot be sent as it was recorded: put a whole package into the repository.")},
    CheckRule{
        Checker::s_sContradictingPackage, Severity::Warning,
        QLatin1String("The checksum or length of a package's file differs from the package's descriptor."),
        QLatin1String("The file was changed or belongs to another package: put the original package into the "
                      "repository, or make its descriptor anew.")},
    CheckRule{Checker::s_sDeviceWithoutStation, Severity::Error,
              QLatin1String("A device has neither a station nor a position of its own."),
              QLatin1String("It would receive at latitude 0 and longitude 0: give it one of them.")},
    CheckRule{
        Checker::s_sUnknownStation, Severity::Error,
        QLatin1String("A device names a station that the deployment does not describe."),
        QLatin1String("The device would receive at latitude 0 and longitude 0: describe the station, or name "
                      "another one.")},
    CheckRule{
        Checker::s_sUnreachedStation, Severity::Warning,
        QLatin1String("A station, or a device at a place of its own, is out of the reach of every emitter."),
        QLatin1String(
            "An emitter reaches as far as the line of sight over the curved globe, 4.12 km times the sum of "
            "the square roots of both antenna heights in metres, below 30 MHz everywhere, and its power is "
            "not considered, so nothing would be received: move the station or raise its antennas.")},
};

} // namespace

std::span<const CheckRule> ScenarioChecker::rules()
{
    return s_rules;
}

std::size_t placeOfRule(QAnyStringView a_sRule)
{
    const auto* const pRule = std::find_if(s_rules.begin(), s_rules.end(), [&](const CheckRule& a_candidate) {
        return a_candidate.id == a_sRule;
    });
    return static_cast<std::size_t>(pRule - s_rules.begin());
}

ScenarioFinding ruleFinding(QLatin1String a_sRule, const QString& a_sText, bool a_bRepaired)
{
    return {{}, {}, a_sRule, s_rules[placeOfRule(a_sRule)].severity, a_sText, a_bRepaired};
}

void EmissionTally::add(std::int64_t a_iStart)
{
    ++count;
    first = std::min(first, a_iStart);
}

QString EmissionTally::subject() const
{
    return QStringLiteral("%1 %2 %3 ms, ")
        .arg(QString::number(count), form("emission, at", "emissions, the first at"), QString::number(first));
}

} // namespace Simulation
