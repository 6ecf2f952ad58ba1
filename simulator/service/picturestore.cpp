#include "simulator/service/picturestore.h"

#include "simulator/archive/archive.h"
#include "simulator/archive/imagegeometry.h"
#include "simulator/hash.h"
#include "simulator/service/pngencoder.h"
#include "simulator/sun/indexedpicture.h"
#include "simulator/sun/missingblock.h"
#include "simulator/sun/scene.h"

#include <QMutexLocker>

#include <algorithm>

namespace Simulator {

namespace {

constexpr qint64 usualLimitBytes = 256LL * 1024 * 1024;
constexpr int bytesPerCostUnit = 1024;

QByteArray keyOf(const ArchiveImage &image, int widthPx)
{
    return QByteArray::number(image.sourceIndex) + ' ' + QByteArray::number(image.slot) + ' ' +
           QByteArray::number(widthPx);
}

} // namespace

PictureStore::PictureStore(std::shared_ptr<const Archive> archive) : m_archive(std::move(archive))
{
    setLimit(usualLimitBytes);
}

void PictureStore::setLimit(qint64 bytes)
{
    const QMutexLocker locker(&m_mutex);
    m_kept.setMaxCost(int(std::max<qint64>(bytes / bytesPerCostUnit, 0)));
}

QByteArray PictureStore::png(const ArchiveImage &image, int widthPx)
{
    const QByteArray key = keyOf(image, widthPx);
    {
        const QMutexLocker locker(&m_mutex);
        if (const QByteArray *kept = m_kept.object(key))
            return *kept;
    }
    QByteArray bytes = encodePng(render(image, widthPx));
    const QMutexLocker locker(&m_mutex);
    m_kept.insert(key, new QByteArray(bytes), bytes.size() / bytesPerCostUnit + 1);
    return bytes;
}

QByteArray PictureStore::pngWithMissingBlock(const ArchiveImage &image, int widthPx,
                                             bool transparent) const
{
    IndexedPicture picture = render(image, widthPx);
    const SceneView view = viewOf(m_archive->sourceOf(image), image, widthPx);
    leaveBlockEmpty(picture, view.disk, transparent);
    return encodePng(picture);
}

IndexedPicture PictureStore::render(const ArchiveImage &image, int widthPx) const
{
    return renderScene(viewOf(m_archive->sourceOf(image), image, widthPx));
}

} // namespace Simulator
