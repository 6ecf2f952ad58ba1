#pragma once

class QImage;
class QString;

/// A PNG writer for frames: as lossless as any other, many times faster.
namespace PngWriter {

/**
 * Saves @p image at @p path as an 8-bit, non-interlaced PNG that replaces the file only when whole.
 *
 * Stored as RGB, or as RGBA when any pixel is not opaque, each pixel of a 32-bit format exactly;
 * other formats are converted first, so that 16 bits per channel become 8. Texts and colour
 * profiles of the image are not stored.
 *
 * @return false when the image is null or the file cannot be written; then @p path is as before
 */
bool save(const QImage &image, const QString &path);

} // namespace PngWriter
