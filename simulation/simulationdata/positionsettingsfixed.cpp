#include "positionsettingsfixed.h"

#include <cstdint>
#include <memory>

namespace Simulation {

PositionSettingsFixed::PositionSettingsFixed(const TPos& a_position)
    : m_position(a_position)
{}

PositionSettingsType PositionSettingsFixed::getType()
{
    return PositionSettingsType::Fixed;
}

TPos PositionSettingsFixed::getPosition()
{
    return m_position;
}

void PositionSettingsFixed::setPosition(const TPos& a_position)
{
    m_position = a_position;
}

TPos PositionSettingsFixed::getPositionAt(unsigned int /*a_uiTime*/)
{
    return m_position;
}

double PositionSettingsFixed::headingAt(unsigned int /*a_uiTime*/) const
{
    return 0.0;
}

double PositionSettingsFixed::speedAt(unsigned int /*a_uiTime*/) const
{
    return 0.0;
}

bool PositionSettingsFixed::isTimeDependend() const
{
    return false;
}

bool PositionSettingsFixed::isActiveAt(unsigned int /*a_uiTime*/) const
{
    return true;
}

unsigned int PositionSettingsFixed::activeUntil() const
{
    return UINT32_MAX;
}

bool PositionSettingsFixed::equal(const IPositionSettings* a_pOther)
{
    const auto* pOther = dynamic_cast<const PositionSettingsFixed*>(a_pOther);
    return pOther != nullptr && m_position.latitude == pOther->m_position.latitude &&
           m_position.longitude == pOther->m_position.longitude;
}

IPositionSettings* PositionSettingsFixed::clone()
{
    return std::make_unique<PositionSettingsFixed>(*this).release();
}

} // namespace Simulation
