#pragma once

#include <QPointF>
#include <QSize>
#include <QString>

#include <optional>

class QJsonObject;

/**
 * Where on the Sun a pixel lies, and how much of it a region covers, from a frame's metadata.
 *
 * Lengths are in solar radii and in Mm, in the plane of the sky through the centre of the disk: the
 * metadata's "rsun" is the solar radius in pixels of the native image, and the Sun is so far away
 * that equal angles are equal lengths. A solar radius is the nominal one of IAU 2015 Resolution B3,
 * 695 700 km. The x axis points to solar west, which is to the right, and y up to solar north.
 */
namespace SolarPosition {

/// The solar disk in pixels of a rendered frame, as far as the metadata gives it.
struct Disk
{
    double radiusX = 0.0; ///< across; 0 when unknown
    double radiusY = 0.0; ///< likewise; differs if the service has changed the proportion
    std::optional<QPointF> centre;
};

/**
 * The disk on a frame.
 *
 * The reference pixel is the centre of the disk as FITS counts: the middle of the first pixel is 1,
 * and rows are counted upwards from the bottom edge, though the frame's own are counted downwards.
 * Native pixels become those of the frame by its width / "width" and height / "height". A reference
 * pixel of 0, 0 means that the manifest has none.
 */
Disk diskOn(const QSize &frame, const QJsonObject &metadata);

/// The vector from the centre of the disk to @p pixel in solar radii; nothing when unknown.
std::optional<QPointF> offset(const QPointF &pixel, const Disk &disk);

/// Position of @p pixel, for the user; empty when the metadata does not give it.
QString pixelText(const QPointF &pixel, const QSize &frame, const QJsonObject &metadata);

/// Likewise the width and height of a region of @p size pixels; empty if that is.
QString sizeText(const QSize &size, const QSize &frame, const QJsonObject &metadata);

} // namespace SolarPosition
