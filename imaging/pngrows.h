#pragma once

#include <QtGlobal>

#include <cstddef>

class QImage;

/**
 * The rows of a picture as a PNG holds them before they are packed: a filter byte, then the pixels.
 *
 * Pictures are QImage::Format_ARGB32 (stored as R, G, B, A) or Format_RGB32 (stored as R, G, B).
 */
namespace PngRows {

/**
 * The row filters in use; the values are those of the file format.
 *
 * The format's other two were never the smallest on the pictures measured: smooth pictures pack
 * best with Up, grainy ones with Average, and those of a colour table unfiltered.
 */
enum class Filter : uchar {
    None = 0,    ///< the bytes themselves
    Up = 2,      ///< their difference from the byte above
    Average = 3, ///< their difference from the mean of the bytes above and to the left
};

/// Bytes of one stored pixel: 4 with alpha, 3 without.
int bytesPerPixel(const QImage &image);

/// Bytes of one stored row, its filter byte included.
size_t storedRowBytes(const QImage &image);

/// Stores @p rows rows from @p firstRow on at @p target, which has room for their bytes.
void store(const QImage &image, int firstRow, int rows, Filter filter, uchar *target);

} // namespace PngRows
