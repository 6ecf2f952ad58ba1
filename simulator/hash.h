#pragma once

#include <QtGlobal>

namespace Simulator {

/// Scatters the bits of @p value (the finaliser of SplitMix64, by S. Vigna).
constexpr quint64 hashOf(quint64 value)
{
    value += 0x9e3779b97f4a7c15ULL;
    value = (value ^ (value >> 30)) * 0xbf58476d1ce4e5b9ULL;
    value = (value ^ (value >> 27)) * 0x94d049bb133111ebULL;
    return value ^ (value >> 31);
}

constexpr quint64 hashOf(quint64 seed, quint64 value)
{
    return hashOf(hashOf(seed) ^ value);
}

/// 0 up to, not including, 1; the same for the same arguments in every run.
constexpr double chance(quint64 seed, quint64 value)
{
    return static_cast<double>(hashOf(seed, value) >> 11) * (1.0 / 9007199254740992.0);
}

/// Random numbers from 0 to 1 that belong to one object; the argument selects one of them.
class Draw final
{
public:
    explicit Draw(quint64 seed) : m_seed(seed) {}
    float operator()(quint64 which) const { return static_cast<float>(chance(m_seed, which)); }

private:
    quint64 m_seed;
};

} // namespace Simulator
