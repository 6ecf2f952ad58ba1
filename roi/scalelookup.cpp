#include "roi/scalelookup.h"

#include "client/helioviewerclient.h"
#include "imaging/imagemetadata.h"
#include "imaging/metricscale.h"

#include <QCoreApplication>
#include <QTimer>

#include <algorithm>

namespace {

constexpr int lookupLimitMs = 45000;
constexpr int abortedCode = 1; // of the event loop; quit() gives 0

QJsonObject storedMetadata(const RoiSource &source)
{
    const auto found =
        std::find_if(source.frames.cbegin(), source.frames.cend(), [](const RoiSourceFrame &frame) {
            return ScaleLookup::isUsable(frame.metadata);
        });
    return found == source.frames.cend() ? QJsonObject() : found->metadata;
}

/// The time of a stored frame, for which the archive must have an image; else the session's start.
QDateTime timeToAskFor(const RoiSource &source, const QDateTime &sessionStartUtc)
{
    const auto found =
        std::find_if(source.frames.cbegin(), source.frames.cend(),
                     [](const RoiSourceFrame &frame) { return frame.actualUtc.isValid(); });
    return found == source.frames.cend() ? sessionStartUtc : found->actualUtc;
}

/// Makes an answer to the only request of @p client, or an error, end @p wait, and stores which it
/// was.
void endWithAnswer(QEventLoop &wait, HelioviewerClient &client, QJsonObject &answer,
                   QString &errorText)
{
    QObject::connect(&client, &HelioviewerClient::closestImageReceived, &wait,
                     [&wait, &answer](int, const QDateTime &, qint64, const QDateTime &,
                                      const QJsonObject &metadata) {
                         answer = metadata;
                         wait.quit();
                     });
    QObject::connect(&client, &HelioviewerClient::requestError, &wait,
                     [&wait, &errorText](const QString &operation, const QString &message) {
                         errorText = QStringLiteral("%1: %2").arg(operation, message);
                         wait.quit();
                     });
}

} // namespace

bool ScaleLookup::isUsable(const QJsonObject &metadata)
{
    return ImageMetadata::metadataNumber(metadata, QStringLiteral("rsun")) > 0.0 &&
           ImageMetadata::metadataNumber(metadata, QStringLiteral("width")) > 0.0;
}

QString ScaleLookup::lineText(int frameWidthPx, const QJsonObject &metadata)
{
    if (frameWidthPx < 1)
        return tr("Scale: --");
    if (!isUsable(metadata))
        return tr("Scale: metadata not stored in this session; Orvik will query Helioviewer once "
                  "per datasource when needed.");
    const double kmPerPixel = MetricScale::kmPerPixel(metadata, frameWidthPx);
    if (!(kmPerPixel > 0.0))
        return tr("Scale: unavailable.");
    return tr("Projected scale: %1 km/pixel at the captured PNG resolution.")
        .arg(QString::number(kmPerPixel, 'f', 1));
}

QJsonObject ScaleLookup::known(const RoiSource &source) const
{
    const auto answered = m_answers.constFind({source.sourceId, source.folder});
    return answered == m_answers.constEnd() ? storedMetadata(source) : *answered;
}

QJsonObject ScaleLookup::ensure(const RoiSource &source, const QDateTime &sessionStartUtc)
{
    QJsonObject metadata = known(source);
    if (!metadata.isEmpty())
        return metadata;

    emit statusChanged(tr("Looking up scale metadata for %1...").arg(source.nickname));
    QString errorText;
    metadata =
        queryClosestImage(source.sourceId, timeToAskFor(source, sessionStartUtc), &errorText);
    if (isUsable(metadata))
        m_answers.insert({source.sourceId, source.folder}, metadata);
    else
        emit logMessage(
            QStringLiteral("WARNING scale metadata %1: %2").arg(source.nickname, errorText));
    return metadata;
}

void ScaleLookup::abort()
{
    if (m_wait)
        m_wait->exit(abortedCode);
}

QJsonObject ScaleLookup::queryClosestImage(int sourceId, const QDateTime &utc, QString *errorText)
{
    if (sourceId < 0 || !utc.isValid()) {
        *errorText = QStringLiteral("No valid source/time is available for scale lookup.");
        return {};
    }
    QJsonObject answer;
    QEventLoop wait;
    HelioviewerClient client;
    QTimer timer(this);
    timer.setSingleShot(true);
    connect(&client, &HelioviewerClient::logMessage, this, &ScaleLookup::logMessage);
    endWithAnswer(wait, client, answer, *errorText);
    connect(&timer, &QTimer::timeout, &wait, [&] {
        client.cancel();
        *errorText = QStringLiteral("Helioviewer metadata lookup timed out.");
        wait.quit();
    });

    m_wait = &wait;
    timer.start(lookupLimitMs);
    client.getClosestImage(sourceId, utc);
    // Without curl the error has been reported already, and nothing would end the wait.
    if (errorText->isEmpty() && wait.exec() == abortedCode)
        *errorText = QStringLiteral("The lookup was canceled.");
    m_wait = nullptr;
    if (!isUsable(answer) && errorText->isEmpty())
        *errorText = QStringLiteral("Helioviewer did not return usable rsun/width metadata.");
    return answer;
}
