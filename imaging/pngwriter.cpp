#include "imaging/pngwriter.h"

#include "base/filereplace.h"
#include "imaging/pngrows.h"

#include <QFile>
#include <QImage>
#include <QtEndian>

#include <libdeflate.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <new>

namespace {

using PngRows::Filter;

/// The next level takes half as long again for a tenth of the bytes, at 1024 pixels; at this one
/// files are no larger than Qt's, which take fifteen times as long.
constexpr int level = 1;

/// The filter is chosen on bands of a few neighbouring rows, spread over the picture: 2 % of it.
constexpr int bandRows = 4;
constexpr int rowsPerBand = 200;

constexpr std::array<uchar, 8> signature{0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
constexpr uchar rgbColour = 2;
constexpr uchar rgbaColour = 6;
constexpr size_t chunkFrameBytes = 12; // length, type and checksum around a chunk's data
constexpr size_t headerBytes = 13;
constexpr size_t resolutionBytes = 9;
/// Larger pictures are left to Qt, which is slow but packs row by row: here rows and file take each
/// as much memory again as the picture.
constexpr size_t maxRowsBytes = 128 << 20;
constexpr size_t bytesAroundPixels =
    signature.size() + 4 * chunkFrameBytes + headerBytes + resolutionBytes;

/// Memory that is not cleared first, as it is large and wholly overwritten; null when there is
/// none.
using Buffer = std::unique_ptr<uchar[]>;

Buffer allocate(size_t bytes)
{
    return Buffer(new (std::nothrow) uchar[bytes]);
}

class Packer final
{
public:
    Packer() : m_compressor(libdeflate_alloc_compressor(level)) {}

    bool isValid() const { return static_cast<bool>(m_compressor); }
    size_t bound(size_t size) const
    {
        return libdeflate_zlib_compress_bound(m_compressor.get(), size);
    }
    /// Packs into @p to, which has room for bound(@p size); returns the packed size.
    size_t pack(const Buffer &from, size_t size, uchar *to) const
    {
        return libdeflate_zlib_compress(m_compressor.get(), from.get(), size, to, bound(size));
    }

private:
    struct Free
    {
        void operator()(libdeflate_compressor *c) const { libdeflate_free_compressor(c); }
    };
    std::unique_ptr<libdeflate_compressor, Free> m_compressor;
};

/// A whole file in memory; empty when it could not be made.
struct File
{
    Buffer bytes;
    size_t size = 0;
};

bool isOpaque(const QImage &argb)
{
    for (int y = 0; y < argb.height(); ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(argb.constScanLine(y));
        if (!std::all_of(line, line + argb.width(),
                         [](QRgb pixel) { return qAlpha(pixel) == 255; }))
            return false;
    }
    return true;
}

QImage inStoredFormat(const QImage &image)
{
    if (!image.hasAlphaChannel())
        return image.convertToFormat(QImage::Format_RGB32);
    QImage argb = image.convertToFormat(QImage::Format_ARGB32);
    if (isOpaque(argb))
        argb.reinterpretAsFormat(QImage::Format_RGB32); // no pixel changes
    return argb;
}

size_t rowsBytesOf(const QImage &image)
{
    return PngRows::storedRowBytes(image) * static_cast<size_t>(image.height());
}

/// The filter under which a sample of the picture packs smallest.
Filter chooseFilter(const QImage &image, const Packer &packer)
{
    const int rows = std::min(bandRows, image.height());
    const int bands = std::max(1, image.height() / rowsPerBand);
    const size_t bandBytes = PngRows::storedRowBytes(image) * static_cast<size_t>(rows);
    const size_t sampleBytes = bandBytes * static_cast<size_t>(bands);
    const Buffer sample = allocate(sampleBytes);
    const Buffer packed = allocate(packer.bound(sampleBytes));
    Filter best = Filter::None;
    if (!sample || !packed)
        return best;

    size_t fewestBytes = sampleBytes;
    for (const Filter filter : {Filter::None, Filter::Up, Filter::Average}) {
        for (int band = 0; band < bands; ++band) {
            const int firstRow = (image.height() - rows) * (2 * band + 1) / (2 * bands);
            PngRows::store(image, firstRow, rows, filter,
                           sample.get() + bandBytes * static_cast<size_t>(band));
        }
        const size_t bytes = packer.pack(sample, sampleBytes, packed.get());
        if (bytes < fewestBytes) {
            fewestBytes = bytes;
            best = filter;
        }
    }
    return best;
}

void putNumber(size_t number, uchar *to)
{
    qToBigEndian(static_cast<quint32>(number), to);
}

/// Completes the chunk whose data stand 8 bytes behind @p chunk; returns its end.
uchar *closeChunk(uchar *chunk, const char *type, size_t dataBytes)
{
    putNumber(dataBytes, chunk);
    std::memcpy(chunk + 4, type, 4);
    uchar *checksum = chunk + 8 + dataBytes;
    putNumber(libdeflate_crc32(0, chunk + 4, 4 + dataBytes), checksum);
    return checksum + 4;
}

uchar *putHeader(const QImage &image, uchar *chunk)
{
    uchar *data = chunk + 8;
    putNumber(static_cast<size_t>(image.width()), data);
    putNumber(static_cast<size_t>(image.height()), data + 4);
    data[8] = 8; // bits per channel
    data[9] = image.hasAlphaChannel() ? rgbaColour : rgbColour;
    data[10] = 0; // deflate
    data[11] = 0; // filtered by row
    data[12] = 0; // not interlaced
    return closeChunk(chunk, "IHDR", headerBytes);
}

uchar *putResolution(const QImage &image, uchar *chunk)
{
    uchar *data = chunk + 8;
    putNumber(static_cast<size_t>(image.dotsPerMeterX()), data);
    putNumber(static_cast<size_t>(image.dotsPerMeterY()), data + 4);
    data[8] = 1; // per metre
    return closeChunk(chunk, "pHYs", resolutionBytes);
}

/// @param image  in one of the two stored formats
File encode(const QImage &image)
{
    const Packer packer;
    if (!packer.isValid())
        return {};
    const size_t rowsBytes = rowsBytesOf(image);
    const Buffer rows = allocate(rowsBytes);
    File file{allocate(bytesAroundPixels + packer.bound(rowsBytes))};
    if (!rows || !file.bytes)
        return {};

    PngRows::store(image, 0, image.height(), chooseFilter(image, packer), rows.get());
    uchar *end = std::copy(signature.begin(), signature.end(), file.bytes.get());
    end = putHeader(image, end);
    end = putResolution(image, end);
    const size_t pixelBytes = packer.pack(rows, rowsBytes, end + 8);
    end = closeChunk(end, "IDAT", pixelBytes);
    end = closeChunk(end, "IEND", 0);
    file.size = static_cast<size_t>(end - file.bytes.get());
    return file;
}

bool writeInMemory(const QImage &image, QFile &target)
{
    const File file = encode(image);
    const auto size = static_cast<qint64>(file.size);
    return size > 0 && target.write(reinterpret_cast<const char *>(file.bytes.get()), size) == size;
}

/**
 * Writes beside @p path and renames, so that a full disk leaves no half frame.
 *
 * QSaveFile would also wait until the disk holds the bytes: 2 to 5 ms of a frame's 30 on a solid
 * state disk, for a frame that can be fetched again. The name of the part does not end in "png",
 * so that nothing takes it for a frame.
 */
bool write(const QImage &image, const QString &path)
{
    QFile part(path + QStringLiteral(".part"));
    const bool large = rowsBytesOf(image) > maxRowsBytes;
    const bool whole = part.open(QIODevice::WriteOnly) &&
                       (large ? image.save(&part, "PNG") : writeInMemory(image, part)) &&
                       part.flush();
    part.close();
    if (whole && FileReplace::replace(path, part.fileName()))
        return true;
    part.remove();
    return false;
}

} // namespace

bool PngWriter::save(const QImage &image, const QString &path)
{
    return !image.isNull() && write(inStoredFormat(image), path);
}
