#pragma once

#include <QRgb>
#include <QVector>

#include <vector>

namespace Simulator {

/// A picture of at most 256 colours, as the service renders them.
struct IndexedPicture
{
    int widthPx = 0;
    int heightPx = 0;
    std::vector<uchar> pixels; ///< indices into the palette, row by row from the top
    QVector<QRgb> palette;     ///< may be transparent
};

} // namespace Simulator
