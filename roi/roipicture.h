#pragma once

#include "roi/roisession.h"
#include "roi/roiset.h"

class QImage;
class ZoomSource;

/// What is drawn over the pictures of a film.
struct RoiOverlays
{
    bool timestamp = true;
    bool source = true;
    bool scale = true;
};

/// How the films of one datasource look, all but the region itself.
struct RoiLook
{
    RoiOverlays overlays;
    QString nickname;
    QJsonObject scaleMetadata; ///< for frames that have none of their own; may be empty
};

/// The finished pictures of a region film: cut, turned and annotated.
namespace RoiPicture {

/// The picture that a film of @p roi shows of a decoded frame, which is not null.
QImage ofFrame(const QImage &decoded, const RoiSourceFrame &frame, const Roi &roi,
               const RoiLook &look);

/// Picture @p index of @p count of the zoom introduction, which begins with the whole of @p frame.
QImage ofIntro(const ZoomSource &zoom, const RoiSourceFrame &frame, const Roi &roi,
               const RoiLook &look, int index, int count);

} // namespace RoiPicture
