// A picture as downloaded. Its checksums are put right first: with a wrong one the first chunk
// would be the last to be read.

#include "fuzz/scratch.h"
#include "imaging/blankblock.h"
#include "imaging/framedecoder.h"
#include "imaging/pngwriter.h"

#include <QImage>
#include <QJsonObject>
#include <QtEndian>

#include <zlib.h>

namespace {

constexpr int signatureBytes = 8;
constexpr int chunkBytes = 12; // length, type and checksum around the data

QByteArray withChecksums(QByteArray png)
{
    int at = signatureBytes;
    while (png.size() - at >= chunkBytes) {
        const auto length = qFromBigEndian<quint32>(png.constData() + at);
        if (length > static_cast<quint32>(png.size() - at - chunkBytes))
            break;
        const auto *type = reinterpret_cast<const Bytef *>(png.constData() + at + 4);
        const auto sum = static_cast<quint32>(crc32(0, type, length + 4));
        qToBigEndian(sum, png.data() + at + 8 + length);
        at += chunkBytes + static_cast<int>(length);
    }
    return png;
}

/// Half a disk wide, so that the search for blank blocks has something to look at.
QJsonObject metadataOf(const QImage &image)
{
    return {{QStringLiteral("width"), image.width()},
            {QStringLiteral("height"), image.height()},
            {QStringLiteral("rsun"), image.width() / 2.0},
            {QStringLiteral("refPixelX"), image.width() / 2.0},
            {QStringLiteral("refPixelY"), image.height() / 2.0}};
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    constexpr int mostPixels = 1 << 20; // larger ones only cost time
    const QByteArray png = withChecksums(Scratch::bytes(data, size));
    const QImage image = FrameDecoder::decode(Scratch::write(QStringLiteral("frame.png"), png));
    if (image.isNull() || image.width() * image.height() > mostPixels)
        return 0;
    Scratch::require(image.depth() == 32, "a picture has 8 bits per channel");
    detectBlankRendererBlock(image, metadataOf(image));
    const QString copy = Scratch::path(QStringLiteral("copy.png"));
    Scratch::require(PngWriter::save(image, copy), "a picture can be written");
    const QImage again = FrameDecoder::decode(copy);
    Scratch::require(again.convertToFormat(QImage::Format_ARGB32) ==
                         image.convertToFormat(QImage::Format_ARGB32),
                     "a copy shows the same");
    return 0;
}
