#pragma once

#include <QByteArray>
#include <QCache>
#include <QMutex>

#include <memory>

namespace Simulator {

class Archive;
struct ArchiveImage;
struct IndexedPicture;

/**
 * Renders images of the archive and keeps the most recently used ones.
 *
 * May be used from several threads.
 */
class PictureStore
{
public:
    explicit PictureStore(std::shared_ptr<const Archive> archive);

    /// How much the kept pictures may take together.
    void setLimit(qint64 bytes);

    /// The whole image as a PNG @p widthPx wide, which is at most its native width.
    QByteArray png(const ArchiveImage &image, int widthPx);
    /// The same with one block of the renderer left empty; never kept.
    QByteArray pngWithMissingBlock(const ArchiveImage &image, int widthPx, bool transparent) const;

private:
    IndexedPicture render(const ArchiveImage &image, int widthPx) const;

    std::shared_ptr<const Archive> m_archive;
    QMutex m_mutex;
    QCache<QByteArray, QByteArray> m_kept; // costs are kilobytes
};

} // namespace Simulator
