#pragma once

#include <QRgb>
#include <QVector>

class QString;

namespace Simulator {

/// How pictures of a datasource look: what they show, and in which colours.
enum class Look {
    Gold,       ///< 171, 174
    Bronze,     ///< 193
    Red,        ///< 304
    Green,      ///< 94
    Teal,       ///< 131
    Purple,     ///< 211
    Blue,       ///< 335
    EitBlue,    ///< 171 of the older telescopes
    EitGreen,   ///< 195 of the older telescopes
    Olive,      ///< 1600
    Rose,       ///< 1700
    Sand,       ///< 4500
    Visible,    ///< the white-light disk with its spots
    Magnetic,   ///< the magnetogram
    HAlpha,     ///< the chromosphere from the ground
    XRay,       ///< soft X-rays
    HardXRay,   ///< flare kernels
    FarUv,      ///< slit-jaw pictures
    CoronaC2,   ///< coronagraph, orange
    CoronaC3,   ///< coronagraph, blue
    CoronaCor1, ///< coronagraph, green
    CoronaCor2, ///< coronagraph, red
    CoronaK,    ///< coronagraph on the ground, close to the limb
    CoronaWide  ///< heliospheric imager
};

/// By the path in the catalog, "SDO/AIA/171"; gold for one that is not known.
Look lookOf(const QString &path);

/// 255 colours from dark to bright; the first is black.
QVector<QRgb> colourTable(Look look);

} // namespace Simulator
