#pragma once

#include "acquisition/acquisitionplan.h"
#include "acquisition/cadenceprobes.h"
#include "acquisition/encodequeue.h"
#include "acquisition/framelookup.h"
#include "acquisition/sessiontally.h"
#include "output/filmencoder.h"
#include "output/manifestwriter.h"
#include "session/acquisitionsettings.h"

#include <QImage>
#include <QObject>
#include <QTimer>

#include <optional>

class HelioviewerClient;

/**
 * Runs one acquisition at a time, from settings to finished films.
 *
 * The signals of the child processes drive a session through its stages: curl for the cadence
 * probes, the lookups and the downloads, ffmpeg for the films. Each step starts from the event
 * loop, never from the slot that ended the step before: a request that fails at once would recurse,
 * a QProcess cannot be restarted from its own errorOccurred, and windows must stay responsive.
 * Decoding a frame, annotating it and writing its copy are one step each. The one exception is a
 * download: it starts in the slot that received its lookup, or a picture that did not decode. The
 * client is idle by then, and a download that fails at once only closes its request.
 *
 * Slots connected to the signals may call stop() at any time, and start() as soon as isRunning()
 * returns false. stop() and the destructor first complete a frame that is downloaded and decoded.
 * The destructor then ends the session without a signal: it kills the children, keeps the manifest
 * and writes no descriptor.
 */
class AcquisitionController final : public QObject
{
    Q_OBJECT

public:
    explicit AcquisitionController(QObject *parent = nullptr);
    ~AcquisitionController() override;

    bool isRunning() const { return m_stage != Stage::Idle; }

    /**
     * Starts a session with a copy of @p settings.
     *
     * @return false when it cannot be started; @p errorText, which may be null, then says why
     */
    bool start(const AcquisitionSettings &settings, QString *errorText = nullptr);
    /// Ends the running session as canceled before it returns; all files written so far stay.
    void stop();

    /// The picture in @p imageFile if the last previewReady named that file and the next frame is
    /// not decoded yet; otherwise null, and the caller reads the file.
    QImage pictureInHand(const QString &imageFile) const;

signals:
    /// A line for the log.
    void logMessage(const QString &text);
    /// After every probe, request and film; starts again at 0 when the plan is ready.
    void progressChanged(int value, int maximum);
    /// At each change of stage and for every probe and lookup.
    void stateChanged(const QString &text);
    /// Once per datasource when the plan is built; @p uniqueFrames is -1 for one that is sampled
    /// without a probe; all numbers are 0 when the probe failed.
    void sourceTimingAnalyzed(int sourceId, int uniqueFrames, int medianSeconds, int minSeconds,
                              int maxSeconds);
    /// After every accepted frame; @p imageFile is the annotated copy where there is one.
    void previewReady(const QString &sourceName, const QString &imageFile,
                      const QDateTime &requestedUtc, const QDateTime &actualUtc,
                      qint64 deltaSeconds);
    /// Once per session, as its last signal.
    void finished(bool canceled, const QString &sessionDirectory);

private slots:
    void onClosestImage(int sourceId, const QDateTime &requestedUtc, qint64 imageId,
                        const QDateTime &actualUtc, const QJsonObject &answer);
    void onImageDownloaded(int sourceId, const QDateTime &requestedUtc, const QDateTime &actualUtc,
                           qint64 imageId, const QString &file);
    void onClientError(const QString &operation, const QString &message);
    void onFfmpegFinished(const FilmOutcome &outcome);
    void onFfmpegError(const QString &reason);
    void onFfmpegReadyRead(const QString &text);

private:
    enum class Stage {
        Idle,
        Preflight, ///< measuring cadences
        Acquiring, ///< working through the plan
        Encoding,  ///< making films
        Stopping,  ///< stop was requested, children are being killed
    };

    /// What comes next while Acquiring.
    enum class FrameStep {
        Lookup,   ///< the next request of the plan
        Annotate, ///< the picture in hand is decoded
        Write,    ///< the picture in hand is the annotated copy
    };

    static bool mayFollow(Stage stage, Stage next);
    void enterStage(Stage stage);
    void takeNextStep();
    void takeFrameStep();

    // Steps that emit signals return false when a connected slot ended the session; the caller then
    // returns.

    void resetSession(const AcquisitionSettings &settings);
    bool createSessionFiles(QString *errorText);
    bool announceSession(int probes);

    void buildPlan();
    bool planSource(const DataSource &source, QVector<RequestSchedule> *schedules);

    void issueNextLookup();
    bool isCurrent(int sourceId, const QDateTime &requestedUtc) const;
    void acceptForDownload();
    void startDownload();
    void downloadAgain();
    void annotateFrame();
    void writeFrame();
    bool replaceVideoFrame(const QString &reason, bool *hasVideoFrame);
    void acceptFrame(bool hasVideoFrame);
    void completeFrame();
    void closeRequest(FrameStatus status, const QString &line);
    bool appendRow(const ManifestRow &row);
    void advance();
    void discardFrame();

    void beginEncoding();
    bool concludeSource(const DataSource &source);
    void encodeNext();
    void failFilm(const FilmOutcome &outcome);
    void closeFilm();
    void finishEncoding();

    void cancelChildren();
    bool writeDescriptor(bool canceled) const;
    void finish(bool canceled);
    qint64 totalSteps() const;

    /// Whether @p session, in which a step began, is still the current one.
    bool isSession(int session) const { return m_session == session; }
    template<typename Signal, typename... Values>
    bool send(Signal signal, const Values &...values);
    bool report(const QString &line);
    bool reportProgress(qint64 value, qint64 maximum);
    bool reportState(const QString &text);
    bool reportTiming(int sourceId, const CadenceStatistics &statistics);

    Stage m_stage = Stage::Idle;
    int m_session = 0; // changes at each start and finish
    QTimer m_nextStep;

    AcquisitionSettings m_settings;
    QString m_sessionDirectory;
    ManifestWriter m_manifest;
    bool m_manifestWaits = false; // rows wait to be written; the user has been told
    SessionTally m_tally;

    CadenceProbes m_probes;
    AcquisitionPlan m_plan;
    HelioviewerClient *m_client;         // child of this object; lookups and downloads
    std::optional<FrameLookup> m_lookup; // the request in flight
    FrameStep m_frameStep = FrameStep::Lookup;
    QImage m_picture;      // of the request in flight, then of the last accepted frame
    QString m_pictureFile; // that shows m_picture; empty until there is one

    EncodeQueue m_films;
    FilmEncoder m_ffmpeg;
};
