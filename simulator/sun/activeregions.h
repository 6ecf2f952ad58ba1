#pragma once

#include "simulator/sun/vector3.h"

#include <QtGlobal>

#include <vector>

namespace Simulator {

/// A group of magnetic fields on the Sun at one time.
struct ActiveRegion
{
    quint64 seed = 0;
    Vector3 centre;        ///< on the unit sphere, in the picture's frame
    Vector3 along;         ///< from the following to the leading polarity, a unit vector
    Vector3 across;        ///< towards the pole
    float size = 0.0F;     ///< half the distance of its polarities, in solar radii
    float strength = 0.0F; ///< 0 to 1, rising and fading over its life
    float flare = 0.0F;    ///< 0 unless it flares, 1 at the height of a large one
    bool isNorthern = true;
};

/// All regions alive, on both sides of the Sun; the same for the same time.
std::vector<ActiveRegion> activeRegionsAt(qint64 unixTime);

/// A dark cloud of cool gas held above the surface: points along it in the picture's frame.
struct Filament
{
    std::vector<Vector3> path;
    float height = 0.0F; ///< solar radii
};

std::vector<Filament> filamentsAt(qint64 unixTime);

} // namespace Simulator
