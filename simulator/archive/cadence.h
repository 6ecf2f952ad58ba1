#pragma once

#include <QtGlobal>

#include <optional>

namespace Simulator {

struct ArchiveSource;
enum class CadenceLaw;

/**
 * The times at which one datasource has pictures, as a function of the picture's number.
 *
 * Numbers are called slots: a gap leaves slots empty. Times ascend with the slots. All times are
 * whole seconds since 1970, UTC, as the archive rounds them.
 */
class Cadence final
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
    qint64 slotNear(qint64 unixTime) const;
    bool isInBurst(qint64 unixTime) const;
    bool isInGap(qint64 slot, qint64 unixTime) const;

    CadenceLaw m_law;
    qint64 m_start = 0;
    qint64 m_spacing;
    int m_jitterSeconds;
    quint64 m_seed;
    qint64 m_slotCount = 0;
};

} // namespace Simulator
