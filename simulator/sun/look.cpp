#include "simulator/sun/look.h"

#include <QString>

#include <algorithm>
#include <array>
#include <cmath>

namespace Simulator {

namespace {

constexpr int colours = 255;

struct PathLook
{
    const char *part; ///< of the path
    Look look;
};

/// The first part that a path holds decides.
constexpr PathLook pathLooks[] = {
    {"AIA/171", Look::Gold},
    {"AIA/193", Look::Bronze},
    {"AIA/304", Look::Red},
    {"AIA/94", Look::Green},
    {"AIA/131", Look::Teal},
    {"AIA/211", Look::Purple},
    {"AIA/335", Look::Blue},
    {"AIA/1600", Look::Olive},
    {"AIA/1700", Look::Rose},
    {"AIA/4500", Look::Sand},
    {"SUVI/94", Look::Green},
    {"SUVI/131", Look::Teal},
    {"SUVI/171", Look::Gold},
    {"SUVI/195", Look::Bronze},
    {"SUVI/284", Look::Purple},
    {"SUVI/304", Look::Red},
    {"EIT/171", Look::EitBlue},
    {"EIT/195", Look::EitGreen},
    {"EIT/304", Look::Red},
    {"EUVI/171", Look::EitBlue},
    {"EUVI/195", Look::EitGreen},
    {"EUVI/304", Look::Red},
    {"TRACE/171", Look::Gold},
    {"HMI/continuum", Look::Visible},
    {"HMI/magnetogram", Look::Magnetic},
    {"MDI/continuum", Look::Visible},
    {"MDI/magnetogram", Look::Magnetic},
    {"LASCO/C2", Look::CoronaC2},
    {"LASCO/C3", Look::CoronaC3},
    {"COR1", Look::CoronaCor1},
    {"COR2", Look::CoronaCor2},
    {"CCOR", Look::CoronaC3},
    {"KCor", Look::CoronaK},
    {"PUNCH", Look::CoronaWide},
    {"H-alpha", Look::HAlpha},
    {"XRT", Look::XRay},
    {"SXT", Look::XRay},
    {"RHESSI", Look::HardXRay},
    {"SJI", Look::FarUv},
};

double ramp(double value, double from, double to)
{
    return std::clamp((value - from) / (to - from), 0.0, 1.0);
}

QRgb rgb(double red, double green, double blue)
{
    return qRgb(qRound(255.0 * red), qRound(255.0 * green), qRound(255.0 * blue));
}

/// "Red temperature" of the colour tables that come with IDL.
QRgb redTemperature(double v)
{
    return rgb(ramp(v, 0.0, 0.69), ramp(v, 0.47, 1.0), ramp(v, 0.745, 1.0));
}

/// The blue of the older 171 channel and of the outer coronagraph.
QRgb blueWhite(double v)
{
    return rgb(ramp(v, 0.8, 1.0), ramp(v, 0.5, 0.98), ramp(v, 0.03, 0.78));
}

/// The curves of which the tables of the AIA bands are made (aia_lct of SolarSoft).
struct AiaCurves
{
    explicit AiaCurves(double v)
        : linear(v), root(std::sqrt(v)), square(v * v), lifted((std::sqrt(v) + v * v / 2.0) / 1.5)
    {}

    double linear;
    double root;
    double square;
    double lifted;
};

QRgb aiaColour(Look look, double v)
{
    const AiaCurves c(v);
    switch (look) {
    case Look::Bronze:
        return rgb(c.root, c.linear * (0.75 + 0.25 * v), c.square);
    case Look::Green:
        return rgb(c.square, c.lifted, c.linear);
    case Look::Teal:
        return rgb(ramp(v, 0.47, 1.0), ramp(v, 0.0, 0.69), ramp(v, 0.0, 0.69));
    case Look::Purple:
        return rgb(c.root, c.linear, c.lifted);
    case Look::Blue:
        return rgb(c.square, c.linear, c.root);
    case Look::Olive:
        return rgb(c.lifted, c.lifted, c.square);
    case Look::Rose:
        return rgb(c.root, c.linear, c.linear);
    case Look::Sand:
        return rgb(c.linear, c.linear, ramp(v, 0.745, 1.0) / 2.0);
    default: // gold
        return rgb(ramp(v, 0.0, 0.69), c.linear, ramp(v, 0.745, 1.0));
    }
}

QRgb colourOf(Look look, double v)
{
    switch (look) {
    case Look::Red:
    case Look::CoronaC2:
    case Look::CoronaCor2:
    case Look::XRay:
        return redTemperature(v);
    case Look::EitBlue:
    case Look::CoronaC3:
        return blueWhite(v);
    case Look::EitGreen:
    case Look::CoronaCor1:
        return rgb(ramp(v, 0.64, 1.0), ramp(v, 0.0, 0.62), ramp(v, 0.45, 1.0));
    case Look::HAlpha:
        return rgb(ramp(v, 0.0, 0.7), v * v, v * v * v);
    case Look::HardXRay:
        return rgb(ramp(v, 0.25, 0.7), ramp(v, 0.55, 1.0), v < 0.5 ? v : 1.0 - v);
    case Look::FarUv:
        return rgb(std::sqrt(v), v, 0.8 * v);
    case Look::CoronaK:
    case Look::CoronaWide:
    case Look::Visible:
    case Look::Magnetic:
        return rgb(v, v, v);
    case Look::Gold:
    case Look::Bronze:
    case Look::Green:
    case Look::Teal:
    case Look::Purple:
    case Look::Blue:
    case Look::Olive:
    case Look::Rose:
    case Look::Sand:
        break;
    }
    return aiaColour(look, v);
}

} // namespace

Look lookOf(const QString &path)
{
    for (const PathLook &known : pathLooks)
        if (path.contains(QLatin1String(known.part)))
            return known.look;
    return Look::Gold;
}

QVector<QRgb> colourTable(Look look)
{
    QVector<QRgb> table;
    table.reserve(colours);
    for (int index = 0; index < colours; ++index)
        table.append(colourOf(look, double(index) / (colours - 1)));
    return table;
}

} // namespace Simulator
