#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QJsonObject>
#include <QObject>
#include <QProcess>
#include <QStringList>
#include <QTimer>
#include <QVector>

/**
 * The Helioviewer API through curl, one request at a time.
 *
 * Each request is one child process and ends in exactly one signal: its result or requestError.
 * A request made while another is in flight is refused with an error and not queued. From a slot
 * of the result or of the error the next request may be made at once, except during cancel().
 *
 * A download that does not end in renderedImageDownloaded leaves no file behind. An answer of more
 * than 64 MB, or a download of more than 1 GB, ends in requestError as soon as it exceeds that.
 * Destroying a busy client kills its request without any signal.
 */
class HelioviewerClient final : public QObject
{
    Q_OBJECT

public:
    explicit HelioviewerClient(QObject *parent = nullptr);
    ~HelioviewerClient() override;

    /// A request is in flight, or its child process has not ended yet.
    bool isBusy() const;

    /// The catalog of datasources; answered by catalogReceived.
    void getDataSources();
    /// The archive's frame times of an interval; answered by frameIndexReceived.
    void getJPX(int sourceId, const QDateTime &startUtc, const QDateTime &endUtc,
                int cadenceSeconds);
    /// The image nearest to an instant; answered by closestImageReceived.
    void getClosestImage(int sourceId, const QDateTime &requestedUtc);
    /// A rendered PNG of @p width pixels into @p outputFile; answered by renderedImageDownloaded.
    void downloadImage(qint64 imageId, int sourceId, const QDateTime &requestedUtc,
                       const QDateTime &actualUtc, const QString &outputFile, int width);
    /**
     * Kills the request in flight and waits up to a second for its end; idle afterwards.
     *
     * The request still ends in its one signal, emitted before this returns, unless its child had
     * not been started yet or survives that second. A request made from a slot connected to that
     * signal is refused as busy.
     */
    void cancel();

signals:
    /// A line for the log: each request's URL, and once per run the switch to unverified HTTPS.
    void logMessage(const QString &text);
    /// The catalog as the service nests it.
    void catalogReceived(const QJsonObject &catalog);
    /// The frame times in the order given; @p message is a remark of the service, usually empty.
    void frameIndexReceived(int sourceId, const QDateTime &startUtc, const QDateTime &endUtc,
                            const QVector<QDateTime> &framesUtc, const QString &message);
    /// An image was found, however far from the time asked for; @p metadata is the whole answer.
    void closestImageReceived(int sourceId, const QDateTime &requestedUtc, qint64 imageId,
                              const QDateTime &actualUtc, const QJsonObject &metadata);
    /// A file that is not empty was written; whether it is a picture is not known here.
    void renderedImageDownloaded(int sourceId, const QDateTime &requestedUtc,
                                 const QDateTime &actualUtc, qint64 imageId,
                                 const QString &outputFile);
    /// A request failed, once per request; @p operation is the service's name for it.
    void requestError(const QString &operation, const QString &message);

private slots:
    void onFinished(int exitCode, QProcess::ExitStatus exitStatus);
    void onProcessError(QProcess::ProcessError error);

private:
    enum class Operation {
        None = 0, ///< idle
        GetDataSources = 1,
        GetJPX = 2,
        GetClosestImage = 3,
        DownloadImage = 4,
    };

    /// Repeated in the result, so that a caller can tell which request it belongs to.
    struct Request
    {
        int sourceId = -1;
        qint64 imageId = -1;
        QDateTime requestedUtc;
        QDateTime startUtc;
        QDateTime endUtc;
        QDateTime actualUtc;
        QString outputFile;
    };

    static QString operationName(Operation operation);

    void start(Operation operation, const Request &request, const QStringList &arguments);
    void launch(const QString &program, const QStringList &arguments);
    bool retryInsecurely(int exitCode);
    void readOutput();
    void endOversizedAnswer();
    void endOversizedDownload();
    void endRequest(const QString &reason);
    QString errorOutput() const;
    void removePartialDownload() const;
    void reportProcessError();
    void fail(const QString &message);

    void handleAnswer();
    void answerFrameIndex(const Request &request, const QJsonObject &answer);
    void answerClosestImage(const Request &request, const QJsonObject &answer);
    void answerDownload(const Request &request);

    QProcess *m_process; // owned through its parent
    Operation m_operation = Operation::None;
    QByteArray m_stdoutBuffer;
    QByteArray m_stderrBuffer;
    bool m_errorReported = false;   // a process error has been noted for this request
    bool m_insecureRetried = false; // this request has been restarted without certificate check
    QStringList m_lastArguments;
    Request m_request;
    QString m_processError; // what m_errorReported noted, until it is reported
    QString m_endReason;    // why this client killed the request; kept until its child has ended
    QTimer m_downloadWatch; // runs while a child does
    bool m_canceling = false;
};
