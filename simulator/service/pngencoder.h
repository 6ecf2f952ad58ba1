#pragma once

class QByteArray;
class QImage;

namespace Simulator {

/// Writes a picture of at most 256 colours as the service's renderer does: 8 bit, interlaced.
QByteArray encodePng(const QImage &picture);

} // namespace Simulator
