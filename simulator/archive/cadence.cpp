#include "simulator/archive/cadence.h"

#include "simulator/archive/archive.h"
#include "simulator/archive/servicetime.h"
#include "simulator/hash.h"

#include <algorithm>

namespace Simulator {

namespace {

constexpr qint64 secondsPerHour = 3600;
constexpr qint64 gapCycle = 60 * secondsPerHour; // one gap of hours in two and a half days
constexpr qint64 burstCycle = 6 * secondsPerHour;

/// A stretch of time inside the cycle that holds @p unixTime: its start and length in shares of it.
bool isWithin(qint64 unixTime, qint64 cycle, quint64 seed, double shortest, double longest)
{
    const qint64 number = unixTime / cycle;
    const double length = shortest + (longest - shortest) * chance(seed, quint64(number) * 2);
    const double start = (1.0 - length) * chance(seed, quint64(number) * 2 + 1);
    const double share = double(unixTime % cycle) / double(cycle);
    return share >= start && share < start + length;
}

} // namespace

Cadence::Cadence(const ArchiveSource &source)
    : m_seed(hashOf(0x5a17, quint64(source.sourceId)))
    , m_jitterSeconds(source.law == CadenceLaw::Regular ? 0 : source.jitterSeconds)
    , m_oddShiftSeconds(source.oddShiftSeconds)
    , m_dayStartHour(source.dayStartHour)
    , m_dayEndHour(source.dayEndHour)
    , m_hasBursts(source.law == CadenceLaw::Bursts)
    , m_hasGaps(source.law == CadenceLaw::Gaps)
{
    const std::optional<qint64> start = parseArchiveTime(source.start);
    const std::optional<qint64> end = parseArchiveTime(source.end);
    if (!start || !end || *end < *start)
        return;
    addEpoch(*start, source.spacingSeconds);
    for (const CadenceChange &change : source.changes) {
        const std::optional<qint64> from = parseArchiveTime(change.from);
        if (from && *from > *start && *from < *end)
            addEpoch(*from, change.spacingSeconds);
    }
    countSlots(*end);
}

void Cadence::addEpoch(qint64 from, int spacingSeconds)
{
    Epoch epoch{from, 0, std::max(spacingSeconds, 1)};
    if (!m_epochs.empty()) {
        const Epoch &last = m_epochs.back();
        epoch.firstSlot = last.firstSlot + std::max<qint64>((from - last.from) / last.spacing, 1);
    }
    m_epochs.push_back(epoch);
}

void Cadence::countSlots(qint64 end)
{
    const Epoch &last = m_epochs.back();
    m_slotCount = last.firstSlot + (end - last.from) / last.spacing + 2;
    while (m_slotCount > 1 && timeOf(m_slotCount - 1) > end)
        --m_slotCount;
}

const Cadence::Epoch &Cadence::epochOf(qint64 slot) const
{
    const auto after =
        std::upper_bound(m_epochs.begin(), m_epochs.end(), slot,
                         [](qint64 value, const Epoch &epoch) { return value < epoch.firstSlot; });
    return *std::prev(after);
}

qint64 Cadence::timeOf(qint64 slot) const
{
    const Epoch &epoch = epochOf(slot);
    const qint64 time = epoch.from + (slot - epoch.firstSlot) * epoch.spacing;
    if (slot == epoch.firstSlot)
        return time; // the catalog's start is a picture's very time
    const qint64 shift = (slot - epoch.firstSlot) % 2 == 1 ? m_oddShiftSeconds : 0;
    const double jitter = (2.0 * chance(m_seed, quint64(slot)) - 1.0) * m_jitterSeconds;
    return time + shift + qRound(jitter);
}

bool Cadence::isPresent(qint64 slot) const
{
    if (slot < 0 || slot >= m_slotCount)
        return false;
    if (slot == 0 || slot == m_slotCount - 1)
        return true; // the catalog names them as start and end
    const qint64 time = timeOf(slot);
    return isObservingHour(time) && !(m_hasGaps && isInGap(slot, time)) &&
           !(m_hasBursts && !isInBurst(time));
}

bool Cadence::isInBurst(qint64 unixTime) const
{
    const bool quietCycle = chance(m_seed + 1, quint64(unixTime / burstCycle)) < 0.6;
    return !quietCycle && isWithin(unixTime, burstCycle, m_seed + 2, 0.03, 0.15);
}

bool Cadence::isInGap(qint64 slot, qint64 unixTime) const
{
    return chance(m_seed + 3, quint64(slot)) < 0.01 ||
           isWithin(unixTime, gapCycle, m_seed + 4, 0.01, 0.08);
}

bool Cadence::isObservingHour(qint64 unixTime) const
{
    const int hour = int(unixTime / secondsPerHour % 24);
    if (m_dayStartHour <= m_dayEndHour)
        return m_dayStartHour == m_dayEndHour || (hour >= m_dayStartHour && hour < m_dayEndHour);
    return hour >= m_dayStartHour || hour < m_dayEndHour; // the day there spans midnight here
}

qint64 Cadence::slotNear(qint64 unixTime) const
{
    const auto after =
        std::upper_bound(m_epochs.begin() + 1, m_epochs.end(), unixTime,
                         [](qint64 value, const Epoch &epoch) { return value < epoch.from; });
    const Epoch &epoch = *std::prev(after);
    const qint64 behind = after == m_epochs.end() ? m_slotCount : after->firstSlot;
    return std::clamp(epoch.firstSlot + (unixTime - epoch.from) / epoch.spacing, qint64(0),
                      behind - 1);
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
