#include "simulator/service/pngencoder.h"

#include <QByteArray>
#include <QImage>

#include <png.h>
#include <zlib.h>

#include <algorithm>
#include <vector>

namespace Simulator {

namespace {

void append(png_structp png, png_bytep bytes, png_size_t count)
{
    static_cast<QByteArray *>(png_get_io_ptr(png))
        ->append(reinterpret_cast<const char *>(bytes), static_cast<int>(count));
}

void setPalette(png_structp png, png_infop info, const QVector<QRgb> &palette)
{
    std::vector<png_color> colours;
    std::vector<png_byte> alphas;
    for (const QRgb colour : palette) {
        colours.push_back(
            {png_byte(qRed(colour)), png_byte(qGreen(colour)), png_byte(qBlue(colour))});
        alphas.push_back(png_byte(qAlpha(colour)));
    }
    png_set_PLTE(png, info, colours.data(), static_cast<int>(colours.size()));
    if (std::any_of(alphas.begin(), alphas.end(), [](png_byte alpha) { return alpha < 255; }))
        png_set_tRNS(png, info, alphas.data(), static_cast<int>(alphas.size()), nullptr);
}

/// The grain of a picture leaves a thorough packer little to find: runs and shorter codes for
/// frequent colours do most of it, at a fraction of the time.
void setPacking(png_structp png)
{
    png_set_compression_level(png, 1);
    png_set_compression_strategy(png, Z_RLE);
    png_set_filter(png, PNG_FILTER_TYPE_BASE, PNG_FILTER_NONE);
    png_set_compression_buffer_size(png, 1U << 18);
}

} // namespace

QByteArray encodePng(const QImage &picture)
{
    QByteArray bytes;
    bytes.reserve(picture.width() * picture.height());
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(png, &bytes, append, nullptr);
    setPacking(png);
    png_set_IHDR(png, info, png_uint_32(picture.width()), png_uint_32(picture.height()), 8,
                 PNG_COLOR_TYPE_PALETTE, PNG_INTERLACE_ADAM7, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    setPalette(png, info, picture.colorTable());
    std::vector<png_bytep> rows;
    rows.reserve(static_cast<size_t>(picture.height()));
    for (int row = 0; row < picture.height(); ++row)
        rows.push_back(const_cast<png_bytep>(picture.constScanLine(row))); // only read
    png_set_rows(png, info, rows.data());
    png_write_png(png, info, PNG_TRANSFORM_IDENTITY, nullptr);
    png_destroy_write_struct(&png, &info);
    return bytes;
}

} // namespace Simulator
