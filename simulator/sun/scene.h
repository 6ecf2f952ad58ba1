#pragma once

#include "simulator/sun/look.h"

#include <QtGlobal>

class QImage;

namespace Simulator {

/// The Sun's disk on a picture; lengths in its pixels, edges of the picture at whole numbers.
struct Disk
{
    double centreX = 0.0;
    double centreY = 0.0; ///< from the top
    double radius = 1.0;
};

/// All that a rendering depends on.
struct SceneView
{
    int widthPx = 0;
    int heightPx = 0;
    Disk disk;
    qint64 unixTime = 0;
    quint64 grainSeed = 0; ///< different for each image
    Look look;
};

/// Paints the Sun as it is at that time, in at most 255 colours; the same view gives the same
/// picture.
QImage renderScene(const SceneView &view);

} // namespace Simulator
