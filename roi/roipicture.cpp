#include "roi/roipicture.h"

#include "imaging/frameannotation.h"
#include "imaging/metricscale.h"
#include "roi/roiframe.h"
#include "roi/roigeometry.h"
#include "roi/scalelookup.h"

namespace {

QImage finished(const QImage &upright, const RoiSourceFrame &frame, const Roi &roi,
                const RoiLook &look, double kmPerPixel)
{
    QImage picture = RoiFrame::turned(upright, roi.rotation);
    const RoiOverlays &overlays = look.overlays;
    if (overlays.timestamp || overlays.source || overlays.scale)
        drawFrameAnnotations(picture, frame.actualUtc, look.nickname, overlays.timestamp,
                             overlays.source, overlays.scale, kmPerPixel);
    return picture;
}

/// Cropping does not change the length of a pixel, so the width of the full frame counts.
double frameKmPerPixel(const RoiSourceFrame &frame, const RoiLook &look, int frameWidthPx)
{
    const bool own = ScaleLookup::isUsable(frame.metadata);
    return MetricScale::kmPerPixel(own ? frame.metadata : look.scaleMetadata, frameWidthPx);
}

} // namespace

QImage RoiPicture::ofFrame(const QImage &decoded, const RoiSourceFrame &frame, const Roi &roi,
                           const RoiLook &look)
{
    const QRect pixels = RoiGeometry::pixelRect(roi.rect, decoded.size());
    return finished(RoiFrame::crop(decoded, pixels), frame, roi, look,
                    frameKmPerPixel(frame, look, decoded.width()));
}

QImage RoiPicture::ofIntro(const ZoomSource &zoom, const RoiSourceFrame &frame, const Roi &roi,
                           const RoiLook &look, int index, int count)
{
    const QSize frameSize = zoom.frameSize();
    const QRect region = RoiGeometry::pixelRect(roi.rect, frameSize);
    const QRectF view = RoiGeometry::zoomView(region, frameSize, index, count);
    const double km = RoiFrame::zoomKmPerPixel(frameKmPerPixel(frame, look, frameSize.width()),
                                               view, region.size(), roi.rotation);
    return finished(zoom.picture(view, region.size()), frame, roi, look, km);
}
