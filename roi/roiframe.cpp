#include "roi/roiframe.h"

#include "roi/roigeometry.h"

#include <QPainter>
#include <QTransform>

#include <algorithm>
#include <cmath>

namespace {

constexpr int smallestLevelPx = 64; // below this a reduction by two is no longer worth a level

bool isOpaque(const QImage &argb)
{
    for (int y = 0; y < argb.height(); ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(argb.constScanLine(y));
        if (!std::all_of(line, line + argb.width(),
                         [](QRgb pixel) { return qAlpha(pixel) == 255; }))
            return false;
    }
    return true;
}

} // namespace

QImage RoiFrame::crop(const QImage &frame, const QRect &pixels)
{
    QImage cut = frame.copy(pixels);
    if (cut.hasAlphaChannel()) {
        cut = std::move(cut).convertToFormat(QImage::Format_ARGB32);
        if (!isOpaque(cut))
            return cut;
    }
    return std::move(cut).convertToFormat(QImage::Format_RGB32);
}

QImage RoiFrame::turned(const QImage &picture, int storedRotation)
{
    const int rotation = RoiGeometry::reducedRotation(storedRotation);
    if (rotation == 0)
        return picture;
    return picture.transformed(QTransform().rotate(-rotation), Qt::SmoothTransformation)
        .convertToFormat(picture.format());
}

double RoiFrame::zoomKmPerPixel(double frameKmPerPixel, const QRectF &view,
                                const QSize &pictureSize, int storedRotation)
{
    const bool onItsSide = RoiGeometry::reducedRotation(storedRotation) % 180 != 0;
    return frameKmPerPixel *
           (onItsSide ? view.height() / pictureSize.height() : view.width() / pictureSize.width());
}

ZoomSource::ZoomSource(const QImage &frame)
{
    m_levels.push_back(frame.convertToFormat(
        frame.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32));
    QSize half = frame.size() / 2;
    while (std::min(half.width(), half.height()) >= smallestLevelPx) {
        m_levels.push_back(
            m_levels.back().scaled(half, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
        half /= 2;
    }
}

QImage ZoomSource::picture(const QRectF &view, const QSize &size) const
{
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(Qt::black);
    const double scaleX = size.width() / view.width();
    const double scaleY = size.height() / view.height();
    const QImage &level = levelFor(1.0 / std::sqrt(scaleX * scaleY));
    const double levelX = double(level.width()) / frameSize().width();
    const double levelY = double(level.height()) / frameSize().height();
    const QRectF visible = view.intersected(QRectF(QPointF(), frameSize()));

    QPainter painter(&picture);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(QRectF((visible.x() - view.x()) * scaleX, (visible.y() - view.y()) * scaleY,
                             visible.width() * scaleX, visible.height() * scaleY),
                      level,
                      QRectF(visible.x() * levelX, visible.y() * levelY, visible.width() * levelX,
                             visible.height() * levelY));
    return picture;
}

/// The smallest level that still has a pixel for each pixel of the picture.
const QImage &ZoomSource::levelFor(double reduction) const
{
    size_t level = 0;
    for (; reduction >= 2.0 && level + 1 < m_levels.size(); reduction /= 2.0)
        ++level;
    return m_levels[level];
}
