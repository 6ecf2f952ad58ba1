#include "acquisition/acquisitionlog.h"

#include "acquisition/cadenceanalysis.h"
#include "acquisition/framerules.h"
#include "acquisition/probequeue.h"
#include "acquisition/sessiontally.h"
#include "acquisition/sourcetiming.h"
#include "base/utctext.h"
#include "session/acquisitionsettings.h"
#include "session/framerequest.h"

#include <QDir>
#include <QStringList>

// Names and the service's words go into a text together, in one call of arg(): a "%1" inside them
// then stays as it is.

namespace {

QString number(qint64 value)
{
    return QString::number(value);
}

} // namespace

QString AcquisitionLog::alreadyRunning()
{
    return QStringLiteral("An acquisition is already running.");
}

QString AcquisitionLog::noDatasource()
{
    return QStringLiteral("Select at least one Helioviewer datasource.");
}

QString AcquisitionLog::invalidInterval()
{
    return QStringLiteral("Invalid UTC time interval.");
}

QString AcquisitionLog::invalidCadence()
{
    return QStringLiteral("Cadence must be greater than zero.");
}

QString AcquisitionLog::curlMissing()
{
    return QStringLiteral("./bin/curl.exe was not found.");
}

QString AcquisitionLog::ffmpegMissing()
{
    return QStringLiteral("./bin/ffmpeg.exe was not found.");
}

QString AcquisitionLog::cannotCreateOutputRoot()
{
    return QStringLiteral("Cannot create output root directory.");
}

QString AcquisitionLog::cannotCreateSessionDirectory()
{
    return QStringLiteral("Cannot create session directory.");
}

QString AcquisitionLog::cannotCreateManifest()
{
    return QStringLiteral("Cannot create manifest.csv.");
}

QString AcquisitionLog::probingState()
{
    return QStringLiteral("Quick cadence probe");
}

QString AcquisitionLog::preparingState()
{
    return QStringLiteral("Preparing frame requests");
}

QString AcquisitionLog::analyzingState(const ProbeWindow &window, int number, int count)
{
    return QStringLiteral("Analyzing %1  %2 -> %3  [%4/%5]")
        .arg(window.source.nickname, UtcText::toText(window.startUtc),
             UtcText::toText(window.endUtc), QString::number(number), QString::number(count));
}

QString AcquisitionLog::downloadingState()
{
    return QStringLiteral("Downloading frames");
}

QString AcquisitionLog::lookupState(const FrameRequest &request)
{
    return QStringLiteral("%1  %2").arg(request.nickname, UtcText::toText(request.requestedUtc));
}

QString AcquisitionLog::encodingState()
{
    return QStringLiteral("Encoding videos");
}

QString AcquisitionLog::endState(bool canceled)
{
    return canceled ? QStringLiteral("Canceled") : QStringLiteral("Completed");
}

QString AcquisitionLog::session(const QString &sessionDirectory)
{
    return QStringLiteral("Session: %1").arg(QDir::toNativeSeparators(sessionDirectory));
}

QString AcquisitionLog::selectedSources(const QVector<DataSource> &sources)
{
    QStringList entries;
    entries.reserve(sources.size());
    for (const DataSource &source : sources)
        entries.append(QStringLiteral("%1 [sourceId=%2]")
                           .arg(source.nickname, QString::number(source.sourceId)));
    return QStringLiteral("Selected datasources (%1): %2")
        .arg(number(sources.size()), entries.join(QStringLiteral(", ")));
}

QString AcquisitionLog::fastPath(int sourceCount, int cadenceSeconds)
{
    return QStringLiteral("Fast path: %1 dense AIA datasource(s) will use the requested %2 s "
                          "cadence directly; full JPX archive scan skipped.")
        .arg(number(sourceCount), number(cadenceSeconds));
}

QString AcquisitionLog::noProbeRequired()
{
    return QStringLiteral("No JPX cadence probe required; starting frame acquisition immediately.");
}

QString AcquisitionLog::quickProbe(int sourceCount, int probeSeconds, int parallelRequests)
{
    return QStringLiteral("Quick cadence probe: %1 datasource(s), one window up to %2 per source, "
                          "up to %3 request(s) in parallel.")
        .arg(number(sourceCount), number(probeSeconds), number(parallelRequests));
}

QString AcquisitionLog::timingProfilesDisabled(int toleranceSeconds)
{
    return QStringLiteral("Source timing profiles disabled: tolerance=%1 s for all sources.")
        .arg(number(toleranceSeconds));
}

QString AcquisitionLog::timingProfilesEnabled()
{
    return QStringLiteral("Source timing profiles enabled: AIA and SUVI use ./sys/orvik.ini "
                          "tolerances; other sources use the UI default.");
}

QString AcquisitionLog::sourceTiming(const DataSource &source, SourceTimingProfile profile,
                                     int toleranceSeconds)
{
    return QStringLiteral("Timing %1: profile=%2, tolerance=%3 s")
        .arg(source.nickname, SourceTiming::toText(profile), number(toleranceSeconds));
}

QString AcquisitionLog::probeNote(const DataSource &source, const QString &note)
{
    constexpr int shownCharacters = 1000; // the service may send anything
    return QStringLiteral("Preflight %1: %2").arg(source.nickname, note.left(shownCharacters));
}

QString AcquisitionLog::probeFailed(const DataSource &source, const QString &message)
{
    return QStringLiteral("WARNING preflight %1: %2").arg(source.nickname, message);
}

QString AcquisitionLog::probeMismatch(const DataSource &source)
{
    return probeFailed(source, QStringLiteral("response did not match the requested chunk."));
}

QString AcquisitionLog::plannedDirectly(const DataSource &source, int cadenceSeconds)
{
    return QStringLiteral("Fast path %1: direct %2 s sampling; no full JPX preflight.")
        .arg(source.nickname, number(cadenceSeconds));
}

QString AcquisitionLog::plannedWithoutProbe(const DataSource &source, int cadenceSeconds)
{
    return QStringLiteral("Cadence probe unavailable for %1: using regular %2 s sampling.")
        .arg(source.nickname, number(cadenceSeconds));
}

QString AcquisitionLog::plannedByProbe(const DataSource &source,
                                       const CadenceStatistics &statistics, int stepSeconds)
{
    if (statistics.uniqueFrames == 0)
        return QStringLiteral("Quick probe %1: no frames returned; scheduling every %2 s with "
                              "normal validation.")
            .arg(source.nickname, number(stepSeconds));
    if (statistics.medianSeconds < 1)
        return QStringLiteral("Quick probe %1: %2 frame(s); acquisition step=%3 s.")
            .arg(source.nickname, number(statistics.uniqueFrames), number(stepSeconds));
    return QStringLiteral("Quick probe %1: %2 frame(s), observed median %3 s (min %4, max %5); "
                          "acquisition step=%6 s.")
        .arg(source.nickname, number(statistics.uniqueFrames), number(statistics.medianSeconds),
             number(statistics.minSeconds), number(statistics.maxSeconds), number(stepSeconds));
}

QString AcquisitionLog::planReady(qint64 requestCount, qint64 nominalCount)
{
    return QStringLiteral("Acquisition plan ready: %1 image lookup(s) (%2 nominal at uniform "
                          "requested cadence).")
        .arg(number(requestCount), number(nominalCount));
}

QString AcquisitionLog::rejected(const FrameRequest &request, const QDateTime &actualUtc,
                                 qint64 deltaSeconds, int toleranceSeconds)
{
    return QStringLiteral("REJECT %1: requested %2, actual %3, delta %4 s, tolerance %5 s")
        .arg(request.nickname, UtcText::toText(request.requestedUtc), UtcText::toText(actualUtc),
             UtcText::signedDelta(deltaSeconds), number(toleranceSeconds));
}

QString AcquisitionLog::duplicate(const FrameRequest &request, qint64 imageId,
                                  const QDateTime &actualUtc, qint64 deltaSeconds)
{
    return QStringLiteral("DUPLICATE %1: imageId %2 already accepted; requested %3, actual %4, "
                          "delta %5 s")
        .arg(request.nickname, number(imageId), UtcText::toText(request.requestedUtc),
             UtcText::toText(actualUtc), UtcText::signedDelta(deltaSeconds));
}

QString AcquisitionLog::requestFailed(const FrameRequest &request, const QString &operation,
                                      const QString &message)
{
    return QStringLiteral("ERROR %1 [%2]: %3").arg(request.nickname, operation, message);
}

QString AcquisitionLog::decodeRetry(const FrameRequest &request, int retry, qint64 imageId)
{
    static_assert(FrameRules::maxDecodeRetries == 2, "the text names the limit");
    return QStringLiteral(
               "WARNING %1: downloaded PNG cannot be decoded; retry %2/2 for imageId %3.")
        .arg(request.nickname, number(retry), number(imageId));
}

QString AcquisitionLog::corruptImage(const FrameRequest &request, qint64 imageId)
{
    return QStringLiteral("ERROR %1: downloaded PNG is corrupt or incomplete after 2 retries "
                          "(imageId %2). Frame rejected.")
        .arg(request.nickname, number(imageId));
}

QString AcquisitionLog::blankBlock(const FrameRequest &request, const QString &warning)
{
    return QStringLiteral("WARNING %1: %2. PNG decoding is valid, but the rendered image may be "
                          "incomplete; original frame kept for inspection.")
        .arg(request.nickname, warning);
}

QString AcquisitionLog::annotationFailed(const FrameRequest &request, const QString &reason)
{
    return QStringLiteral("WARNING %1: frame annotation failed (%2). Original frame copied to "
                          "video sequence without overlay.")
        .arg(request.nickname, reason);
}

QString AcquisitionLog::videoFrameFailed(const FrameRequest &request, const QString &reason)
{
    return QStringLiteral("ERROR %1: cannot create video frame: %2").arg(request.nickname, reason);
}

QString AcquisitionLog::accepted(const FrameRequest &request, const QDateTime &actualUtc,
                                 qint64 deltaSeconds, const QString &file)
{
    return QStringLiteral("OK %1  %2  delta %3 s  -> %4")
        .arg(request.nickname, UtcText::toText(actualUtc), UtcText::signedDelta(deltaSeconds),
             QDir::toNativeSeparators(file));
}

QString AcquisitionLog::manifestWaiting(const QString &reason)
{
    return QStringLiteral("ERROR manifest.csv cannot be written: %1. Free some disk space; its "
                          "rows are kept and written as soon as there is room.")
        .arg(reason);
}

QString AcquisitionLog::manifestRecovered()
{
    return QStringLiteral("manifest.csv is complete again; its waiting rows are written.");
}

QString AcquisitionLog::manifestIncomplete()
{
    return QStringLiteral("ERROR manifest.csv: the last rows could not be written and are lost. "
                          "The frames themselves are kept.");
}

QString AcquisitionLog::summary(const DataSource &source, const SourceTally &tally)
{
    return QStringLiteral("Summary %1: accepted=%2, duplicates=%3, rejected-time=%4")
        .arg(source.nickname, number(tally.acceptedFrames), number(tally.duplicateRequests),
             number(tally.rejectedTimeRequests));
}

QString AcquisitionLog::noAcceptedFrames(const DataSource &source)
{
    return QStringLiteral("No accepted frames for %1; video skipped.").arg(source.nickname);
}

QString AcquisitionLog::videoSkipped(const DataSource &source, int acceptedFrames, int videoFrames)
{
    return QStringLiteral("VIDEO SKIPPED %1: %2 accepted frame(s) but only %3 timestamped video "
                          "frame(s). Originals are preserved.")
        .arg(source.nickname, number(acceptedFrames), number(videoFrames));
}

QString AcquisitionLog::encoding(const DataSource &source, const QString &film)
{
    return QStringLiteral("ffmpeg: %1 -> %2").arg(source.nickname, QDir::toNativeSeparators(film));
}

QString AcquisitionLog::encoderNotStarted(const DataSource &source, const QString &reason)
{
    return QStringLiteral("FFMPEG ERROR for %1: %2. Frames are preserved.")
        .arg(source.nickname, reason);
}

QString AcquisitionLog::filmNotWhole(const DataSource &source, const QString &reason)
{
    return QStringLiteral("WARNING %1: %2").arg(source.nickname, reason);
}

QString AcquisitionLog::encodingFailed(const DataSource &source, int exitCode)
{
    return QStringLiteral("FFMPEG ERROR for %1 (exit code %2). Frames are preserved.")
        .arg(source.nickname, number(exitCode));
}

QString AcquisitionLog::videoCompleted(const DataSource &source)
{
    return QStringLiteral("Video completed: %1").arg(source.nickname);
}

QString AcquisitionLog::framesRemoved()
{
    return QStringLiteral(
        "Original and timestamped PNG frames removed after successful video encoding.");
}

QString AcquisitionLog::descriptorLost()
{
    return QStringLiteral("ERROR session.json could not be written: the ROI video tool cannot open "
                          "this session. Its other files are kept; free some disk space before "
                          "the next one.");
}

QString AcquisitionLog::stopRequested()
{
    return QStringLiteral("Stop requested by user.");
}

QString AcquisitionLog::sessionEnd(bool canceled)
{
    return canceled ? QStringLiteral("Session canceled.") : QStringLiteral("Session completed.");
}
