#include "simulationsystemconfiguration.h"

#include "simulationdata/datastorefactory.h"
#include "simulationdata/io/numbers_p.h"
#include "simulationdata/io/trace_p.h"
#include "simulationdata/position.h"

#include "geodesy/geodesy.h"
#include "velaappstartup/cfgcenter.h"
#include "velaappstartup/icfg.h"

#include <QDir>
#include <QLocale>
#include <QRegularExpression>

#include <cmath>
#include <limits>

namespace Simulation {

namespace {

constexpr const char* s_szSource = "simulation/simulationdata/simulationsystemconfiguration";
constexpr int s_iView = 4;
constexpr std::uint16_t s_uiServerPort = 57401;
constexpr std::uint16_t s_uiServicePort = 57400;
constexpr std::uint16_t s_uiSupervisorPort = 57409;

/// Positions of the parts of a coordinate in a text such as "N048 30 36.00 E11 15
/// 18.00".
struct CoordinatePlaces
{
    qsizetype hemisphere;
    qsizetype degrees;
    qsizetype degreeLength;
    qsizetype minutes;
    qsizetype seconds;
};

constexpr CoordinatePlaces s_latitudePlaces{0, 1, 3, 5, 8};
constexpr CoordinatePlaces s_longitudePlaces{14, 15, 2, 18, 21};
constexpr qsizetype s_iMinuteLength = 2;
constexpr qsizetype s_iSecondLength = 5;

std::uint16_t readPort(const ICfg* a_pPorts, QLatin1String a_sName, std::uint16_t a_uiDefault)
{
    if (a_pPorts == nullptr) {
        return a_uiDefault;
    }
    const unsigned uiPort = a_pPorts->readUnsigned(a_sName, a_uiDefault);
    // Port 0 cannot be connected to.
    if (uiPort > 0 && uiPort <= std::numeric_limits<std::uint16_t>::max()) {
        return static_cast<std::uint16_t>(uiPort);
    }
    traceError(s_szSource, [&] {
        return QStringLiteral("Port \"%1\" is %2, outside 1 to 65535; %3 is used")
            .arg(a_sName, QString::number(uiPort), QString::number(a_uiDefault));
    });
    return a_uiDefault;
}

QString readText(const ICfg* a_pCfg, QLatin1String a_sName, const QString& a_sDefault)
{
    return a_pCfg != nullptr ? a_pCfg->readString(a_sName, a_sDefault) : a_sDefault;
}

QRegularExpressionMatch matchWhole(const QString& a_sPattern, const QString& a_sText)
{
    const QRegularExpression expression(QRegularExpression::anchoredPattern(a_sPattern),
                                        QRegularExpression::UseUnicodePropertiesOption |
                                            QRegularExpression::DotMatchesEverythingOption);
    return expression.match(a_sText);
}

double coordinateAt(const QString& a_sText, const CoordinatePlaces& a_places)
{
    const auto piece = [&a_sText](qsizetype a_iAt, qsizetype a_iLength) {
        return QStringView(a_sText).mid(a_iAt, a_iLength);
    };
    const double dDegrees = piece(a_places.degrees, a_places.degreeLength).toInt();
    const double dMinutes = piece(a_places.minutes, s_iMinuteLength).toInt();
    const double dSeconds = finiteOrZero(piece(a_places.seconds, s_iSecondLength).toDouble());
    const double dMagnitude = Geodesy::decimalDegrees(dDegrees, dMinutes, std::trunc(dSeconds));
    const QStringView hemisphere = piece(a_places.hemisphere, 1);
    return hemisphere == u"S" || hemisphere == u"W" ? -dMagnitude : dMagnitude;
}

/// Replaces a decimal comma by a decimal point; a number that has a point is
/// unchanged.
QString withDecimalPoint(QString a_sNumber)
{
    return a_sNumber.contains(u'.') ? a_sNumber : a_sNumber.replace(u',', u'.');
}

} // namespace

void SimulationSystemConfiguration::loadConfiguation()
{
    m_pCfg = CfgCenter::CreateCfg(QStringLiteral("Simulation"), s_iView, QString());
    m_pRepositoryCfg = m_pCfg->openGroup(QStringLiteral("SimulationRepository"));
    m_pPortsCfg = m_pCfg->openGroup(QStringLiteral("Ports"));
}

std::uint16_t SimulationSystemConfiguration::simulationServerPort() const
{
    return readPort(m_pPortsCfg, QLatin1String("SimulationServer"), s_uiServerPort);
}

std::uint16_t SimulationSystemConfiguration::simulationServicePort() const
{
    return readPort(m_pPortsCfg, QLatin1String("SimulationService"), s_uiServicePort);
}

std::uint16_t SimulationSystemConfiguration::simulationSupervisorPort() const
{
    return readPort(m_pPortsCfg, QLatin1String("SimulationEditor"), s_uiSupervisorPort);
}

QString SimulationSystemConfiguration::simulationServerAddress() const
{
    return readText(m_pCfg, QLatin1String("SimulationServer"), QStringLiteral("127.0.0.1"));
}

QString SimulationSystemConfiguration::simulationCacheDirectory() const
{
    return readText(m_pCfg, QLatin1String("SimulationCache"), QDir::tempPath());
}

QString SimulationSystemConfiguration::signalPackageStoreDir() const
{
    return DataStoreFactory::signalPackageStoreDir(m_pRepositoryCfg);
}

QString SimulationSystemConfiguration::fileStoreDir() const
{
    return DataStoreFactory::fileStoreDir(m_pRepositoryCfg);
}

QString SimulationSystemConfiguration::iconStoreDir() const
{
    return DataStoreFactory::iconStoreDir(m_pRepositoryCfg);
}

QString SimulationSystemConfiguration::radarStoreDir() const
{
    return DataStoreFactory::radarStoreDir(m_pRepositoryCfg);
}

QString SimulationSystemConfiguration::defaultSignalPackage() const
{
    return DataStoreFactory::defaultSignalPackage(signalPackageStoreDir());
}

QString SimulationSystemConfiguration::defaultScenario() const
{
    return DataStoreFactory::defaultScenario(fileStoreDir());
}

bool SimulationSystemConfiguration::initializeDataStore() const
{
    return DataStoreFactory::initializeDataStore(m_pRepositoryCfg);
}

bool SimulationSystemConfiguration::coordsFromConfigurationString(const QString& a_sText, double& a_dLatitude,
                                                                  double& a_dLongitude)
{
    const auto decimal = matchWhole(QStringLiteral("Coord\\s(.*)\\s(.*)"), a_sText);
    if (decimal.hasMatch()) {
        a_dLatitude = finiteOrZero(decimal.captured(1).toDouble());
        a_dLongitude = finiteOrZero(decimal.captured(2).toDouble());
        return false;
    }
    const auto letters = matchWhole(QStringLiteral("(\\w)([\\d\\.,]+) (\\w)([\\d\\.,]+)"), a_sText);
    if (letters.hasMatch()) {
        // Text of this form has no degree signs, but fromString() needs them.
        const QString sCompleted = letters.captured(1) + withDecimalPoint(letters.captured(2)) + u'\u00B0' +
                                   u' ' + letters.captured(3) + withDecimalPoint(letters.captured(4)) +
                                   u'\u00B0';
        const Units::Position_t position =
            Units::Position::fromString(sCompleted, Units::Position::Decimal, QLocale::c());
        a_dLatitude = position.latitude;
        a_dLongitude = position.longitude;
        return true;
    }
    a_dLatitude = coordinateAt(a_sText, s_latitudePlaces);
    a_dLongitude = coordinateAt(a_sText, s_longitudePlaces);
    return true;
}

} // namespace Simulation
