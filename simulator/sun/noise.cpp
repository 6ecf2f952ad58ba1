#include "simulator/sun/noise.h"

#include "simulator/hash.h"

#include <array>

namespace Simulator {

namespace {

using Permutation = std::array<unsigned char, 512>;

Permutation makePermutation()
{
    Permutation table{};
    for (size_t i = 0; i < 256; ++i)
        table[i] = static_cast<unsigned char>(i);
    for (size_t i = 255; i > 0; --i)
        std::swap(table[i], table[hashOf(i) % (i + 1)]);
    for (size_t i = 0; i < 256; ++i)
        table[256 + i] = table[i];
    return table;
}

const Permutation permutation = makePermutation();

// clang-format off
/// Directions to the edges of a cube, four of them twice (K. Perlin, SIGGRAPH 2002).
constexpr Vector3 directions[] = {
    {1, 1, 0}, {-1, 1, 0}, {1, -1, 0}, {-1, -1, 0}, {1, 0, 1}, {-1, 0, 1}, {1, 0, -1}, {-1, 0, -1},
    {0, 1, 1}, {0, -1, 1}, {0, 1, -1}, {0, -1, -1}, {1, 1, 0}, {0, -1, 1}, {-1, 1, 0}, {0, -1, -1}};
// clang-format on

float gradient(unsigned hash, float x, float y, float z)
{
    return dot(directions[hash & 15U], {x, y, z});
}

/// std::floor() is a call into the library on a plain x86-64.
int floorOf(float value)
{
    const int truncated = static_cast<int>(value);
    return truncated - (static_cast<float>(truncated) > value ? 1 : 0);
}

float fade(float t)
{
    return t * t * t * (t * (t * 6.0F - 15.0F) + 10.0F);
}

float mix(float a, float b, float t)
{
    return a + (b - a) * t;
}

} // namespace

float noise(const Vector3 &point)
{
    const int floorX = floorOf(point.x);
    const int floorY = floorOf(point.y);
    const int floorZ = floorOf(point.z);
    const float x = point.x - static_cast<float>(floorX);
    const float y = point.y - static_cast<float>(floorY);
    const float z = point.z - static_cast<float>(floorZ);
    const size_t i = static_cast<size_t>(floorX & 255);
    const size_t j = static_cast<size_t>(floorY & 255);
    const size_t k = static_cast<size_t>(floorZ & 255);
    const Permutation &p = permutation;
    const size_t a = p[i] + j;
    const size_t b = p[i + 1] + j;
    const size_t aa = p[a & 255] + k;
    const size_t ab = p[(a + 1) & 255] + k;
    const size_t ba = p[b & 255] + k;
    const size_t bb = p[(b + 1) & 255] + k;
    const float u = fade(x);
    const float v = fade(y);
    const float near =
        mix(mix(gradient(p[aa], x, y, z), gradient(p[ba], x - 1, y, z), u),
            mix(gradient(p[ab], x, y - 1, z), gradient(p[bb], x - 1, y - 1, z), u), v);
    const float far = mix(
        mix(gradient(p[aa + 1], x, y, z - 1), gradient(p[ba + 1], x - 1, y, z - 1), u),
        mix(gradient(p[ab + 1], x, y - 1, z - 1), gradient(p[bb + 1], x - 1, y - 1, z - 1), u), v);
    return mix(near, far, fade(z));
}

float fractalNoise(Vector3 point, int octaves)
{
    float sum = 0.0F;
    float amplitude = 0.6F;
    for (int octave = 0; octave < octaves; ++octave) {
        sum += amplitude * noise(point);
        amplitude *= 0.5F;
        point = point * 2.03F + Vector3{17.3F, -9.1F, 5.7F};
    }
    return sum;
}

float ridgedNoise(Vector3 point, int octaves)
{
    float sum = 0.0F;
    float amplitude = 0.5F;
    float total = 0.0F;
    for (int octave = 0; octave < octaves; ++octave) {
        sum += amplitude * (1.0F - std::fabs(noise(point)));
        total += amplitude;
        amplitude *= 0.5F;
        point = point * 2.07F + Vector3{-11.9F, 7.7F, 23.1F};
    }
    return sum / total;
}

} // namespace Simulator
