#include "simulator/archive/cadence.h"

#include "simulator/archive/archive.h"
#include "simulator/archive/servicetime.h"
#include "simulator/hash.h"

#include <algorithm>
#include <cmath>

namespace Simulator {

namespace {

constexpr qint64 secondsPerHour = 3600;
constexpr qint64 gapCycle = 60 * secondsPerHour; // one gap of hours in two and a half days
constexpr qint64 burstCycle = 6 * secondsPerHour;

/// A stretch of time inside the cycle that holds @p unixTime: its start and length in shares of it.
bool isWithin(qint64 unixTime, qint64 cycle, quint64 seed, double shortest, double longest)
{
    const qint64 number = unixTime / cycle;
    const double length =
        shortest + (longest - shortest) * chance(seed, static_cast<quint64>(number) * 2);
    const double start = (1.0 - length) * chance(seed, static_cast<quint64>(number) * 2 + 1);
    const double share = static_cast<double>(unixTime % cycle) / static_cast<double>(cycle);
    return share >= start && share < start + length;
}

} // namespace

Cadence::Cadence(const ArchiveSource &source)
    : m_law(source.law)
    , m_spacing(std::max(source.spacingSeconds, 1))
    , m_jitterSeconds(source.jitterSeconds)
    , m_seed(hashOf(0x5a17, static_cast<quint64>(source.sourceId)))
{
    const std::optional<qint64> start = parseArchiveTime(source.start);
    const std::optional<qint64> end = parseArchiveTime(source.end);
    if (!start || !end || *end < *start)
        return;
    m_start = *start;
    m_slotCount = (*end - *start) / m_spacing + 2;
    while (m_slotCount > 1 && timeOf(m_slotCount - 1) > *end)
        --m_slotCount;
}

qint64 Cadence::timeOf(qint64 slot) const
{
    if (slot == 0)
        return m_start; // the catalog's start is a picture's very time
    const double jitter =
        (2.0 * chance(m_seed, static_cast<quint64>(slot)) - 1.0) * m_jitterSeconds;
    return m_start + slot * m_spacing + std::lround(jitter);
}

bool Cadence::isPresent(qint64 slot) const
{
    if (slot < 0 || slot >= m_slotCount)
        return false;
    if (slot == 0 || slot == m_slotCount - 1)
        return true; // the catalog names them as start and end
    switch (m_law) {
    case CadenceLaw::Steady:
        return true;
    case CadenceLaw::Gaps:
        return !isInGap(slot, timeOf(slot));
    case CadenceLaw::Bursts:
        return isInBurst(timeOf(slot));
    }
    return false;
}

bool Cadence::isInBurst(qint64 unixTime) const
{
    const bool quietCycle = chance(m_seed + 1, static_cast<quint64>(unixTime / burstCycle)) < 0.6;
    return !quietCycle && isWithin(unixTime, burstCycle, m_seed + 2, 0.03, 0.15);
}

bool Cadence::isInGap(qint64 slot, qint64 unixTime) const
{
    return chance(m_seed + 3, static_cast<quint64>(slot)) < 0.01 ||
           isWithin(unixTime, gapCycle, m_seed + 4, 0.01, 0.08);
}

qint64 Cadence::slotNear(qint64 unixTime) const
{
    return std::clamp((unixTime - m_start) / m_spacing, static_cast<qint64>(0), m_slotCount - 1);
}

std::optional<qint64> Cadence::slotAtOrAfter(qint64 unixTime) const
{
    if (m_slotCount == 0)
        return std::nullopt;
    for (qint64 slot = std::max<qint64>(slotNear(unixTime) - 1, 0); slot < m_slotCount; ++slot)
        if (timeOf(slot) >= unixTime && isPresent(slot))
            return slot;
    return std::nullopt;
}

std::optional<qint64> Cadence::slotAtOrBefore(qint64 unixTime) const
{
    if (m_slotCount == 0)
        return std::nullopt;
    for (qint64 slot = std::min(slotNear(unixTime) + 1, m_slotCount - 1); slot >= 0; --slot)
        if (timeOf(slot) <= unixTime && isPresent(slot))
            return slot;
    return std::nullopt;
}

std::optional<qint64> Cadence::nearestSlot(qint64 unixTime) const
{
    const std::optional<qint64> before = slotAtOrBefore(unixTime);
    const std::optional<qint64> after = slotAtOrAfter(unixTime);
    if (!before || !after)
        return before ? before : after;
    return timeOf(*after) - unixTime < unixTime - timeOf(*before) ? after : before;
}

} // namespace Simulator
