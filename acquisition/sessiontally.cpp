#include "acquisition/sessiontally.h"

#include "acquisition/sourcetiming.h"
#include "base/runtimeconfig.h"
#include "output/sessiondescriptor.h"
#include "session/acquisitionsettings.h"

#include <algorithm>

namespace {

SessionSourceRecord sourceRecord(const DataSource &source, const SourceTally &tally,
                                 int toleranceSeconds)
{
    SessionSourceRecord record;
    record.source = source;
    record.archiveName = tally.folder.name;
    record.timingProfile = SourceTiming::toText(SourceTiming::profileOf(source));
    record.maxTimeErrorSeconds = toleranceSeconds;
    record.acceptedFrames = tally.acceptedFrames;
    record.timestampedVideoFrames = tally.timestampedVideoFrames;
    record.duplicateRequests = tally.duplicateRequests;
    record.rejectedTimeRequests = tally.rejectedTimeRequests;
    record.preflightMode = tally.mode;
    record.preflightUniqueFrames = std::max(tally.cadence.uniqueFrames, 0);
    record.medianSeconds = tally.cadence.medianSeconds;
    record.minSeconds = tally.cadence.minSeconds;
    record.maxSeconds = tally.cadence.maxSeconds;
    return record;
}

} // namespace

void SourceTally::count(FrameStatus status)
{
    if (status == FrameStatus::RejectedTime)
        ++rejectedTimeRequests;
    else if (status == FrameStatus::Duplicate)
        ++duplicateRequests;
}

void SourceTally::countAccepted(qint64 imageId, bool hasVideoFrame)
{
    ++acceptedFrames;
    timestampedVideoFrames += hasVideoFrame ? 1 : 0;
    acceptedIds.insert(imageId);
}

SessionRecord SessionTallying::toRecord(const AcquisitionSettings &settings,
                                        const SessionTally &tally, bool canceled)
{
    SessionRecord record;
    record.settings = settings;
    record.apiBase = RuntimeConfig::apiBase();
    record.preflightParallelRequests = RuntimeConfig::preflightParallelRequests();
    record.preflightProbeSeconds = RuntimeConfig::preflightProbeSeconds();
    record.canceled = canceled;
    record.completedUtc = QDateTime::currentDateTimeUtc();
    record.sources.reserve(settings.sources.size());
    for (const DataSource &source : settings.sources)
        record.sources.append(sourceRecord(source, tally.value(source.sourceId),
                                           SourceTiming::toleranceSeconds(source, settings)));
    return record;
}
