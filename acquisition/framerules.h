#pragma once

#include <QSet>

class QDateTime;

/// What becomes of the image that the service named.
enum class FrameVerdict { Accepted, RejectedTime, Duplicate };

namespace FrameRules {

/// A PNG that does not decode is fetched again this many times.
constexpr int maxDecodeRetries = 2;

/// Whole seconds from the requested to the actual time; positive when the image is later.
qint64 deltaSeconds(const QDateTime &requestedUtc, const QDateTime &actualUtc);

/**
 * An image may be off by exactly the tolerance, and is accepted only once per datasource.
 *
 * An image that is too far off is RejectedTime, even if it was accepted before.
 */
FrameVerdict judge(qint64 deltaSeconds, int toleranceSeconds, qint64 imageId,
                   const QSet<qint64> &acceptedIds);

} // namespace FrameRules
