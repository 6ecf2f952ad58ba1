#include "simulator/sun/sunstyle.h"

namespace Simulator {

namespace {

/// A million degrees: loops, fans and a mottled disk.
SunStyle coolCorona()
{
    SunStyle style;
    style.quiet = 0.26F;
    style.cloud = 0.85F;
    style.network = 0.5F;
    style.threads = 0.2F;
    style.points = 0.7F;
    style.holes = 0.6F;
    style.limb = 0.55F;
    style.corona = 0.34F;
    style.coronaHeight = 0.085F;
    style.glow = 0.22F;
    style.plage = 0.65F;
    style.loops = 1.1F;
    style.fans = 0.75F;
    style.black = 0.02F;
    style.curve = 9.0F;
    style.white = 2.6F;
    return style;
}

/// One and a half to two million degrees: a bright, wide corona and dark holes.
SunStyle warmCorona()
{
    SunStyle style = coolCorona();
    style.quiet = 0.25F;
    style.network = 0.3F;
    style.threads = 0.2F;
    style.holes = 0.66F;
    style.limb = 0.4F;
    style.corona = 0.62F;
    style.coronaHeight = 0.095F;
    style.black = 0.045F;
    style.glow = 0.9F;
    style.plage = 0.8F;
    style.loops = 0.75F;
    style.fans = 0.5F;
    return style;
}

/// Several million degrees: little but active regions.
SunStyle hotCorona()
{
    SunStyle style = warmCorona();
    style.quiet = 0.1F;
    style.cloud = 0.6F;
    style.network = 0.25F;
    style.threads = 0.07F;
    style.points = 0.2F;
    style.holes = 0.5F;
    style.corona = 0.12F;
    style.coronaHeight = 0.14F;
    style.glow = 0.8F;
    style.plage = 0.3F;
    style.loops = 0.9F;
    style.fans = 0.1F;
    style.filaments = 0.15F;
    style.flares = 3.0F;
    style.grain = 2.2F;
    return style;
}

/// Fifty thousand degrees: network, plages, dark filaments, bright prominences.
SunStyle chromosphere()
{
    SunStyle style;
    style.quiet = 0.32F;
    style.cloud = 0.4F;
    style.network = 1.25F;
    style.threads = 0.05F;
    style.points = 0.25F;
    style.holes = 0.25F;
    style.belts = 0.25F;
    style.limb = 0.3F;
    style.corona = 0.16F;
    style.coronaHeight = 0.035F;
    style.glow = 0.3F;
    style.plage = 1.7F;
    style.loops = 0.2F;
    style.fans = 0.0F;
    style.filaments = 0.75F;
    style.prominences = 0.5F;
    style.curve = 5.0F;
    return style;
}

/// The ultraviolet continuum: network and plages on a darkened limb.
SunStyle lowChromosphere()
{
    SunStyle style = chromosphere();
    style.quiet = 0.42F;
    style.cloud = 0.12F;
    style.network = 0.75F;
    style.holes = 0.0F;
    style.belts = 0.1F;
    style.limb = -0.5F;
    style.corona = 0.0F;
    style.glow = 0.1F;
    style.plage = 1.4F;
    style.loops = 0.0F;
    style.filaments = 0.0F;
    style.prominences = 0.0F;
    style.spots = 0.6F;
    style.flares = 0.6F;
    style.curve = 3.0F;
    return style;
}

/// White light: limb darkening, spots, faculae.
SunStyle photosphere()
{
    SunStyle style = lowChromosphere();
    style.quiet = 1.0F;
    style.cloud = 0.0F;
    style.network = 0.045F;
    style.threads = 0.0F;
    style.points = 0.0F;
    style.belts = 0.0F;
    style.limb = -0.6F; // a linear law of darkening in green light
    style.glow = 0.0F;
    style.plage = 0.06F;
    style.spots = 1.0F;
    style.flares = 0.0F;
    style.curve = 0.02F;
    style.white = 1.12F;
    return style;
}

SunStyle hydrogen()
{
    SunStyle style = lowChromosphere();
    style.quiet = 0.5F;
    style.cloud = 0.15F;
    style.network = 0.28F;
    style.threads = 0.06F;
    style.limb = -0.45F;
    style.plage = 0.5F;
    style.filaments = 0.8F;
    style.prominences = 0.08F;
    style.spots = 0.5F;
    style.curve = 1.5F;
    style.white = 1.4F;
    return style;
}

SunStyle flareKernels()
{
    SunStyle style = hotCorona();
    style.quiet = 0.03F;
    style.corona = 0.01F;
    style.plage = 0.05F;
    style.loops = 0.3F;
    style.curve = 2.0F;
    return style;
}

SunStyle withGrain(SunStyle style, float grain)
{
    style.grain = grain;
    return style;
}

SunStyle withQuiet(SunStyle style, float quiet)
{
    style.quiet = quiet;
    return style;
}

} // namespace

SunStyle styleOf(Look look)
{
    switch (look) {
    case Look::Bronze:
    case Look::EitGreen:
        return warmCorona();
    case Look::Purple:
        return withQuiet(warmCorona(), 0.2F);
    case Look::Blue:
        return withGrain(withQuiet(hotCorona(), 0.14F), 3.0F);
    case Look::Green:
        return hotCorona();
    case Look::Teal:
        return withQuiet(hotCorona(), 0.16F);
    case Look::XRay:
        return withQuiet(hotCorona(), 0.07F);
    case Look::Red:
    case Look::FarUv:
        return chromosphere();
    case Look::Olive:
    case Look::Rose:
        return lowChromosphere();
    case Look::Sand:
    case Look::Visible:
        return photosphere();
    case Look::HAlpha:
        return hydrogen();
    case Look::HardXRay:
        return flareKernels();
    case Look::Gold:
    case Look::EitBlue:
    case Look::Magnetic: // these are no light of the Sun and have painters of their own
    case Look::CoronaC2:
    case Look::CoronaC3:
    case Look::CoronaCor1:
    case Look::CoronaCor2:
    case Look::CoronaK:
    case Look::CoronaWide:
        break;
    }
    return coolCorona();
}

} // namespace Simulator
