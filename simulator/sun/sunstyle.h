#pragma once

#include "simulator/sun/look.h"

namespace Simulator {

/**
 * What a band shows of the Sun, and how strongly. 0 leaves a thing out.
 *
 * The light of the quiet disk's centre is @c quiet; all other light is on that scale.
 */
struct SunStyle
{
    float quiet = 0.3F;
    float cloud = 0.6F;         ///< contrast of wide structures
    float network = 0.3F;       ///< contrast of the cells
    float threads = 0.2F;       ///< light of fine lines
    float points = 0.3F;        ///< light of bright points
    float holes = 0.5F;         ///< how much darker coronal holes are
    float belts = 0.3F;         ///< how much brighter the belts of activity are
    float limb = 0.5F;          ///< light at the limb: more than 0 brightens, less darkens
    float corona = 0.5F;        ///< light just above the limb
    float coronaHeight = 0.12F; ///< solar radii in which it falls to a third
    float glow = 0.5F;          ///< soft light around active regions
    float plage = 0.5F;         ///< patchy light of active regions
    float loops = 0.5F;
    float fans = 0.3F;
    float filaments = 0.4F;   ///< how dark they are on the disk
    float prominences = 0.0F; ///< light of filaments beyond the limb
    float spots = 0.0F;       ///< how dark sunspots are
    float flares = 1.0F;
    float black = 0.0F; ///< light up to which nothing is shown
    float curve = 6.0F; ///< how much a logarithm lifts faint light
    float white = 2.5F; ///< light that is shown brightest
    float grain = 1.2F; ///< noise in steps of the colour table
};

SunStyle styleOf(Look look);

} // namespace Simulator
