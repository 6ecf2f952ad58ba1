#include "simulator/sun/missingblock.h"

#include "simulator/sun/indexedpicture.h"
#include "simulator/sun/scene.h"

#include <algorithm>

namespace Simulator {

namespace {

/// The palette's last place, which pictures leave free.
constexpr int emptyIndex = 255;

/// The block that holds a point left of the disk's centre, a little above it.
int blockStart(double centre, double offset, int sizePx, int blockPx)
{
    const int blocks = std::max(sizePx / blockPx, 1);
    return std::clamp(int(centre + offset) / blockPx, 0, blocks - 1) * blockPx;
}

} // namespace

void leaveBlockEmpty(IndexedPicture &picture, const Disk &disk, bool transparent)
{
    const int blockPx = std::clamp(std::min(picture.widthPx, picture.heightPx) / 16, 64, 256);
    const int left = blockStart(disk.centreX, -0.4 * disk.radius, picture.widthPx, blockPx);
    const int top = blockStart(disk.centreY, -0.1 * disk.radius, picture.heightPx, blockPx);
    while (picture.palette.size() <= emptyIndex)
        picture.palette.append(qRgb(0, 0, 0));
    picture.palette[emptyIndex] = transparent ? qRgba(0, 0, 0, 0) : qRgb(0, 0, 0);
    for (int row = top; row < std::min(top + blockPx, picture.heightPx); ++row) {
        uchar *pixels = picture.pixels.data() + size_t(row) * size_t(picture.widthPx);
        std::fill(pixels + left, pixels + std::min(left + blockPx, picture.widthPx),
                  uchar(emptyIndex));
    }
}

} // namespace Simulator
