#include "roi/roivideoplan.h"

#include "roi/roigeometry.h"

#include <algorithm>

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

void RoiVideoPlan::takeTicked(const QVector<Roi> &all)
{
    for (int row = 0; row < all.size(); ++row) {
        if (all.at(row).enabled)
            rois.append({row + 1, all.at(row)});
    }
}

QStringList RoiVideoPlan::leaveOutEmpty()
{
    QStringList empty;
    const auto first =
        std::stable_partition(sources.begin(), sources.end(), [](const RoiFilmSource &filmed) {
            return !filmed.source.frames.isEmpty();
        });
    for (auto left = first; left != sources.end(); ++left)
        empty.append(left->source.nickname);
    sources.erase(first, sources.end());
    return empty;
}
