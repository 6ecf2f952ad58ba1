#include "simulator/service/picturestore.h"

#include "simulator/archive/archive.h"
#include "simulator/archive/sundistance.h"
#include "simulator/hash.h"
#include "simulator/service/pngencoder.h"
#include "simulator/sun/scene.h"

#include <QImage>

#include <algorithm>
#include <cmath>

namespace Simulator {

namespace {

constexpr int keptKilobytes = 256 * 1024;

/// What a rendering of the whole image, @p widthPx wide, shows.
SceneView viewOf(const ArchiveSource &source, const ArchiveImage &image, int widthPx)
{
    const double zoom = static_cast<double>(widthPx) / source.widthPx;
    SceneView view;
    view.widthPx = widthPx;
    view.heightPx = std::max(static_cast<int>(std::lround(source.heightPx * zoom)), 1);
    view.disk = {(source.refPixelX - 0.5) * zoom, (source.heightPx - source.refPixelY + 0.5) * zoom,
                 source.rsunPx / sunDistanceAu(source, image.unixTime) * zoom};
    view.unixTime = image.unixTime;
    view.grainSeed =
        hashOf(static_cast<quint64>(source.sourceId), static_cast<quint64>(image.slot));
    view.look = lookOf(source.path);
    return view;
}

} // namespace

PictureStore::PictureStore(std::shared_ptr<const Archive> archive)
    : m_archive(std::move(archive)), m_kept(keptKilobytes)
{}

QByteArray PictureStore::png(const ArchiveImage &image, int widthPx)
{
    const Key key(m_archive->idOf(image), widthPx);
    if (const QByteArray *kept = m_kept.object(key))
        return *kept;
    QByteArray bytes = encodePng(renderScene(viewOf(m_archive->sourceOf(image), image, widthPx)));
    m_kept.insert(key, new QByteArray(bytes), bytes.size() / 1024 + 1);
    return bytes;
}

} // namespace Simulator
