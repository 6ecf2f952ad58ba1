#include "roi/roigeometry.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

constexpr std::array<int, 4> offeredRotations = {0, 90, -90, 180};
constexpr int smallestSidePx = 2;

/// Rounds half away from zero. Clamps before the conversion to int: a stored number may be huge.
int limitedPixels(double value, int highest)
{
    if (std::isnan(value))
        return 0;
    return static_cast<int>(std::clamp(std::round(value), 0.0, static_cast<double>(highest)));
}

int evenSide(int side)
{
    return std::max(side - side % 2, smallestSidePx);
}

} // namespace

QRect RoiGeometry::pixelRect(const QRectF &normalized, const QSize &frame)
{
    if (frame.isEmpty())
        return {};
    const int frameWidth = frame.width();
    const int frameHeight = frame.height();
    const int x = limitedPixels(frameWidth * normalized.x(), std::max(frameWidth - 2, 0));
    const int y = limitedPixels(frameHeight * normalized.y(), std::max(frameHeight - 2, 0));
    const int width = limitedPixels(frameWidth * normalized.width(), frameWidth - x);
    const int height = limitedPixels(frameHeight * normalized.height(), frameHeight - y);
    return {x, y, evenSide(width), evenSide(height)};
}

QRectF RoiGeometry::normalizedRect(const QRectF &pixels, const QSize &frame)
{
    return {pixels.x() / frame.width(), pixels.y() / frame.height(), pixels.width() / frame.width(),
            pixels.height() / frame.height()};
}

QRectF RoiGeometry::coveringPixels(const QRectF &normalized, const QRect &pixels,
                                   const QSize &frame)
{
    const QRect before = pixelRect(normalized, frame);
    const QRectF whole = normalizedRect(pixels, frame);
    const QRectF changed(before.x() == pixels.x() ? normalized.x() : whole.x(),
                         before.y() == pixels.y() ? normalized.y() : whole.y(),
                         before.width() == pixels.width() ? normalized.width() : whole.width(),
                         before.height() == pixels.height() ? normalized.height() : whole.height());
    return pixelRect(changed, frame) == pixels ? changed : whole;
}

int RoiGeometry::reducedRotation(int stored)
{
    const int reduced = (stored % 360 + 360) % 360;
    return reduced % 90 == 0 ? reduced : 0;
}

int RoiGeometry::rotationIndex(int stored)
{
    const int reduced = reducedRotation(stored);
    const auto *const found =
        std::find_if(offeredRotations.cbegin(), offeredRotations.cend(),
                     [reduced](int offered) { return reducedRotation(offered) == reduced; });
    return static_cast<int>(found - offeredRotations.cbegin());
}

int RoiGeometry::rotationAt(int index)
{
    return offeredRotations[static_cast<size_t>(index)];
}

int RoiGeometry::introFrameCount(double seconds, int fps)
{
    return std::max(2, static_cast<int>(std::floor(seconds * fps + 0.5)));
}

QRectF RoiGeometry::zoomView(const QRectF &region, const QSize &frame, int index, int count)
{
    const double time = static_cast<double>(index) / (count - 1);
    const double share = time * time * (3.0 - 2.0 * time);
    const auto between = [share](double from, double to) { return from + (to - from) * share; };
    return {between(0.0, region.x()), between(0.0, region.y()),
            between(frame.width(), region.width()), between(frame.height(), region.height())};
}
