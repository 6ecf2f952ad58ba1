#pragma once

#include <cmath>

namespace Simulator {

/// In the picture's frame x points right, y up to solar north and z to the observer.
struct Vector3
{
    float x = 0.0F;
    float y = 0.0F;
    float z = 0.0F;
};

constexpr Vector3 operator+(const Vector3 &a, const Vector3 &b)
{
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}

constexpr Vector3 operator-(const Vector3 &a, const Vector3 &b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

constexpr Vector3 operator*(const Vector3 &a, float factor)
{
    return {a.x * factor, a.y * factor, a.z * factor};
}

constexpr float dot(const Vector3 &a, const Vector3 &b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

constexpr Vector3 cross(const Vector3 &a, const Vector3 &b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

/// Angle of (x, y) from the y axis towards x in turns, -0.5 to 0.5.
inline float turnsOf(float x, float y)
{
    return std::atan2(x, y) * 0.15915494F;
}

inline Vector3 normalized(const Vector3 &a)
{
    return a * (1.0F / std::sqrt(dot(a, a)));
}

} // namespace Simulator
