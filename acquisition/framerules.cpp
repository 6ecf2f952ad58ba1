#include "acquisition/framerules.h"

#include <QDateTime>

qint64 FrameRules::deltaSeconds(const QDateTime &requestedUtc, const QDateTime &actualUtc)
{
    return actualUtc.toSecsSinceEpoch() - requestedUtc.toSecsSinceEpoch();
}

FrameVerdict FrameRules::judge(qint64 deltaSeconds, int toleranceSeconds, qint64 imageId,
                               const QSet<qint64> &acceptedIds)
{
    if (qAbs(deltaSeconds) > toleranceSeconds)
        return FrameVerdict::RejectedTime;
    if (acceptedIds.contains(imageId))
        return FrameVerdict::Duplicate;
    return FrameVerdict::Accepted;
}
