#include "imaging/pngrows.h"

#include <QImage>
#include <QtEndian>

#include <algorithm>
#include <vector>

namespace {

/// A pixel of QImage, 0xAARRGGBB, as the bytes R, G, B, A.
void copyRgba(const QRgb *from, int pixels, uchar *to)
{
    for (int i = 0; i < pixels; ++i) {
        const QRgb p = from[i];
        const quint32 rgba = (p & 0xff00ff00U) | ((p >> 16) & 0xffU) | ((p & 0xffU) << 16);
        qToLittleEndian(rgba, to + 4 * static_cast<ptrdiff_t>(i));
    }
}

void copyRgb(const QRgb *from, int pixels, uchar *to)
{
    for (int i = 0; i < pixels; ++i, to += 3) {
        to[0] = static_cast<uchar>(qRed(from[i]));
        to[1] = static_cast<uchar>(qGreen(from[i]));
        to[2] = static_cast<uchar>(qBlue(from[i]));
    }
}

void copyRow(const QImage &image, int row, uchar *to)
{
    const auto *line = reinterpret_cast<const QRgb *>(image.constScanLine(row));
    if (PngRows::bytesPerPixel(image) == 4)
        copyRgba(line, image.width(), to);
    else
        copyRgb(line, image.width(), to);
}

/**
 * Filters one row.
 *
 * @param row, above  the bytes of the row and of the one above it, each behind one pixel of zeros,
 *                    which stands for what lies left of the picture
 */
void filterRow(PngRows::Filter filter, const uchar *row, const uchar *above, ptrdiff_t bytes,
               ptrdiff_t pixel, uchar *__restrict to)
{
    const uchar *left = row - pixel;
    switch (filter) {
    case PngRows::Filter::None:
        std::copy(row, row + bytes, to);
        break;
    case PngRows::Filter::Up:
        for (ptrdiff_t i = 0; i < bytes; ++i)
            to[i] = static_cast<uchar>(row[i] - above[i]);
        break;
    case PngRows::Filter::Average:
        for (ptrdiff_t i = 0; i < bytes; ++i)
            to[i] = static_cast<uchar>(row[i] - (left[i] + above[i]) / 2);
        break;
    }
}

} // namespace

int PngRows::bytesPerPixel(const QImage &image)
{
    return image.hasAlphaChannel() ? 4 : 3;
}

size_t PngRows::storedRowBytes(const QImage &image)
{
    return 1 + static_cast<size_t>(image.width()) * static_cast<size_t>(bytesPerPixel(image));
}

void PngRows::store(const QImage &image, int firstRow, int rows, Filter filter, uchar *target)
{
    const ptrdiff_t pixel = bytesPerPixel(image);
    const size_t rowBytes = storedRowBytes(image) - 1;
    std::vector<uchar> current(rowBytes + static_cast<size_t>(pixel));
    std::vector<uchar> above(current.size());
    if (firstRow > 0)
        copyRow(image, firstRow - 1, above.data() + pixel);
    for (int row = firstRow; row < firstRow + rows; ++row, target += rowBytes) {
        *target++ = static_cast<uchar>(filter);
        copyRow(image, row, current.data() + pixel);
        filterRow(filter, current.data() + pixel, above.data() + pixel,
                  static_cast<ptrdiff_t>(rowBytes), pixel, target);
        current.swap(above);
    }
}
