#pragma once

#include <QByteArray>
#include <QCache>
#include <QPair>

#include <memory>

namespace Simulator {

class Archive;
struct ArchiveImage;

/// Renders images of the archive and keeps the most recently used ones.
class PictureStore final
{
public:
    explicit PictureStore(std::shared_ptr<const Archive> archive);

    /// The whole image as a PNG @p widthPx wide, which is at most its native width.
    QByteArray png(const ArchiveImage &image, int widthPx);

private:
    using Key = QPair<qint64, int>; // id and width

    std::shared_ptr<const Archive> m_archive;
    QCache<Key, QByteArray> m_kept; // costs are kilobytes
};

} // namespace Simulator
