#include "acquisition/acquisitioncontroller.h"

#include "acquisition/acquisitionlog.h"
#include "acquisition/framerules.h"
#include "acquisition/sessionlayout.h"
#include "acquisition/sessionopening.h"
#include "acquisition/sourceplan.h"
#include "acquisition/sourcetiming.h"
#include "base/errortext.h"
#include "base/jsonfile.h"
#include "base/runtimeconfig.h"
#include "client/helioviewerclient.h"
#include "client/operationnames.h"
#include "imaging/blankblock.h"
#include "imaging/frameannotation.h"
#include "imaging/framedecoder.h"
#include "output/framecleanup.h"
#include "output/framesequence.h"
#include "output/sessiondescriptor.h"
#include "output/sessionfiles.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <limits>
#include <utility>

namespace {

int clampedToInt(qint64 value)
{
    return static_cast<int>(std::min<qint64>(value, std::numeric_limits<int>::max()));
}

} // namespace

AcquisitionController::AcquisitionController(QObject *parent)
    : QObject(parent), m_client(new HelioviewerClient(this))
{
    m_nextStep.setSingleShot(true);
    connect(&m_nextStep, &QTimer::timeout, this, &AcquisitionController::takeNextStep);

    connect(m_client, &HelioviewerClient::logMessage, this, &AcquisitionController::logMessage);
    connect(m_client, &HelioviewerClient::closestImageReceived, this,
            &AcquisitionController::onClosestImage);
    connect(m_client, &HelioviewerClient::renderedImageDownloaded, this,
            &AcquisitionController::onImageDownloaded);
    connect(m_client, &HelioviewerClient::requestError, this,
            &AcquisitionController::onClientError);

    connect(&m_probes, &CadenceProbes::logMessage, this, &AcquisitionController::logMessage);
    connect(&m_probes, &CadenceProbes::stateChanged, this, &AcquisitionController::stateChanged);
    connect(&m_probes, &CadenceProbes::progressChanged, this,
            &AcquisitionController::progressChanged);
    connect(&m_probes, &CadenceProbes::answered, this, [this](int sourceId, int uniqueFrames) {
        m_tally[sourceId].cadence.uniqueFrames = uniqueFrames;
    });
    connect(&m_probes, &CadenceProbes::failed, this,
            [this](int sourceId) { m_tally[sourceId].mode = PreflightMode::Fallback; });
    connect(&m_probes, &CadenceProbes::done, this, &AcquisitionController::buildPlan);

    connect(&m_ffmpeg, &FilmEncoder::finished, this, &AcquisitionController::onFfmpegFinished);
    connect(&m_ffmpeg, &FilmEncoder::outputRead, this, &AcquisitionController::onFfmpegReadyRead);
}

AcquisitionController::~AcquisitionController()
{
    completeFrame();
    discardFrame();
    m_manifest.close();
    // The destructors of the clients and the encoder kill their children without a signal.
}

bool AcquisitionController::start(const AcquisitionSettings &settings, QString *errorText)
{
    const QString refusal =
        isRunning() ? AcquisitionLog::alreadyRunning() : SessionOpening::refusal(settings);
    if (!refusal.isEmpty())
        return ErrorText::fail(errorText, refusal);
    resetSession(settings);
    if (!createSessionFiles(errorText))
        return false;
    const QVector<ProbeWindow> windows = SessionOpening::probeWindows(m_settings);
    for (const ProbeWindow &window : windows)
        m_tally[window.source.sourceId].mode = PreflightMode::QuickProbe;
    enterStage(Stage::Preflight);
    if (announceSession(windows.size()))
        m_probes.start(windows, m_settings.cadenceSeconds);
    return true;
}

void AcquisitionController::stop()
{
    if (m_stage == Stage::Idle || m_stage == Stage::Stopping)
        return;
    const int session = m_session;
    completeFrame();
    if (!isSession(session) || m_stage == Stage::Stopping)
        return; // a slot connected to the frame's signals stopped it
    enterStage(Stage::Stopping);
    if (report(AcquisitionLog::stopRequested()))
        cancelChildren(); // delivers the children's last signals, which may end the session
    if (isSession(session))
        finish(true);
}

QImage AcquisitionController::pictureInHand(const QString &imageFile) const
{
    return !m_pictureFile.isEmpty() && imageFile == m_pictureFile ? m_picture : QImage();
}

// Stages

bool AcquisitionController::mayFollow(Stage stage, Stage next)
{
    switch (stage) {
    case Stage::Idle:
        return next == Stage::Preflight;
    case Stage::Preflight:
        return next == Stage::Acquiring || next == Stage::Stopping;
    case Stage::Acquiring:
        return next == Stage::Encoding || next == Stage::Stopping || next == Stage::Idle;
    case Stage::Encoding:
        return next == Stage::Stopping || next == Stage::Idle;
    case Stage::Stopping:
        return next == Stage::Idle;
    }
    return false;
}

void AcquisitionController::enterStage(Stage stage)
{
    Q_ASSERT(mayFollow(m_stage, stage));
    m_nextStep.stop();
    if (m_stage == Stage::Idle || stage == Stage::Idle)
        ++m_session;
    m_stage = stage;
}

void AcquisitionController::takeNextStep()
{
    switch (m_stage) {
    case Stage::Idle:
    case Stage::Preflight: // driven by the probes
    case Stage::Stopping:  // stop() itself ends the session
        break;
    case Stage::Acquiring:
        takeFrameStep();
        break;
    case Stage::Encoding:
        encodeNext();
        break;
    }
}

// Start

void AcquisitionController::resetSession(const AcquisitionSettings &settings)
{
    m_settings = settings;
    m_manifestWaits = false;
    m_tally.clear();
    m_plan = AcquisitionPlan();
    m_frameStep = FrameStep::Lookup;
    m_films = EncodeQueue();
}

bool AcquisitionController::createSessionFiles(QString *errorText)
{
    const std::optional<SessionFolders> folders =
        SessionLayout::create(RuntimeConfig::outputRoot(), m_settings, errorText);
    if (!folders)
        return false;
    m_sessionDirectory = folders->directory;
    for (auto source = folders->sources.cbegin(); source != folders->sources.cend(); ++source)
        m_tally[source.key()].folder = *source;

    return m_manifest.create(m_sessionDirectory) ||
           ErrorText::fail(errorText, AcquisitionLog::cannotCreateManifest());
}

bool AcquisitionController::announceSession(int probes)
{
    const QStringList lines = SessionOpening::logLines(m_settings, m_sessionDirectory, probes);
    for (const QString &line : lines) {
        if (!report(line))
            return false;
    }
    return reportProgress(0, std::max(probes, 1)) &&
           reportState(probes == 0 ? AcquisitionLog::preparingState()
                                   : AcquisitionLog::probingState());
}

// Plan

void AcquisitionController::buildPlan()
{
    if (m_stage != Stage::Preflight)
        return; // stop() is running
    enterStage(Stage::Acquiring);
    QVector<RequestSchedule> schedules;
    const QVector<DataSource> sources = m_settings.sources; // a slot may start another session
    for (const DataSource &source : sources) {
        if (!planSource(source, &schedules))
            return;
    }
    m_plan = AcquisitionPlan(schedules);
    const qint64 nominalCount = AcquisitionPlanning::nominalCount(m_settings);
    if (report(AcquisitionLog::planReady(m_plan.size(), nominalCount)) &&
        reportProgress(0, std::max<qint64>(totalSteps(), 1)) &&
        reportState(AcquisitionLog::downloadingState()))
        issueNextLookup();
}

bool AcquisitionController::planSource(const DataSource &source,
                                       QVector<RequestSchedule> *schedules)
{
    SourceTally &tally = m_tally[source.sourceId];
    const PreflightMode mode = tally.mode;
    const SourcePlan plan =
        SourcePlanning::plan(source, mode, m_probes.frameSeconds(source.sourceId), m_settings);
    tally.cadence = plan.statistics;
    schedules->append(plan.schedule);
    if (mode == PreflightMode::Fallback)
        return report(plan.logLine) && reportTiming(source.sourceId, plan.statistics);
    return reportTiming(source.sourceId, plan.statistics) && report(plan.logLine);
}

// Lookups

void AcquisitionController::issueNextLookup()
{
    if (m_plan.atEnd()) {
        if (m_settings.createVideos)
            beginEncoding();
        else
            finish(false);
        return;
    }
    const FrameRequest request = m_plan.current();
    m_lookup = FrameLookup();
    m_lookup->request = request;
    if (reportState(AcquisitionLog::lookupState(request)))
        m_client->getClosestImage(request.sourceId, request.requestedUtc);
}

void AcquisitionController::onClosestImage(int sourceId, const QDateTime &requestedUtc,
                                           qint64 imageId, const QDateTime &actualUtc,
                                           const QJsonObject &answer)
{
    if (!isCurrent(sourceId, requestedUtc))
        return; // a late answer to a request that was stopped
    m_lookup->imageId = imageId;
    m_lookup->actualUtc = actualUtc;
    m_lookup->answer = answer;
    m_lookup->toleranceSeconds = SourceTiming::toleranceSeconds(m_lookup->request, m_settings);

    const FrameRequest request = m_lookup->request;
    const qint64 delta = m_lookup->deltaSeconds();
    const int tolerance = m_lookup->toleranceSeconds;
    switch (FrameRules::judge(delta, tolerance, imageId, m_tally[sourceId].acceptedIds)) {
    case FrameVerdict::RejectedTime:
        closeRequest(FrameStatus::RejectedTime,
                     AcquisitionLog::rejected(request, actualUtc, delta, tolerance));
        break;
    case FrameVerdict::Duplicate:
        closeRequest(FrameStatus::Duplicate,
                     AcquisitionLog::duplicate(request, imageId, actualUtc, delta));
        break;
    case FrameVerdict::Accepted:
        acceptForDownload();
        break;
    }
}

void AcquisitionController::onClientError(const QString &operation, const QString &message)
{
    if (!m_lookup)
        return;
    if (!m_lookup->actualUtc.isValid()) // the image was never judged
        m_lookup->toleranceSeconds = SourceTiming::toleranceSeconds(m_lookup->request, m_settings);
    m_lookup->answer = QJsonObject();
    closeRequest(operation == OperationNames::downloadImage() ? FrameStatus::DownloadError
                                                              : FrameStatus::LookupError,
                 AcquisitionLog::requestFailed(m_lookup->request, operation, message));
}

/// Whether an answer belongs to the request in flight; after a stop none does.
bool AcquisitionController::isCurrent(int sourceId, const QDateTime &requestedUtc) const
{
    return m_stage == Stage::Acquiring && m_lookup && m_lookup->request.sourceId == sourceId &&
           m_lookup->request.requestedUtc == requestedUtc;
}

/// Logs, counts and records a request that brought no frame, and goes on to the next.
void AcquisitionController::closeRequest(FrameStatus status, const QString &line)
{
    if (!report(line))
        return;
    const FrameLookup lookup = *std::exchange(m_lookup, std::nullopt);
    m_tally[lookup.request.sourceId].count(status);
    if (appendRow(lookup.toRow(status)))
        advance();
}

/// Reports when the manifest can no longer be written and when it can again, not for every row.
bool AcquisitionController::appendRow(const ManifestRow &row)
{
    QString reason;
    const bool waits = !m_manifest.append(row, &reason);
    if (waits == std::exchange(m_manifestWaits, waits))
        return true;
    return report(waits ? AcquisitionLog::manifestWaiting(reason)
                        : AcquisitionLog::manifestRecovered());
}

void AcquisitionController::advance()
{
    m_plan.advance();
    if (reportProgress(m_plan.position(), totalSteps()))
        m_nextStep.start();
}

// Downloads

void AcquisitionController::acceptForDownload()
{
    const SourceTally &tally = m_tally[m_lookup->request.sourceId];
    const QString name = SessionFiles::frame(tally.acceptedFrames);
    m_lookup->frameFile = QDir(tally.folder.directory).filePath(name);
    m_lookup->videoFrameFile = QDir(tally.folder.videoFramesDirectory).filePath(name);
    startDownload();
}

void AcquisitionController::startDownload()
{
    const FrameLookup lookup = *m_lookup; // a download that fails at once ends the lookup
    m_client->downloadImage(lookup.imageId, lookup.request.sourceId, lookup.request.requestedUtc,
                            lookup.actualUtc, lookup.frameFile, m_settings.imageWidth);
}

void AcquisitionController::onImageDownloaded(int sourceId, const QDateTime &requestedUtc,
                                              const QDateTime &, qint64, const QString &file)
{
    if (!isCurrent(sourceId, requestedUtc))
        return;
    m_pictureFile.clear();
    m_picture = QImage(); // frees the previous frame before this one is decoded
    m_picture = FrameDecoder::decode(file);
    if (m_picture.isNull()) {
        downloadAgain();
        return;
    }
    m_frameStep = FrameStep::Annotate;
    m_nextStep.start();
}

void AcquisitionController::downloadAgain()
{
    discardFrame();
    const FrameLookup &lookup = *m_lookup;
    if (lookup.decodeRetries == FrameRules::maxDecodeRetries) {
        closeRequest(FrameStatus::CorruptImage,
                     AcquisitionLog::corruptImage(lookup.request, lookup.imageId));
        return;
    }
    const int retry = ++m_lookup->decodeRetries;
    if (report(AcquisitionLog::decodeRetry(lookup.request, retry, lookup.imageId)))
        startDownload();
}

void AcquisitionController::takeFrameStep()
{
    switch (m_frameStep) {
    case FrameStep::Lookup:
        issueNextLookup();
        break;
    case FrameStep::Annotate:
        annotateFrame();
        break;
    case FrameStep::Write:
        writeFrame();
        break;
    }
}

void AcquisitionController::annotateFrame()
{
    m_frameStep = FrameStep::Write;
    const FrameLookup &frame = *m_lookup;
    const QString warning = detectBlankRendererBlock(m_picture, frame.answer);
    m_picture = FrameAnnotation::timestampedCopy(std::move(m_picture), frame.actualUtc,
                                                 frame.request.nickname, frame.answer,
                                                 m_settings.sourceOverlay, m_settings.scaleOverlay);
    if (warning.isEmpty() || report(AcquisitionLog::blankBlock(frame.request, warning)))
        m_nextStep.start();
}

void AcquisitionController::writeFrame()
{
    m_frameStep = FrameStep::Lookup;
    QString reason;
    bool hasVideoFrame = FrameAnnotation::save(m_picture, m_lookup->videoFrameFile, &reason);
    if (hasVideoFrame)
        m_pictureFile = m_lookup->videoFrameFile;
    else if (!replaceVideoFrame(reason, &hasVideoFrame))
        return;
    acceptFrame(hasVideoFrame);
}

/// Copies the frame as it is in place of its annotated copy; films need a file for every number.
bool AcquisitionController::replaceVideoFrame(const QString &reason, bool *hasVideoFrame)
{
    const FrameLookup &frame = *m_lookup;
    QFile::remove(frame.videoFrameFile);
    *hasVideoFrame = QFile::copy(frame.frameFile, frame.videoFrameFile);
    return report(*hasVideoFrame ? AcquisitionLog::annotationFailed(frame.request, reason)
                                 : AcquisitionLog::videoFrameFailed(frame.request, reason));
}

/// Takes the remaining steps of a decoded frame, so that its download is not lost.
void AcquisitionController::completeFrame()
{
    while (m_stage == Stage::Acquiring && m_frameStep != FrameStep::Lookup)
        takeFrameStep();
}

void AcquisitionController::acceptFrame(bool hasVideoFrame)
{
    const FrameLookup frame = *std::exchange(m_lookup, std::nullopt);
    m_tally[frame.request.sourceId].countAccepted(frame.imageId, hasVideoFrame);

    const QDir session(m_sessionDirectory);
    ManifestRow row = frame.toRow(FrameStatus::Ok);
    row.file = session.relativeFilePath(frame.frameFile);
    if (hasVideoFrame)
        row.videoFrame = session.relativeFilePath(frame.videoFrameFile);
    const QString line =
        AcquisitionLog::accepted(frame.request, frame.actualUtc, row.deltaSeconds, row.file);
    const QString preview = hasVideoFrame ? frame.videoFrameFile : frame.frameFile;
    if (appendRow(row) && report(line) &&
        send(&AcquisitionController::previewReady, frame.request.nickname, preview,
             frame.request.requestedUtc, frame.actualUtc, row.deltaSeconds))
        advance();
}

/// Removes the files of a frame that is not in the manifest: half a file must not look complete.
void AcquisitionController::discardFrame()
{
    if (!m_lookup || m_lookup->frameFile.isEmpty())
        return;
    QFile::remove(m_lookup->frameFile);
    QFile::remove(m_lookup->videoFrameFile);
}

// Films

void AcquisitionController::beginEncoding()
{
    enterStage(Stage::Encoding);
    const QVector<DataSource> sources = m_settings.sources; // a slot may start another session
    for (const DataSource &source : sources) {
        if (!concludeSource(source))
            return;
    }
    if (reportState(AcquisitionLog::encodingState()))
        encodeNext();
}

/// Summarizes a datasource and queues its film, unless a missing frame would cut it short.
bool AcquisitionController::concludeSource(const DataSource &source)
{
    const SourceTally tally = m_tally.value(source.sourceId);
    if (!report(AcquisitionLog::summary(source, tally)))
        return false;
    if (tally.acceptedFrames == 0)
        return report(AcquisitionLog::noAcceptedFrames(source));
    const int wholeFrames =
        FrameSequence::countWhole(tally.folder.videoFramesDirectory, tally.acceptedFrames);
    if (wholeFrames < tally.acceptedFrames) {
        m_films.noteFailure();
        return report(AcquisitionLog::videoSkipped(source, tally.acceptedFrames, wholeFrames));
    }
    m_films.append(source);
    return true;
}

void AcquisitionController::encodeNext()
{
    if (m_films.atEnd()) {
        finishEncoding();
        return;
    }
    const DataSource source = m_films.current();
    const SourceTally tally = m_tally.value(source.sourceId);
    const FilmOrder order =
        SessionLayout::filmOrder(tally.folder, tally.timestampedVideoFrames, m_settings);
    if (report(AcquisitionLog::encoding(source, order.film)))
        m_ffmpeg.start(order);
}

void AcquisitionController::onFfmpegFinished(const FilmOutcome &outcome)
{
    if (outcome.end == FilmOutcome::End::NotStarted)
        onFfmpegError(outcome.reason);
    else if (outcome.end != FilmOutcome::End::Completed)
        failFilm(outcome);
    else if (report(AcquisitionLog::videoCompleted(m_films.current())))
        closeFilm();
}

/// The encoder could not be started, so there is no exit code.
void AcquisitionController::onFfmpegError(const QString &reason)
{
    m_films.noteFailure();
    if (report(AcquisitionLog::encoderNotStarted(m_films.current(), reason)))
        closeFilm();
}

void AcquisitionController::onFfmpegReadyRead(const QString &text)
{
    emit logMessage(text);
}

/// Logs a failed film; if the exit code was 0, a line before it says why.
void AcquisitionController::failFilm(const FilmOutcome &outcome)
{
    const DataSource source = m_films.current();
    m_films.noteFailure();
    if (outcome.end == FilmOutcome::End::NotWhole &&
        !report(AcquisitionLog::filmNotWhole(source, outcome.reason)))
        return;
    if (report(AcquisitionLog::encodingFailed(source, outcome.exitCode)))
        closeFilm();
}

void AcquisitionController::closeFilm()
{
    m_films.advance();
    if (reportProgress(m_plan.size() + m_films.position(), totalSteps()))
        m_nextStep.start();
}

/// Removes the frames only if they are not to be kept and every film is complete.
void AcquisitionController::finishEncoding()
{
    if (!m_settings.keepFrames && m_films.allSucceeded()) {
        for (const SourceTally &tally : std::as_const(m_tally))
            FrameCleanup::removeFrames(tally.folder.directory);
        if (!report(AcquisitionLog::framesRemoved()))
            return;
    }
    finish(false);
}

// The end

void AcquisitionController::cancelChildren()
{
    m_client->cancel();
    m_probes.cancel();
    m_ffmpeg.cancel();
}

/// Returns false when the descriptor could not be written. When not even a save file can be
/// opened, the user removed the folder; that is not reported.
bool AcquisitionController::writeDescriptor(bool canceled) const
{
    return JsonFile::save(QDir(m_sessionDirectory).filePath(SessionFiles::descriptor()),
                          SessionDescriptor::toJson(
                              SessionTallying::toRecord(m_settings, m_tally, canceled))) !=
           JsonFile::SaveResult::CannotCommit;
}

/// Completes the session before it sends the first signal, because a slot may start the next one.
void AcquisitionController::finish(bool canceled)
{
    const bool manifestWaited = m_manifestWaits;
    const bool manifestWhole = m_manifest.close();
    const bool descriptorLost = !writeDescriptor(canceled);
    discardFrame();
    m_lookup.reset();
    const qint64 total = totalSteps();
    const QString sessionDirectory = m_sessionDirectory;
    enterStage(Stage::Idle);

    if (!manifestWhole)
        emit logMessage(AcquisitionLog::manifestIncomplete());
    else if (manifestWaited)
        emit logMessage(AcquisitionLog::manifestRecovered());
    if (descriptorLost)
        emit logMessage(AcquisitionLog::descriptorLost());
    if (!canceled)
        emit progressChanged(clampedToInt(total), clampedToInt(std::max<qint64>(total, 1)));
    emit stateChanged(AcquisitionLog::endState(canceled));
    emit logMessage(AcquisitionLog::sessionEnd(canceled));
    emit finished(canceled, sessionDirectory);
}

/// Requests and films; the progress of a session from its plan on.
qint64 AcquisitionController::totalSteps() const
{
    return m_plan.size() + (m_settings.createVideos ? m_settings.sources.size() : 0);
}

/**
 * Emits @p signal during a step.
 *
 * @return false when a connected slot ended the session, and perhaps started another one; the
 *         caller then returns
 */
template<typename Signal, typename... Values>
bool AcquisitionController::send(Signal signal, const Values &...values)
{
    const int session = m_session;
    emit(this->*signal)(values...);
    return isSession(session);
}

bool AcquisitionController::report(const QString &line)
{
    return send(&AcquisitionController::logMessage, line);
}

bool AcquisitionController::reportProgress(qint64 value, qint64 maximum)
{
    return send(&AcquisitionController::progressChanged, clampedToInt(value),
                clampedToInt(maximum));
}

bool AcquisitionController::reportState(const QString &text)
{
    return send(&AcquisitionController::stateChanged, text);
}

bool AcquisitionController::reportTiming(int sourceId, const CadenceStatistics &statistics)
{
    return send(&AcquisitionController::sourceTimingAnalyzed, sourceId, statistics.uniqueFrames,
                statistics.medianSeconds, statistics.minSeconds, statistics.maxSeconds);
}
