#pragma once

#include <QDateTime>
#include <QImage>
#include <QString>

class QJsonObject;

/**
 * Paints time stamp, datasource label and scale bar onto @p image, in place.
 *
 * @param actualUtc    drawn at the bottom left, converted to UTC; an invalid time is left out
 * @param sourceLabel  drawn at the bottom right without surrounding white space; left out when
 *                     nothing remains of it
 * @param kmPerPixel   kilometres on the Sun that a pixel of @p image spans, for the bar at the top
 *                     right; 0, or anything else that is not positive and finite, leaves it out,
 *                     and so does a bar that would be shorter than 12 pixels
 *
 * Does nothing to a null image, or to one of a format that cannot be painted on.
 */
void drawFrameAnnotations(QImage &image, const QDateTime &actualUtc, const QString &sourceLabel,
                          bool drawTimestamp, bool drawSource, bool drawScale, double kmPerPixel);

/// The two steps of saveTimestampedFrame().
namespace FrameAnnotation {

/**
 * The annotated copy of a decoded frame, always with its time stamp; null for a null image.
 *
 * The copy has even sides, as H.264 requires: for an odd side the last column or row is repeated.
 * Annotations keep their positions.
 *
 * Takes the image by value: a caller that moves it in saves a copy of the whole frame.
 *
 * @param metadata  closest-image answer with the scale; without it there is no bar
 */
QImage timestampedCopy(QImage image, const QDateTime &actualUtc, const QString &sourceLabel,
                       const QJsonObject &metadata, bool drawSource, bool drawScale);

/**
 * Writes an annotated copy as a PNG.
 *
 * @param outputPath  its folder is created where it is missing
 * @param errorText   may be null; set on failure only: "cannot decode downloaded PNG" for a null
 *                    image, "cannot create timestamped frame directory" or "cannot save
 *                    timestamped PNG"
 * @return            false when the file could not be written; an existing one is unchanged
 */
bool save(const QImage &copy, const QString &outputPath, QString *errorText = nullptr);

} // namespace FrameAnnotation

/// Both steps of FrameAnnotation in one.
bool saveTimestampedFrame(QImage image, const QString &outputPath, const QDateTime &actualUtc,
                          const QString &sourceLabel, const QJsonObject &metadata, bool drawSource,
                          bool drawScale, QString *errorText = nullptr);
