#pragma once

#include "simulator/sun/vector3.h"

namespace Simulator {

/// Gradient noise, about -1 to 1, 0 on average, with features of about one unit.
float noise(const Vector3 &point);

/// Sum of @p octaves of noise, each of twice the frequency and half the amplitude; about -1 to 1.
float fractalNoise(Vector3 point, int octaves);

/// 0 to 1, with sharp crests: noise folded at 0, in octaves as above.
float ridgedNoise(Vector3 point, int octaves);

} // namespace Simulator
