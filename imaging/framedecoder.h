#pragma once

class QImage;
class QSize;
class QString;

/// The one way in which stored and downloaded pictures are read.
namespace FrameDecoder {

/**
 * The PNG in @p file in 8 bits per channel: ARGB32 when the file has an alpha channel, else RGB32.
 *
 * Only PNG, told by its content and not by its name: other formats name files to load or sizes to
 * allocate. Its size is asked before its pixels are read.
 *
 * @return a null image when the file is none, or ends before the picture does (the service has been
 *         seen to send half a PNG, or a web page, as a whole answer), when a side exceeds 16384
 *         pixels or the picture 100 million, or when decoding it would take 500 MB, as one of 16
 *         bits per channel does from 40 million pixels on
 */
QImage decode(const QString &file);

/// The size that decode() would give in pixels, from the beginning of @p file; empty when it would
/// refuse it.
QSize size(const QString &file);

} // namespace FrameDecoder
