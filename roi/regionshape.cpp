#include "roi/regionshape.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

constexpr std::array<double, 5> proportions = {0.0, 1.0, 4.0 / 3.0, 16.0 / 9.0, 9.0 / 16.0};
constexpr int smallestPx = 2;

/// The largest even number up to @p px, but 2 at the least.
int evenDown(double px)
{
    return std::max(static_cast<int>(px) / 2 * 2, smallestPx);
}

int evenNearest(double px)
{
    return std::max(2 * static_cast<int>(std::lround(px / 2.0)), smallestPx);
}

/// Also where a frame is smaller than a region may be.
int limited(int value, int lowest, int highest)
{
    return std::max(std::min(value, highest), lowest);
}

/// The largest size of a proportion in @p room whose width does not exceed @p width.
QSize shaped(double width, const QSize &room, double proportion)
{
    const double widest = std::min<double>(room.width(), room.height() * proportion);
    const int even = std::min(evenNearest(width), evenDown(widest));
    return {even, std::min(evenNearest(even / proportion), evenDown(room.height()))};
}

/// One pair of opposite sides: where it begins and how long it is.
struct Span
{
    int start;
    int length;
};

/// A span with one end dragged; the other end stays.
Span dragged(Span span, int side, double by, int framePx)
{
    const int end = span.start + span.length;
    if (side > 0) {
        const double wanted = std::min<double>(span.length + by, framePx - span.start);
        return {span.start, evenDown(wanted)};
    }
    if (side < 0) {
        const int length = evenDown(std::min<double>(span.length - by, end));
        return {end - length, length};
    }
    return span;
}

/// Where a side of the new length begins: it keeps its end, or with side 0 its middle.
int beginOf(Span span, int side, int length, int framePx)
{
    if (side > 0)
        return span.start;
    if (side < 0)
        return span.start + span.length - length;
    return limited(span.start + (span.length - length) / 2, 0, framePx - length);
}

/// Pixels between the end that stays and the border of the frame on the dragged side.
int roomFor(Span span, int side, int framePx)
{
    if (side > 0)
        return framePx - span.start;
    return side < 0 ? span.start + span.length : framePx;
}

} // namespace

double RegionShape::proportionAt(int choice)
{
    return proportions[static_cast<size_t>(choice)];
}

QRectF RegionShape::spanned(const QPointF &from, const QPointF &to, const QSize &frame,
                            double proportion)
{
    if (proportion <= 0.0)
        return QRectF(from, to).normalized().intersected(QRectF(QPointF(), frame));
    const bool leftwards = to.x() < from.x();
    const bool upwards = to.y() < from.y();
    const double width =
        std::max(std::abs(to.x() - from.x()), std::abs(to.y() - from.y()) * proportion);
    const QPoint anchor(static_cast<int>(from.x()), static_cast<int>(from.y()));
    const QSize room(leftwards ? anchor.x() : frame.width() - anchor.x(),
                     upwards ? anchor.y() : frame.height() - anchor.y());
    if (width < smallestPx || width / proportion < smallestPx || room.width() < smallestPx ||
        room.height() < smallestPx)
        return {from, QSizeF()};
    const QSize size = shaped(width, room, proportion);
    return QRect(QPoint(leftwards ? anchor.x() - size.width() : anchor.x(),
                        upwards ? anchor.y() - size.height() : anchor.y()),
                 size);
}

QRect RegionShape::resized(const QRect &start, Sides sides, const QPointF &by, const QSize &frame,
                           double proportion)
{
    const Span across{start.x(), start.width()};
    const Span down{start.y(), start.height()};
    if (proportion <= 0.0) {
        const Span x = dragged(across, sides.x, by.x(), frame.width());
        const Span y = dragged(down, sides.y, by.y(), frame.height());
        return {x.start, y.start, x.length, y.length};
    }
    const double width = start.width() + sides.x * by.x();
    const double height = start.height() + sides.y * by.y();
    const double wanted =
        std::max(sides.x != 0 ? width : 0.0, sides.y != 0 ? height * proportion : 0.0);
    const QSize room(roomFor(across, sides.x, frame.width()),
                     roomFor(down, sides.y, frame.height()));
    const QSize size = shaped(wanted, room, proportion);
    return {QPoint(beginOf(across, sides.x, size.width(), frame.width()),
                   beginOf(down, sides.y, size.height(), frame.height())),
            size};
}

QRect RegionShape::moved(const QRect &start, const QPointF &by, const QSize &frame)
{
    const QPoint wanted = (QPointF(start.topLeft()) + by).toPoint();
    return {QPoint(limited(wanted.x(), 0, frame.width() - start.width()),
                   limited(wanted.y(), 0, frame.height() - start.height())),
            start.size()};
}

QRect RegionShape::middle(const QSize &frame, double proportion)
{
    const QSize half(evenDown(frame.width() / 2.0), evenDown(frame.height() / 2.0));
    const QSize size = proportion > 0.0 ? shaped(half.width(), half, proportion) : half;
    return {QPoint((frame.width() - size.width()) / 2, (frame.height() - size.height()) / 2), size};
}
