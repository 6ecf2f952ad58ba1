#pragma once

#include <QRect>
#include <QRectF>
#include <QSize>

/// Where a region lies on a frame, how it is turned, and the way the zoom introduction takes to it.
namespace RoiGeometry {

/**
 * The pixels that a region covers on a frame of @p frame pixels.
 *
 * @param normalized  in frame widths and heights, from the top left corner; any number is taken
 * @return            begins inside the frame; even and at least 2 on either side, because 4:2:0
 *                    video has no odd sizes, so that on a frame of one pixel it reaches beyond it;
 *                    empty for an empty frame
 */
QRect pixelRect(const QRectF &normalized, const QSize &frame);

/// Pixels as fractions of a frame that is not empty.
QRectF normalizedRect(const QRectF &pixels, const QSize &frame);

/**
 * @p normalized, changed so that it covers @p pixels of a frame that is not empty.
 *
 * Sides that are there already stay as they are: what they hold beyond whole pixels, or beyond this
 * frame's edge, stays for frames of other sizes.
 */
QRectF coveringPixels(const QRectF &normalized, const QRect &pixels, const QSize &frame);

/// The part of @p stored degrees that turns a picture: 0, 90, 180 or 270; 0 for anything between.
int reducedRotation(int stored);

/// Position of a stored rotation among the choices offered: none, 90, -90, 180.
int rotationIndex(int stored);

/// The rotation stored for a choice; 0 when there is no such choice.
int rotationAt(int index);

/// Pictures in a zoom introduction: the nearest whole number, half up, and never fewer than two.
int introFrameCount(double seconds, int fps);

/**
 * What picture @p index of @p count (at least 2) of the introduction shows of the frame.
 *
 * Smoothstep from the whole frame to @p region: the motion eases in and out. The last picture
 * shows the region exactly.
 */
QRectF zoomView(const QRectF &region, const QSize &frame, int index, int count);

} // namespace RoiGeometry
