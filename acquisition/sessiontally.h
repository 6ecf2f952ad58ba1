#pragma once

#include "acquisition/cadenceanalysis.h"
#include "acquisition/sessionlayout.h"
#include "output/manifestrow.h"

#include <QHash>
#include <QSet>
#include <QString>

struct AcquisitionSettings;
struct SessionRecord;

/// How the requests of a datasource were planned.
enum class PreflightMode {
    DirectDenseSource, ///< at the requested cadence, without a look at the archive
    QuickProbe,        ///< by the archive's own spacing
    Fallback,          ///< at the requested cadence, since the look failed
};

/// The word that the session descriptor stores.
QString toText(PreflightMode mode);

/// What a session knows of one datasource.
struct SourceTally
{
    SourceFolder folder;
    PreflightMode mode = PreflightMode::QuickProbe;
    CadenceStatistics cadence;
    int acceptedFrames = 0;
    int timestampedVideoFrames = 0;
    int duplicateRequests = 0;
    int rejectedTimeRequests = 0;
    QSet<qint64> acceptedIds; ///< images taken, so that none is taken twice

    /// Counts a request that brought no frame.
    void count(FrameStatus status);
    /// Counts a frame; its image is not taken again.
    void countAccepted(qint64 imageId, bool hasVideoFrame);
};

/// By sourceId.
using SessionTally = QHash<int, SourceTally>;

/// The session as its descriptor tells it, finished now; reads the runtime configuration.
SessionRecord toRecord(const AcquisitionSettings &settings, const SessionTally &tally,
                       bool canceled);
