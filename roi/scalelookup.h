#pragma once

#include "roi/roisession.h"

#include <QEventLoop>
#include <QHash>
#include <QJsonObject>
#include <QObject>
#include <QPair>

/**
 * Finds, per datasource, the metadata that give the length of a pixel: in the session, or else by
 * one request to the service, whose answer is kept.
 */
class ScaleLookup final : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Whether @p metadata has a solar radius and a source width, both positive.
    static bool isUsable(const QJsonObject &metadata);

    /**
     * The scale line of the dialog.
     *
     * @param frameWidthPx  width of the frame that is shown; 0 when none is
     * @param metadata      of the frame or its datasource; treated as not stored when not usable
     */
    static QString lineText(int frameWidthPx, const QJsonObject &metadata);

    /// The usable metadata known without a request; empty when there are none.
    QJsonObject known(const RoiSource &source) const;

    /**
     * The metadata of a datasource, requested from the service when they are not known.
     *
     * Waits up to 45 s in a nested event loop, so that windows stay responsive. The result may be
     * unusable; the log then says why, and no scale bar can be drawn.
     */
    QJsonObject ensure(const RoiSource &source, const QDateTime &sessionStartUtc);

public slots:
    /// Ends a pending wait at once.
    void abort();

signals:
    /// A line for the log.
    void logMessage(const QString &text);
    /// A lookup begins; @p text tells the user.
    void statusChanged(const QString &text);

private:
    QJsonObject queryClosestImage(int sourceId, const QDateTime &utc, QString *errorText);

    QHash<QPair<int, QString>, QJsonObject> m_answers; // usable; by sourceId and folder
    QEventLoop *m_wait = nullptr;                      // not owned; exists only during a lookup
};
