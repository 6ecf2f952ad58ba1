#pragma once

class QImage;
class QSize;
class QString;

/// Decodes stored and downloaded pictures; nothing else does.
namespace FrameDecoder {

/**
 * The PNG in @p file in 8 bits per channel: ARGB32 when the file has an alpha channel, else RGB32.
 *
 * Accepts only PNG, recognised by its content, not its name: other formats can name further files
 * to load or huge sizes to allocate. The size is checked before the pixels are read.
 *
 * @return a null image when the file is not a PNG or is cut off (the service has been seen to send
 *         half a PNG, or a web page, as a complete answer), when a side exceeds 16384 pixels or the
 *         picture 100 million, or when decoding would take more than 500 MB, as it does for 16 bits
 *         per channel from 42 million pixels on
 */
QImage decode(const QString &file);

/// The size in pixels of what decode() would return, read from the header of @p file; empty if
/// decode() would refuse it.
QSize size(const QString &file);

} // namespace FrameDecoder
