#pragma once

class QImage;
class QString;

/// A PNG writer for frames: as lossless as any other, many times faster.
namespace PngWriter {

/// Saves @p image at @p path as an 8-bit, non-interlaced PNG that replaces the file only when
/// whole.
bool save(const QImage &image, const QString &path);

} // namespace PngWriter
