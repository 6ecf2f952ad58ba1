#include "simulator/service/pngencoder.h"

#include "simulator/sun/indexedpicture.h"

#include <png.h>
#include <zlib.h>

#include <vector>

namespace Simulator {

namespace {

void append(png_structp png, png_bytep bytes, png_size_t count)
{
    static_cast<QByteArray *>(png_get_io_ptr(png))
        ->append(reinterpret_cast<const char *>(bytes), int(count));
}

void setPalette(png_structp png, png_infop info, const QVector<QRgb> &palette)
{
    std::vector<png_color> colours;
    std::vector<png_byte> alphas;
    bool isOpaque = true;
    for (const QRgb colour : palette) {
        colours.push_back(
            {png_byte(qRed(colour)), png_byte(qGreen(colour)), png_byte(qBlue(colour))});
        alphas.push_back(png_byte(qAlpha(colour)));
        isOpaque = isOpaque && qAlpha(colour) == 255;
    }
    png_set_PLTE(png, info, colours.data(), int(colours.size()));
    if (!isOpaque)
        png_set_tRNS(png, info, alphas.data(), int(alphas.size()), nullptr);
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

QByteArray encodePng(const IndexedPicture &picture)
{
    QByteArray bytes;
    bytes.reserve(int(picture.pixels.size()) + 4096);
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(png, &bytes, append, nullptr);
    setPacking(png);
    png_set_IHDR(png, info, png_uint_32(picture.widthPx), png_uint_32(picture.heightPx), 8,
                 PNG_COLOR_TYPE_PALETTE, PNG_INTERLACE_ADAM7, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    setPalette(png, info, picture.palette);
    png_write_info(png, info);
    std::vector<png_const_bytep> rows;
    rows.reserve(size_t(picture.heightPx));
    for (int row = 0; row < picture.heightPx; ++row)
        rows.push_back(picture.pixels.data() + size_t(row) * size_t(picture.widthPx));
    const int passes = png_set_interlace_handling(png);
    for (int pass = 0; pass < passes; ++pass)
        for (png_const_bytep row : rows)
            png_write_row(png, row);
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    return bytes;
}

} // namespace Simulator
