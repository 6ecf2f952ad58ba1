#include "simulator/scene.h"

#include "simulator/archive.h"
#include "simulator/hash.h"
#include "simulator/imagegeometry.h"
#include "simulator/indexedpicture.h"

#include <algorithm>
#include <cmath>

namespace Simulator {

SceneView viewOf(const ArchiveSource &source, const ArchiveImage &image, int widthPx)
{
    const ImageGeometry geometry = geometryOf(source, image);
    const double zoom = double(widthPx) / geometry.widthPx;
    SceneView view;
    view.widthPx = widthPx;
    view.heightPx = std::max(int(std::lround(geometry.heightPx * zoom)), 1);
    view.disk = {(geometry.refPixelX - 0.5) * zoom,
                 (geometry.heightPx - geometry.refPixelY + 0.5) * zoom, geometry.rsunPx * zoom};
    view.unixTime = image.unixTime;
    view.grainSeed = hashOf(quint64(source.sourceId), quint64(image.slot));
    view.look = lookOf(source.path);
    view.alphaWhereDark = source.alphaWhereDark;
    return view;
}

IndexedPicture renderScene(const SceneView &view)
{
    IndexedPicture picture{view.widthPx, view.heightPx, {}, colourTable(view.look)};
    picture.pixels.resize(size_t(view.widthPx) * size_t(view.heightPx));
    const double turn = double(view.unixTime % (27 * 86400)) / (27.0 * 86400.0) * 6.283185307;
    size_t at = 0;
    quint64 grain = view.grainSeed;
    for (int row = 0; row < view.heightPx; ++row)
        for (int column = 0; column < view.widthPx; ++column) {
            const double x = (column + 0.5 - view.disk.centreX) / view.disk.radius;
            const double y = (row + 0.5 - view.disk.centreY) / view.disk.radius;
            const double r2 = x * x + y * y;
            double level = 0.0;
            if (r2 < 1.0) {
                const double mu = std::sqrt(1.0 - r2);
                const double longitude = std::atan2(x, mu) - turn;
                level = 60.0 + 60.0 * mu +
                        40.0 * std::sin(7.0 * longitude + 9.0 * y) * std::sin(11.0 * y - longitude);
            } else {
                level = 70.0 * std::exp(-(std::sqrt(r2) - 1.0) * 8.0);
            }
            grain = grain * 6364136223846793005ULL + 1442695040888963407ULL;
            if (level > 2.0)
                level += double(grain >> 60) - 8.0;
            picture.pixels[at++] = uchar(std::clamp(level, r2 < 1.0 ? 8.0 : 0.0, 254.0));
        }
    return picture;
}

} // namespace Simulator
