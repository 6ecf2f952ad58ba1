#include "imaging/framedecoder.h"

#include "base/regularfile.h"

#include <QFile>
#include <QImage>
#include <QImageReader>
#include <QPixelFormat>

namespace {

constexpr int maxSidePx = 16384;
constexpr qint64 maxPixels = 100'000'000;
constexpr qint64 maxBytes = 500'000'000;
constexpr int decodedBytesPerPixel = 4;

/// Bytes per pixel during decoding; formats other than the final one need a converted copy as well.
int neededBytesPerPixel(QImage::Format stored)
{
    const int storedBytes = (QImage::toPixelFormat(stored).bitsPerPixel() + 7) / 8;
    return storedBytes == decodedBytesPerPixel ? storedBytes : storedBytes + decodedBytesPerPixel;
}

bool isWithinLimits(const QImageReader &reader)
{
    const QSize size = reader.size();
    const qint64 pixels = static_cast<qint64>(size.width()) * size.height();
    return !size.isEmpty() && size.width() <= maxSidePx && size.height() <= maxSidePx &&
           pixels <= maxPixels && pixels * neededBytesPerPixel(reader.imageFormat()) <= maxBytes;
}

/// Looks at the content alone, whatever the file's name.
bool isReadable(QImageReader &reader)
{
    reader.setDecideFormatFromContent(true);
    return reader.format() == "png" && isWithinLimits(reader);
}

} // namespace

QSize FrameDecoder::size(const QString &file)
{
    QFile device(file);
    if (!RegularFile::open(device))
        return {};
    QImageReader reader(&device);
    return isReadable(reader) ? reader.size() : QSize();
}

QImage FrameDecoder::decode(const QString &file)
{
    QFile device(file);
    if (!RegularFile::open(device))
        return {};
    QImageReader reader(&device);
    if (!isReadable(reader))
        return {};
    QImage image = reader.read();
    const bool alpha = image.hasAlphaChannel();
    return std::move(image).convertToFormat(alpha ? QImage::Format_ARGB32 : QImage::Format_RGB32);
}
