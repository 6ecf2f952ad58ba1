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
#include "imaging/blankblock.h"
#include "imaging/frameannotation.h"
#include "imaging/framedecoder.h"
#include "output/framecleanup.h"
#include "output/sessiondescriptor.h"
#include "output/sessionfiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>

#include <limits>
#include <utility>

namespace {

const QString &downloadOperation()
{
    static const QString name = QStringLiteral("downloadImage");
    return name;
}

int clampedToInt(qint64 value)
{
    return static_cast<int>(qMin<qint64>(value, std::numeric_limits<int>::max()));
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

    connect(&m_ffmpeg, &FilmEncoder::finished, this, &AcquisitionController::onFfmpegFinished);
    connect(&m_ffmpeg, &FilmEncoder::outputRead, this, &AcquisitionController::onFfmpegReadyRead);
}

AcquisitionController::~AcquisitionController()
{
    m_ffmpeg.disconnect(this);
    m_client->disconnect(this);
    for (HelioviewerClient *client : std::as_const(m_probeClients))
        client->disconnect(this);
    cancelChildren();
    discardFrame();
    m_manifest.close();
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
    classifySources();
    enterStage(Stage::Preflight);
    if (announceSession())
        scheduleProbes();
    return true;
}

void AcquisitionController::stop()
{
    if (m_stage == Stage::Idle || m_stage == Stage::Stopping)
        return;
    const int session = m_session;
    enterStage(Stage::Stopping);
    if (report(AcquisitionLog::stopRequested()))
        cancelChildren(); // the last signals of the killed arrive here and may end the session
    if (isSession(session))
        finish(true);
}

// Stages

void AcquisitionController::enterStage(Stage stage)
{
    m_nextStep.stop();
    if (m_stage == Stage::Idle || stage == Stage::Idle)
        ++m_session;
    m_stage = stage;
}

void AcquisitionController::takeNextStep()
{
    switch (m_stage) {
    case Stage::Idle:
        break;
    case Stage::Preflight:
        scheduleProbes();
        break;
    case Stage::Acquiring:
        issueNextLookup();
        break;
    case Stage::Encoding:
        encodeNext();
        break;
    case Stage::Stopping:
        finish(true);
        break;
    }
}

// Start

void AcquisitionController::resetSession(const AcquisitionSettings &settings)
{
    m_settings = settings;
    m_sessionDirectory.clear();
    m_manifestWaits = false;
    m_tally.clear();
    m_probes = ProbeQueue();
    m_plan = AcquisitionPlan();
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

/// Decides which datasources are sampled directly and which are probed first.
void AcquisitionController::classifySources()
{
    m_probes = ProbeQueue(SessionOpening::probeWindows(m_settings));
    for (const DataSource &source : std::as_const(m_settings.sources))
        m_tally[source.sourceId].mode = SourceTiming::isDense(source)
                                            ? PreflightMode::DirectDenseSource
                                            : PreflightMode::QuickProbe;
}

bool AcquisitionController::announceSession()
{
    const QStringList lines =
        SessionOpening::logLines(m_settings, m_sessionDirectory, m_probes.size());
    for (const QString &line : lines) {
        if (!report(line))
            return false;
    }
    return reportProgress(0, qMax(m_probes.size(), 1)) &&
           reportState(m_probes.isEmpty() ? AcquisitionLog::preparingState()
                                          : AcquisitionLog::probingState());
}

// Cadence planning

/// Gives every idle client of the pool a window; builds the plan when all windows are done.
void AcquisitionController::scheduleProbes()
{
    if (m_probes.isDone()) {
        buildPlan();
        return;
    }
    const int workers = qMin(RuntimeConfig::preflightParallelRequests(), m_probes.size());
    growProbePool(workers);
    for (int worker = 0; worker < workers && m_probes.hasNext(); ++worker) {
        if (!m_probes.isBusy(worker) && !startProbe(worker))
            return;
    }
}

void AcquisitionController::growProbePool(int workers)
{
    while (m_probeClients.size() < workers) {
        auto *client = new HelioviewerClient(this);
        connect(client, &HelioviewerClient::logMessage, this, &AcquisitionController::logMessage);
        connect(client, &HelioviewerClient::frameIndexReceived, this,
                &AcquisitionController::onFrameIndex);
        connect(client, &HelioviewerClient::requestError, this,
                &AcquisitionController::onPreflightError);
        m_probeClients.append(client);
    }
}

bool AcquisitionController::startProbe(int worker)
{
    const int session = m_session;
    const ProbeWindow window = m_probes.take(worker);
    if (!reportState(AcquisitionLog::analyzingState(window, m_probes.taken(), m_probes.size())))
        return false;
    m_probeClients.at(worker)->getJPX(window.source.sourceId, window.startUtc, window.endUtc,
                                      m_settings.cadenceSeconds);
    return isSession(session);
}

void AcquisitionController::onFrameIndex(int sourceId, const QDateTime &startUtc,
                                         const QDateTime &endUtc,
                                         const QVector<QDateTime> &framesUtc, const QString &note)
{
    const std::optional<ProbeWindow> window = releaseProbe();
    if (!window)
        return;
    if (!window->matches(sourceId, startUtc, endUtc)) {
        fallBack(window->source, AcquisitionLog::probeMismatch(window->source));
        return;
    }
    if (!note.trimmed().isEmpty() && !report(AcquisitionLog::probeNote(window->source, note)))
        return;
    m_probes.addFrames(sourceId, framesUtc);
    m_tally[sourceId].cadence.uniqueFrames = m_probes.frameSeconds(sourceId).size();
    closeProbe();
}

void AcquisitionController::onPreflightError(const QString &operation, const QString &message)
{
    if (operation != QLatin1String("getJPX"))
        return;
    if (const std::optional<ProbeWindow> window = releaseProbe())
        fallBack(window->source, AcquisitionLog::probeFailed(window->source, message));
}

/// The window of the client whose signal is being handled; nothing when it is of no concern now.
std::optional<ProbeWindow> AcquisitionController::releaseProbe()
{
    if (m_stage != Stage::Preflight)
        return std::nullopt;
    return m_probes.release(m_probeClients.indexOf(qobject_cast<HelioviewerClient *>(sender())));
}

/// A datasource without a usable probe is sampled at the requested cadence.
void AcquisitionController::fallBack(const DataSource &source, const QString &line)
{
    m_tally[source.sourceId].mode = PreflightMode::Fallback;
    if (report(line))
        closeProbe();
}

void AcquisitionController::closeProbe()
{
    m_probes.complete();
    if (reportProgress(m_probes.completed(), m_probes.size()))
        m_nextStep.start();
}

void AcquisitionController::buildPlan()
{
    enterStage(Stage::Acquiring);
    QVector<RequestSchedule> schedules;
    const QVector<DataSource> sources = m_settings.sources; // a slot may start another session
    for (const DataSource &source : sources) {
        if (!planSource(source, &schedules))
            return;
    }
    m_probes = ProbeQueue();
    m_plan = AcquisitionPlan(schedules);
    const qint64 nominalCount = AcquisitionPlanning::nominalCount(m_settings);
    if (report(AcquisitionLog::planReady(m_plan.size(), nominalCount)) &&
        reportProgress(0, qMax<qint64>(totalSteps(), 1)) &&
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

    const FrameRequest request = m_lookup->request;
    const qint64 delta = FrameRules::deltaSeconds(requestedUtc, actualUtc);
    const int tolerance = SourceTiming::toleranceSeconds(request, m_settings);
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
    if (!isRunning() || !m_lookup)
        return;
    discardFrame();
    m_lookup->answer = QJsonObject();
    closeRequest(operation == downloadOperation() ? FrameStatus::DownloadError
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
    if (appendRow(lookup.toRow(status, SourceTiming::toleranceSeconds(lookup.request, m_settings))))
        advance();
}

/// Trouble with the ledger is told when it begins and when it is over, not for every row.
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
    QImage image = FrameDecoder::decode(file);
    if (image.isNull()) {
        downloadAgain();
        return;
    }
    if (warnOfBlankBlock(image) && writeVideoFrame(std::move(image)))
        acceptFrame();
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

bool AcquisitionController::warnOfBlankBlock(const QImage &image)
{
    const QString warning = detectBlankRendererBlock(image, m_lookup->answer);
    return warning.isEmpty() || report(AcquisitionLog::blankBlock(m_lookup->request, warning));
}

/// Writes the annotated copy, or a plain one when that fails; films need a file for every number.
bool AcquisitionController::writeVideoFrame(QImage image)
{
    const FrameLookup &frame = *m_lookup;
    QString reason;
    if (saveTimestampedFrame(std::move(image), frame.videoFrameFile, frame.actualUtc,
                             frame.request.nickname, frame.answer, m_settings.sourceOverlay,
                             m_settings.scaleOverlay, &reason))
        return true;
    QFile::remove(frame.videoFrameFile);
    const bool copied = QFile::copy(frame.frameFile, frame.videoFrameFile);
    return report(copied ? AcquisitionLog::annotationFailed(frame.request, reason)
                         : AcquisitionLog::videoFrameFailed(frame.request, reason));
}

void AcquisitionController::acceptFrame()
{
    const FrameLookup frame = *std::exchange(m_lookup, std::nullopt);
    const bool hasVideoFrame = QFileInfo::exists(frame.videoFrameFile);
    m_tally[frame.request.sourceId].countAccepted(frame.imageId, hasVideoFrame);

    const QDir session(m_sessionDirectory);
    ManifestRow row =
        frame.toRow(FrameStatus::Ok, SourceTiming::toleranceSeconds(frame.request, m_settings));
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

/// Removes what there is of a frame that is not in the manifest: half a file must not look whole.
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

/// Sums a datasource up and queues its film; one with a gap in its frames would be cut short.
bool AcquisitionController::concludeSource(const DataSource &source)
{
    const SourceTally tally = m_tally.value(source.sourceId);
    if (!report(AcquisitionLog::summary(source, tally)))
        return false;
    if (tally.acceptedFrames == 0)
        return report(AcquisitionLog::noAcceptedFrames(source));
    if (tally.hasGapInVideoFrames()) {
        m_films.noteFailure();
        return report(AcquisitionLog::videoSkipped(source, tally));
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
    FilmOrder order;
    order.program = RuntimeConfig::ffmpegPath();
    order.folder = tally.folder.directory;
    order.inputPattern = SessionLayout::framePattern();
    order.film = SessionLayout::filmPath(tally.folder);
    order.fps = m_settings.videoFps;
    order.crf = m_settings.videoCrf;
    order.pictures = tally.timestampedVideoFrames;
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

/// The encoder could not be started, so that there is no exit code.
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

/// Logs a failed film; with exit code 0 a line before says why it failed.
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

/// Frames go only when they are not to be kept and every film is whole.
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
    for (HelioviewerClient *client : std::as_const(m_probeClients))
        client->cancel();
    m_ffmpeg.cancel();
}

/// False when the disk did not take the descriptor. Where not even a save file can be opened, the
/// session's folder is gone or closed to us, which is no news: its user took it away.
bool AcquisitionController::writeDescriptor(bool canceled) const
{
    return JsonFile::save(QDir(m_sessionDirectory).filePath(SessionFiles::descriptor()),
                          SessionDescriptor::toJson(toRecord(m_settings, m_tally, canceled))) !=
           JsonFile::SaveResult::CannotCommit;
}

/// All that belongs to the session is settled before the first signal: a slot may start the next.
void AcquisitionController::finish(bool canceled)
{
    if (!isRunning())
        return;
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
        emit progressChanged(clampedToInt(total), clampedToInt(qMax<qint64>(total, 1)));
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
 * Emits @p signal in the midst of a step.
 *
 * @return whether the step is to go on: false when a slot has stopped the session over it, and
 *         maybe started another
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
