#pragma once

#include "acquisition/cadenceanalysis.h"
#include "acquisition/sessionlayout.h"
#include "output/manifestrow.h"
#include "session/preflightmode.h"

#include <QHash>
#include <QSet>
#include <QString>

struct AcquisitionSettings;
struct SessionRecord;

/// What a session has recorded about one datasource.
struct SourceTally
{
    SourceFolder folder;
    PreflightMode mode = PreflightMode::DirectDenseSource;
    CadenceStatistics cadence;
    int acceptedFrames = 0;
    int timestampedVideoFrames = 0;
    int duplicateRequests = 0;
    int rejectedTimeRequests = 0;
    QSet<qint64> acceptedIds; ///< accepted images; none is accepted twice

    /// Counts a request that brought no frame.
    void count(FrameStatus status);
    /// Counts a frame; its image is not accepted again.
    void countAccepted(qint64 imageId, bool hasVideoFrame);
};

/// By sourceId.
using SessionTally = QHash<int, SourceTally>;

namespace SessionTallying {

/// The record for the session's descriptor, completed now; reads the runtime configuration.
SessionRecord toRecord(const AcquisitionSettings &settings, const SessionTally &tally,
                       bool canceled);

} // namespace SessionTallying
