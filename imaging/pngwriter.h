#pragma once

class QImage;
class QString;

/// A PNG writer for frames, many times faster than Qt's.
namespace PngWriter {

/**
 * Saves @p image as an 8-bit, non-interlaced PNG; @p path is replaced only once it is complete.
 *
 * The image is stored as RGB, or as RGBA if any pixel is not opaque. Pixels of a 32-bit format are
 * stored exactly; other formats are converted first, so that 16 bits per channel become 8. Texts
 * and colour profiles of the image are not stored.
 *
 * @return false when the image is null or the file cannot be written; @p path is then unchanged
 */
bool save(const QImage &image, const QString &path);

} // namespace PngWriter
