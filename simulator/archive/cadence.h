#pragma once

#include <QtGlobal>

#include <optional>
#include <vector>

namespace Simulator {

struct ArchiveSource;

/**
 * The times at which one datasource has pictures, as a function of the picture's number.
 *
 * Numbers are called slots: a gap leaves slots empty. Times ascend with the slots. All times are
 * whole seconds since 1970, UTC, as the archive rounds them.
 */
class Cadence
{
public:
    explicit Cadence(const ArchiveSource &source);

    /// 0 for a datasource without start and end.
    qint64 slotCount() const { return m_slotCount; }
    qint64 timeOf(qint64 slot) const;
    bool isPresent(qint64 slot) const;

    /// The picture at or beside a time; none when there is none on that side.
    std::optional<qint64> slotAtOrAfter(qint64 unixTime) const;
    std::optional<qint64> slotAtOrBefore(qint64 unixTime) const;
    /// The closest picture at any distance, the earlier of two equally close ones.
    std::optional<qint64> nearestSlot(qint64 unixTime) const;

private:
    struct Epoch
    {
        qint64 from = 0;
        qint64 firstSlot = 0;
        qint64 spacing = 1;
    };

    void addEpoch(qint64 from, int spacingSeconds);
    void countSlots(qint64 end);
    const Epoch &epochOf(qint64 slot) const;
    qint64 slotNear(qint64 unixTime) const;
    bool isInBurst(qint64 unixTime) const;
    bool isInGap(qint64 slot, qint64 unixTime) const;
    bool isObservingHour(qint64 unixTime) const;

    std::vector<Epoch> m_epochs;
    qint64 m_slotCount = 0;
    quint64 m_seed;
    int m_jitterSeconds;
    int m_oddShiftSeconds;
    int m_dayStartHour;
    int m_dayEndHour;
    bool m_hasBursts;
    bool m_hasGaps;
};

} // namespace Simulator
