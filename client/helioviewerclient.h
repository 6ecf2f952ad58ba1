#pragma once

#include <QDateTime>
#include <QJsonObject>
#include <QObject>
#include <QProcess>
#include <QStringList>
#include <QVector>

/**
 * The Helioviewer API through curl, one request at a time.
 *
 * Each request is one child process and ends in exactly one signal: its result or requestError.
 * A request made while another is in flight is refused with an error and not queued.
 */
class HelioviewerClient : public QObject
{
    Q_OBJECT

public:
    explicit HelioviewerClient(QObject *parent = nullptr);
    ~HelioviewerClient() override;

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
    /// Kills the request in flight and waits up to a second for its end; idle afterwards.
    void cancel();

signals:
    /// A line for the log.
    void logMessage(const QString &text);
    void catalogReceived(const QJsonObject &catalog);
    void frameIndexReceived(int sourceId, const QDateTime &startUtc, const QDateTime &endUtc,
                            const QVector<QDateTime> &framesUtc, const QString &message);
    void closestImageReceived(int sourceId, const QDateTime &requestedUtc, qint64 imageId,
                              const QDateTime &actualUtc, const QJsonObject &metadata);
    void renderedImageDownloaded(int sourceId, const QDateTime &requestedUtc,
                                 const QDateTime &actualUtc, qint64 imageId,
                                 const QString &outputFile);
    /// A request failed, once per request; @p operation is the service's name for it.
    void requestError(const QString &operation, const QString &message);
};
