#pragma once

#include <QRgb>
#include <QVector>

class QString;

namespace Simulator {

/**
 * What a band shows of the Sun, and how strongly. 0 leaves a thing out.
 *
 * The light of the quiet disk's centre is @c quiet; all other light is on that scale.
 */
struct SunStyle
{
    float quiet;
    float cloud;        ///< contrast of wide structures
    float network;      ///< contrast of the cells
    float threads;      ///< light of fine lines
    float points;       ///< light of bright points
    float holes;        ///< how much darker coronal holes are
    float belts;        ///< how much brighter the belts of activity are
    float limb;         ///< light at the limb: more than 0 brightens, less darkens
    float corona;       ///< light just above the limb
    float coronaHeight; ///< solar radii in which it falls to a third
    float glow;         ///< soft light around active regions
    float plage;        ///< patchy light of active regions
    float loops;
    float filaments;   ///< how dark they are on the disk
    float prominences; ///< light of filaments beyond the limb
    float spots;       ///< how dark sunspots are
    float flares;
    float black; ///< light up to which nothing is shown
    float curve; ///< how much a logarithm lifts faint light
    float white; ///< light that is shown brightest
    float grain; ///< noise in steps of the colour table
};

/// What a coronagraph sees; lengths in solar radii.
struct Optics
{
    float occulter;
    float edge;       ///< beyond it nothing is seen
    float background; ///< light without a streamer
    float falloff;    ///< power of the distance with which streamers fade
    int stars;
    bool hasPylon; ///< the occulter hangs on an arm
};

/// One colour of a palette by brightness: 0 up to @c from, full from @c to on.
struct Curve
{
    double from;
    double to;
    double power;
};

struct Palette
{
    Curve red;
    Curve green;
    Curve blue;
};

/// How pictures of a datasource look. The magnetogram has neither sun nor optics.
struct Look
{
    const char *part; ///< of the datasource's path
    const Palette *palette;
    const SunStyle *sun = nullptr;
    const Optics *optics = nullptr;
};

/// By the path in the catalog, "SDO/AIA/171"; that of AIA 171 for one that is not known.
const Look &lookOf(const QString &path);

/// 255 colours from dark to bright; the first is black.
QVector<QRgb> colourTable(const Palette &palette);

} // namespace Simulator
