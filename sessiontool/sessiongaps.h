#pragma once

#include <QDateTime>
#include <QVector>

struct SourceLedger;

/// A period in which a datasource has no frame.
struct SessionGap
{
    QDateTime fromUtc;  ///< of the frame before, or of the first request
    QDateTime toUtc;    ///< of the frame after, or of the last request
    int lastFrame = -1; ///< number of the frame before; -1 when there is none
    int nextFrame = -1; ///< number of the frame after; -1 when there is none

    qint64 seconds() const { return fromUtc.secsTo(toUtc); }
};

namespace SessionGaps {

/**
 * The times without a frame that are longer than twice @p stepSeconds, ascending.
 *
 * Also those from the first request to the first frame and from the last frame to the last request.
 * Frames are taken in the order of their times; one without a time does not count. Where the step
 * is 0, unknown, there are none.
 */
QVector<SessionGap> find(const SourceLedger &source, int stepSeconds);

} // namespace SessionGaps
