#pragma once

#include <QRgb>
#include <QVector>

class QImage;

namespace Simulator {

class LightField;

/// How light becomes a step of the colour table.
struct Development
{
    float black = 0.0F;    ///< light up to which nothing is shown
    float curve = 6.0F;    ///< 0 for a straight line; larger lifts faint light
    float white = 1.0F;    ///< light of the brightest step
    float grain = 1.0F;    ///< spread of the noise, in steps
    int darkestOnDisk = 0; ///< the Sun itself is never quite black
    quint64 grainSeed = 0;
};

/// A picture in the colours of @p palette, of at most 255 steps.
QImage develop(const LightField &field, const QVector<QRgb> &palette,
               const Development &development);

} // namespace Simulator
