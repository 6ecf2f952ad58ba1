#pragma once

#include "roi/roisession.h"

#include <QEventLoop>
#include <QHash>
#include <QJsonObject>
#include <QObject>
#include <QPair>

/**
 * Finds, per datasource, metadata that tell the length of a pixel: in the session, else by one
 * question to the service, whose answer is kept.
 */
class ScaleLookup : public QObject
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
     * @param metadata      of the frame or its datasource; anything that is not usable counts as
     *                      not stored
     */
    static QString lineText(int frameWidthPx, const QJsonObject &metadata);

    /// What is known of a datasource without asking the service; empty when nothing usable is.
    QJsonObject known(const RoiSource &source) const;

    /**
     * The metadata of a datasource, asked for when they are not known.
     *
     * Waits up to 45 s in an event loop of its own, so that windows stay alive. What comes back
     * may be unusable; the log then says why, and no scale bar can be drawn.
     */
    QJsonObject ensure(const RoiSource &source, const QDateTime &sessionStartUtc);

public slots:
    /// Ends a wait at once.
    void abort();

signals:
    /// A line for the log.
    void logMessage(const QString &text);
    /// A lookup begins; @p text says so to the user.
    void statusChanged(const QString &text);

private:
    QJsonObject queryClosestImage(int sourceId, const QDateTime &utc, int limitMs,
                                  QString *errorText);

    QHash<QPair<int, QString>, QJsonObject> m_answers; // usable; by sourceId and folder
    QEventLoop *m_wait = nullptr;                      // not owned; exists only during a lookup
};
