#include "roi/roivideoplan.h"

#include "roi/roigeometry.h"

int RoiVideoPlan::introFrames() const
{
    return intro ? RoiGeometry::introFrameCount(introSeconds, fps) : 0;
}

int RoiVideoPlan::totalFrames() const
{
    int perRegion = 0;
    for (const RoiFilmSource &filmed : sources)
        perRegion += introFrames() + filmed.source.frames.size();
    return perRegion * rois.size();
}
