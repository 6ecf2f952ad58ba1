#include "roi/roiframe.h"

#include "roi/roigeometry.h"

#include <QPainter>
#include <QTransform>

#include <algorithm>

namespace {

constexpr int smallestLevelPx = 64; // smaller levels would save no time

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

/// How often a side can be halved and still have at least one pixel for each of the picture's.
int halvings(double scale, int sidePx)
{
    int count = 0;
    for (; scale <= 0.5 && sidePx >= 2 * smallestLevelPx; scale *= 2.0, sidePx /= 2)
        ++count;
    return count;
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
    return picture.transformed(QTransform().rotate(-rotation)); // which keeps its format
}

double RoiFrame::zoomKmPerPixel(double frameKmPerPixel, const QRectF &view,
                                const QSize &pictureSize, int storedRotation)
{
    const bool onItsSide = RoiGeometry::reducedRotation(storedRotation) % 180 != 0;
    return frameKmPerPixel *
           (onItsSide ? view.height() / pictureSize.height() : view.width() / pictureSize.width());
}

ZoomSource::ZoomSource(const QImage &frame)
    : m_frameSize(frame.size())
    , m_levels{{{0, 0},
                frame.convertToFormat(frame.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied
                                                              : QImage::Format_RGB32)}}
{}

QImage ZoomSource::picture(const QRectF &view, const QSize &size) const
{
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(Qt::black);
    const double scaleX = size.width() / view.width();
    const double scaleY = size.height() / view.height();
    const QImage &source =
        level(halvings(scaleX, m_frameSize.width()), halvings(scaleY, m_frameSize.height()));
    const double levelX = static_cast<double>(source.width()) / m_frameSize.width();
    const double levelY = static_cast<double>(source.height()) / m_frameSize.height();
    const QRectF visible = view.intersected(QRectF(QPointF(), m_frameSize));

    QPainter painter(&picture);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(QRectF((visible.x() - view.x()) * scaleX, (visible.y() - view.y()) * scaleY,
                             visible.width() * scaleX, visible.height() * scaleY),
                      source,
                      QRectF(visible.x() * levelX, visible.y() * levelY, visible.width() * levelX,
                             visible.height() * levelY));
    return picture;
}

/// The frame halved @p across and @p down times; each level is made from a larger one.
const QImage &ZoomSource::level(int across, int down) const
{
    const auto made = m_levels.find({across, down});
    if (made != m_levels.cend())
        return made->second;
    const QImage &larger =
        level(across >= down ? across - 1 : across, down >= across ? down - 1 : down);
    const QSize size(m_frameSize.width() >> across, m_frameSize.height() >> down);
    return m_levels[{across, down}] =
               larger.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}
