#include "tpos.h"

#include "geodesy/geodesy.h"
#include "simulationdata/position.h"

#include <type_traits>

namespace Simulation {

static_assert(sizeof(TPos) == sizeof(Units::Position_t) && std::is_standard_layout_v<TPos> &&
                  std::is_standard_layout_v<Units::Position_t>,
              "both types of a position have one layout");

namespace {

Geodesy::Point toPoint(const TPos& a_position)
{
    return {a_position.longitude, a_position.latitude};
}

} // namespace

double azimuth(const TPos& a_from, const TPos& a_to)
{
    return Geodesy::azimuth(toPoint(a_from), toPoint(a_to));
}

double distance(const TPos& a_from, const TPos& a_to)
{
    return Geodesy::distance(toPoint(a_from), toPoint(a_to));
}

TPos position(const TPos& a_start, double a_dAzimuth, double a_dDistance)
{
    const Geodesy::Point end = Geodesy::destination(toPoint(a_start), a_dAzimuth, a_dDistance);
    return {end.longitude, end.latitude};
}

} // namespace Simulation
