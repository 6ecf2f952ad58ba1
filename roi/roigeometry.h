#pragma once

#include <QRect>
#include <QRectF>
#include <QSize>

/// The position of a region on a frame, its rotation, and the path of the zoom introduction.
namespace RoiGeometry {

/**
 * The pixels that a region covers on a frame of @p frame pixels.
 *
 * @param normalized  in frame widths and heights, from the top left corner; any value, also NaN
 * @return            starts inside the frame; both sides are even and at least 2, because 4:2:0
 *                    video has no odd sizes, even if the frame is smaller; empty for an empty frame
 */
QRect pixelRect(const QRectF &normalized, const QSize &frame);

/// Converts pixels to fractions of a frame, which must not be empty.
QRectF normalizedRect(const QRectF &pixels, const QSize &frame);

/**
 * @p normalized, changed so that it covers @p pixels of a frame that is not empty.
 *
 * Sides that already match are not changed: fractions of a pixel, and parts beyond this frame's
 * edge, matter on frames of other sizes.
 */
QRectF coveringPixels(const QRectF &normalized, const QRect &pixels, const QSize &frame);

/// A stored rotation as 0, 90, 180 or 270 degrees; 0 for anything but a quarter turn.
int reducedRotation(int stored);

/// Index of a stored rotation among the choices offered: none, 90, -90, 180.
int rotationIndex(int stored);

/// The rotation stored for the choice at an index, as rotationIndex() gives it.
int rotationAt(int index);

/// Number of pictures in a zoom introduction, rounded half up; at least two.
int introFrameCount(double seconds, int fps);

/**
 * The part of the frame that picture @p index of @p count (at least 2) of the introduction shows.
 *
 * Smoothstep from the whole frame to @p region, so that the motion eases in and out. The last
 * picture shows exactly the region.
 */
QRectF zoomView(const QRectF &region, const QSize &frame, int index, int count);

} // namespace RoiGeometry
