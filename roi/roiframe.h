#pragma once

#include <QImage>
#include <QRect>
#include <QRectF>
#include <QSize>

#include <map>
#include <utility>

/// The pictures of a region film, made from original frames, which are only read.
namespace RoiFrame {

/**
 * The pixels of a region, cut out before anything is converted.
 *
 * Opaque RGB32 unless something in the cut is transparent, then ARGB32: a picture without alpha
 * is written and encoded in half the time and gives the same film.
 */
QImage crop(const QImage &frame, const QRect &pixels);

/**
 * A picture turned by minus the stored rotation, in quarter turns that move whole pixels.
 *
 * The choice "90 deg clockwise" (90) therefore turns it counter-clockwise on screen. Stored sets
 * rely on that.
 */
QImage turned(const QImage &picture, int storedRotation);

/**
 * Kilometres per pixel, along the horizontal of the finished picture, of a zoom introduction frame.
 *
 * A view of v frame pixels drawn over p picture pixels makes each of these v / p times as long as
 * a pixel of the frame. The view may be squeezed more in one direction than in the other, and the
 * scale bar is drawn horizontally after the turn: of a picture that a quarter turn lays on its side
 * it is therefore the height that counts. A cut needs none of this, its pixels are the frame's.
 */
double zoomKmPerPixel(double frameKmPerPixel, const QRectF &view, const QSize &pictureSize,
                      int storedRotation);

} // namespace RoiFrame

/**
 * One frame, ready to be drawn at any reduction: the source of a zoom introduction.
 *
 * Holds the frame and its halvings, those across apart from those down, so that the whole disk
 * squeezed into a small picture is averaged, where drawing it straight from the frame would drop
 * most pixels and flicker.
 */
class ZoomSource
{
public:
    explicit ZoomSource(const QImage &frame);

    QSize frameSize() const { return m_frameSize; }

    /// The part @p view of the frame over a whole picture of @p size; black beyond the frame.
    QImage picture(const QRectF &view, const QSize &size) const;

private:
    const QImage &level(int across, int down) const;

    QSize m_frameSize;
    mutable std::map<std::pair<int, int>, QImage> m_levels; // by halvings; made when needed
};
