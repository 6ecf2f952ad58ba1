#pragma once

#include <QString>
#include <QVector>

class QDateTime;
enum class SourceTimingProfile;
struct AcquisitionSettings;
struct CadenceStatistics;
struct DataSource;
struct FrameRequest;
struct ProbeWindow;
struct SourceTally;

/**
 * Every text of the engine that users read.
 *
 * The log view colours a line by its first words.
 */
namespace AcquisitionLog {

// Why a session is not started.
QString alreadyRunning();
QString noDatasource();
QString invalidInterval();
QString invalidCadence();
QString curlMissing(); ///< names the default place, whatever is configured
QString ffmpegMissing();
QString cannotCreateOutputRoot();
QString cannotCreateSessionDirectory();
QString cannotCreateManifest();

// States.
QString probingState();
QString preparingState();
/// @p number counts from 1.
QString analyzingState(const ProbeWindow &window, int number, int count);
QString downloadingState();
QString lookupState(const FrameRequest &request);
QString encodingState();
QString endState(bool canceled);

// The opening of a session.
QString session(const QString &sessionDirectory);
QString selectedSources(const QVector<DataSource> &sources);
QString fastPath(int sourceCount, int cadenceSeconds);
QString noProbeRequired();
QString quickProbe(int sourceCount, int probeSeconds, int parallelRequests);
QString timingProfilesDisabled(int toleranceSeconds);
QString timingProfilesEnabled();
QString sourceTiming(const DataSource &source, SourceTimingProfile profile, int toleranceSeconds);

// Cadence planning.
QString probeNote(const DataSource &source, const QString &note);
QString probeFailed(const DataSource &source, const QString &message);
QString probeMismatch(const DataSource &source);
QString plannedDirectly(const DataSource &source, int cadenceSeconds);
QString plannedWithoutProbe(const DataSource &source, int cadenceSeconds);
QString plannedByProbe(const DataSource &source, const CadenceStatistics &statistics,
                       int stepSeconds);
QString planReady(qint64 requestCount, qint64 nominalCount);

// Frames.
QString rejected(const FrameRequest &request, const QDateTime &actualUtc, qint64 deltaSeconds,
                 int toleranceSeconds);
QString duplicate(const FrameRequest &request, qint64 imageId, const QDateTime &actualUtc,
                  qint64 deltaSeconds);
QString requestFailed(const FrameRequest &request, const QString &operation,
                      const QString &message);
/// @p retry counts from 1.
QString decodeRetry(const FrameRequest &request, int retry, qint64 imageId);
QString corruptImage(const FrameRequest &request, qint64 imageId);
QString blankBlock(const FrameRequest &request, const QString &warning);
QString annotationFailed(const FrameRequest &request, const QString &reason);
QString videoFrameFailed(const FrameRequest &request, const QString &reason);
QString accepted(const FrameRequest &request, const QDateTime &actualUtc, qint64 deltaSeconds,
                 const QString &file);

// The ledger.
QString manifestWaiting(const QString &reason);
QString manifestRecovered();
QString manifestIncomplete();

// The end.
QString summary(const DataSource &source, const SourceTally &tally);
QString noAcceptedFrames(const DataSource &source);
QString videoSkipped(const DataSource &source, int acceptedFrames, int videoFrames);
QString encoding(const DataSource &source, const QString &film);
QString encoderNotStarted(const DataSource &source, const QString &reason);
/// The encoder ended without an error, but its film is incomplete; @p reason says how.
QString filmNotWhole(const DataSource &source, const QString &reason);
QString encodingFailed(const DataSource &source, int exitCode);
QString videoCompleted(const DataSource &source);
QString framesRemoved();
QString descriptorLost();
QString stopRequested();
QString sessionEnd(bool canceled);

} // namespace AcquisitionLog
