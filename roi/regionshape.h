#pragma once

#include <QPoint>
#include <QPointF>
#include <QRect>
#include <QRectF>
#include <QSize>

/**
 * Regions under the mouse: what a drag spans, resizes and moves, in pixels of the frame.
 *
 * A proportion is width / height, 0 for a free one; it is held to the nearest even number of
 * pixels.
 */
namespace RegionShape {

/// The sides that a drag moves, each as -1 (left, top), 0 (none) or 1 (right, bottom).
struct Sides
{
    int x = 0;
    int y = 0;
};

/// The proportion of a choice of the box "Shape:".
double proportionAt(int choice);

/**
 * The rectangle that a drag @p from one point @p to another draws inside the frame.
 *
 * A free one keeps fractions of a pixel; one with a proportion has even sides, unless it is smaller
 * than two pixels and thus too small for a region.
 */
QRectF spanned(const QPointF &from, const QPointF &to, const QSize &frame, double proportion);

/**
 * @p start with some sides dragged @p by that many pixels; the others stay where they are.
 *
 * The result has even sides, is at least 2 x 2 and lies inside the frame. With a proportion, a
 * corner follows the longer movement of the mouse, and dragging one side also changes the two sides
 * next to it, by equal amounts.
 */
QRect resized(const QRect &start, Sides sides, const QPointF &by, const QSize &frame,
              double proportion);

/// @p start moved @p by that many pixels, as far as the frame goes.
QRect moved(const QRect &start, const QPointF &by, const QSize &frame);

/// Half of the frame, in its middle; with a proportion what fits into that half.
QRect middle(const QSize &frame, double proportion);

} // namespace RegionShape
