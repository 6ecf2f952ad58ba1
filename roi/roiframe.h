#pragma once

#include <QImage>
#include <QRect>
#include <QRectF>
#include <QSize>

#include <map>
#include <utility>

/// Makes the pictures of a region film from original frames.
namespace RoiFrame {

/**
 * Cuts out the pixels of a region, before any conversion.
 *
 * The result is RGB32, or ARGB32 if part of it is transparent. A picture without alpha takes half
 * the time to write and to encode and gives the same film.
 */
QImage crop(const QImage &frame, const QRect &pixels);

/**
 * Turns a picture by minus the stored rotation, if that is a quarter turn; no pixel is resampled.
 *
 * The choice "90 deg clockwise" (90) therefore turns it counter-clockwise on screen; existing
 * rois.json files rely on that.
 */
QImage turned(const QImage &picture, int storedRotation);

/**
 * Kilometres per pixel along the horizontal of a finished picture of the zoom introduction.
 *
 * When v pixels of the frame are drawn over p pixels of the picture, each of these is v / p times
 * as long as a pixel of the frame. The two directions may be scaled differently. The scale bar is
 * drawn horizontally after the turn, so after a quarter turn the height of the picture counts.
 */
double zoomKmPerPixel(double frameKmPerPixel, const QRectF &view, const QSize &pictureSize,
                      int storedRotation);

} // namespace RoiFrame

/**
 * A frame that can be drawn at any reduction, for the zoom introduction.
 *
 * Keeps the frame halved repeatedly, in each direction independently, so that strong reductions
 * average all pixels. Drawn directly from the frame most pixels would be skipped, and the film
 * would flicker.
 */
class ZoomSource final
{
public:
    explicit ZoomSource(const QImage &frame);

    QSize frameSize() const { return m_frameSize; }

    /// A picture of @p size that shows the part @p view of the frame; black outside the frame.
    QImage picture(const QRectF &view, const QSize &size) const;

private:
    const QImage &level(int across, int down) const;

    QSize m_frameSize;
    mutable std::map<std::pair<int, int>, QImage>
        m_levels; // by number of halvings; made when needed
};
