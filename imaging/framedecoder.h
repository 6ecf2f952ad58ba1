#pragma once

class QImage;
class QString;

namespace FrameDecoder {

/**
 * The picture in @p file as 32-bit ARGB, told by its content and not by its name.
 *
 * @return a null image when the file is no picture or ends before the picture does: the service
 *         has been seen to send half a PNG, or a web page, as a whole answer
 */
QImage decode(const QString &file);

} // namespace FrameDecoder
