#include "acquisition/framerules.h"

#include <QDateTime>

#include <cstdlib>

qint64 FrameRules::deltaSeconds(const QDateTime &requestedUtc, const QDateTime &actualUtc)
{
    return actualUtc.toSecsSinceEpoch() - requestedUtc.toSecsSinceEpoch();
}

FrameVerdict FrameRules::judge(qint64 deltaSeconds, int toleranceSeconds, qint64 imageId,
                               const QSet<qint64> &acceptedIds)
{
    if (std::abs(deltaSeconds) > toleranceSeconds)
        return FrameVerdict::RejectedTime;
    if (acceptedIds.contains(imageId))
        return FrameVerdict::Duplicate;
    return FrameVerdict::Accepted;
}
