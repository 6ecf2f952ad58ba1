#pragma once

#include <QDateTime>
#include <QImage>
#include <QString>

class QJsonObject;

/// Paints time stamp, datasource label and scale bar onto @p image, in place.
void drawFrameAnnotations(QImage &image, const QDateTime &actualUtc, const QString &sourceLabel,
                          bool drawTimestamp, bool drawSource, bool drawScale, double kmPerPixel);

/**
 * Writes the annotated copy of a decoded frame.
 *
 * Takes the image by value: a caller that moves its own in spares a copy of the whole frame.
 */
bool saveTimestampedFrame(QImage image, const QString &outputPath, const QDateTime &actualUtc,
                          const QString &sourceLabel, const QJsonObject &metadata, bool drawSource,
                          bool drawScale, QString *errorText = nullptr);
