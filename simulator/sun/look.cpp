#include "simulator/sun/look.h"

#include <QString>

#include <algorithm>
#include <cmath>

namespace Simulator {

namespace {

// clang-format off
// By temperature; a million degrees are the cool corona with its loops, 50,000 the chromosphere.
//                               quiet   cloud   network threads points  holes   belts   limb    corona  height  glow    plage   loops   filam.  promin. spots   flares  black   curve   white   grain
constexpr SunStyle coolCorona   {0.26F,  0.85F,  0.5F,   0.2F,   0.7F,   0.6F,   0.3F,   0.55F,  0.34F,  0.085F, 0.22F,  0.65F,  1.1F,   0.4F,   0.0F,   0.0F,   1.0F,   0.02F,  9.0F,   2.6F,   1.2F};
constexpr SunStyle warmCorona   {0.25F,  0.85F,  0.3F,   0.2F,   0.7F,   0.66F,  0.3F,   0.4F,   0.62F,  0.095F, 0.9F,   0.8F,   0.75F,  0.4F,   0.0F,   0.0F,   1.0F,   0.045F, 9.0F,   2.6F,   1.2F};
constexpr SunStyle hotCorona    {0.14F,  0.6F,   0.25F,  0.07F,  0.2F,   0.5F,   0.3F,   0.4F,   0.12F,  0.14F,  0.8F,   0.3F,   0.9F,   0.15F,  0.0F,   0.0F,   3.0F,   0.045F, 9.0F,   2.6F,   2.4F};
constexpr SunStyle softXRays    {0.07F,  0.6F,   0.25F,  0.07F,  0.2F,   0.5F,   0.3F,   0.4F,   0.12F,  0.14F,  0.8F,   0.3F,   0.9F,   0.15F,  0.0F,   0.0F,   3.0F,   0.045F, 9.0F,   2.6F,   2.2F};
constexpr SunStyle chromosphere {0.32F,  0.4F,   1.25F,  0.05F,  0.25F,  0.25F,  0.25F,  0.3F,   0.16F,  0.035F, 0.3F,   1.7F,   0.2F,   0.75F,  0.5F,   0.0F,   1.0F,   0.0F,   5.0F,   2.5F,   1.2F};
constexpr SunStyle ultraviolet  {0.42F,  0.12F,  0.75F,  0.05F,  0.25F,  0.0F,   0.1F,   -0.5F,  0.0F,   0.035F, 0.1F,   1.4F,   0.0F,   0.0F,   0.0F,   0.6F,   0.6F,   0.0F,   3.0F,   2.5F,   1.2F};
constexpr SunStyle hydrogen     {0.5F,   0.15F,  0.28F,  0.06F,  0.25F,  0.0F,   0.1F,   -0.45F, 0.0F,   0.035F, 0.1F,   0.5F,   0.0F,   0.8F,   0.08F,  0.5F,   0.6F,   0.0F,   1.5F,   1.4F,   1.2F};
constexpr SunStyle photosphere  {1.0F,   0.0F,   0.045F, 0.0F,   0.0F,   0.0F,   0.0F,   -0.6F,  0.0F,   0.035F, 0.0F,   0.06F,  0.0F,   0.0F,   0.0F,   1.0F,   0.0F,   0.0F,   0.02F,  1.12F,  1.2F};

constexpr Optics c2    {2.2F,  8.6F,   0.2F,  1.1F, 70,  false};
constexpr Optics c3    {4.4F,  32.0F,  0.24F, 0.9F, 420, true};
constexpr Optics cor1  {1.45F, 4.1F,   0.18F, 1.6F, 0,   false};
constexpr Optics cor2  {2.6F,  15.2F,  0.22F, 1.0F, 160, false};
constexpr Optics kCor  {1.06F, 3.0F,   0.06F, 2.4F, 0,   false};
constexpr Optics punch {6.0F,  174.0F, 0.12F, 0.7F, 900, false};

constexpr Curve linear {0.0, 1.0, 1.0};
constexpr Curve root   {0.0, 1.0, 0.5};
constexpr Curve square {0.0, 1.0, 2.0};
constexpr Curve lifted {0.0, 1.0, 0.8};
constexpr Curve early  {0.0, 0.69, 1.0};
constexpr Curve middle {0.47, 1.0, 1.0};
constexpr Curve late   {0.745, 1.0, 1.0};

// As near to the tables of the instruments' teams as three curves come.
constexpr Palette gold   {early, linear, late};
constexpr Palette bronze {root, {0.0, 1.0, 1.2}, square};
constexpr Palette red    {early, middle, late};
constexpr Palette green  {square, lifted, linear};
constexpr Palette teal   {middle, early, early};
constexpr Palette purple {root, linear, lifted};
constexpr Palette blue   {square, linear, root};
constexpr Palette azure  {{0.8, 1.0, 1.0}, {0.5, 0.98, 1.0}, {0.03, 0.78, 1.0}};
constexpr Palette grass  {{0.64, 1.0, 1.0}, {0.0, 0.62, 1.0}, {0.45, 1.0, 1.0}};
constexpr Palette olive  {lifted, lifted, square};
constexpr Palette rose   {root, linear, linear};
constexpr Palette sand   {linear, linear, {0.745, 1.255, 1.0}};
constexpr Palette brick  {{0.0, 0.7, 1.0}, square, {0.0, 1.0, 3.0}};
constexpr Palette grey   {linear, linear, linear};

/// The first part that a path holds decides.
constexpr Look looks[] = {
    {"AIA/171", &gold, &coolCorona},
    {"AIA/193", &bronze, &warmCorona},
    {"AIA/304", &red, &chromosphere},
    {"AIA/94", &green, &hotCorona},
    {"AIA/131", &teal, &hotCorona},
    {"AIA/211", &purple, &warmCorona},
    {"AIA/335", &blue, &hotCorona},
    {"AIA/1600", &olive, &ultraviolet},
    {"AIA/1700", &rose, &ultraviolet},
    {"AIA/4500", &sand, &photosphere},
    {"SUVI/94", &green, &hotCorona},
    {"SUVI/195", &bronze, &warmCorona},
    {"SUVI/304", &red, &chromosphere},
    {"EIT/171", &azure, &coolCorona},
    {"EIT/195", &grass, &warmCorona},
    {"EIT/304", &red, &chromosphere},
    {"EUVI/171", &azure, &coolCorona},
    {"EUVI/195", &grass, &warmCorona},
    {"continuum", &grey, &photosphere},
    {"magnetogram", &grey},
    {"H-alpha", &brick, &hydrogen},
    {"SJI", &rose, &ultraviolet},
    {"XRT", &red, &softXRays},
    {"SXT", &red, &softXRays},
    {"RHESSI", &red, &softXRays},
    {"LASCO/C2", &red, nullptr, &c2},
    {"LASCO/C3", &azure, nullptr, &c3},
    {"COR1", &grass, nullptr, &cor1},
    {"COR2", &red, nullptr, &cor2},
    {"CCOR", &azure, nullptr, &c3},
    {"KCor", &grey, nullptr, &kCor},
    {"PUNCH", &grey, nullptr, &punch},
};
// clang-format on

int level(const Curve &curve, double brightness)
{
    const double share = std::clamp((brightness - curve.from) / (curve.to - curve.from), 0.0, 1.0);
    return static_cast<int>(std::lround(255.0 * std::pow(share, curve.power)));
}

} // namespace

const Look &lookOf(const QString &path)
{
    const auto *found = std::find_if(std::begin(looks), std::end(looks), [&path](const Look &look) {
        return path.contains(QLatin1String(look.part));
    });
    return found == std::end(looks) ? looks[0] : *found;
}

QVector<QRgb> colourTable(const Palette &palette)
{
    constexpr int colours = 255;
    QVector<QRgb> table;
    for (int index = 0; index < colours; ++index) {
        const double brightness = static_cast<double>(index) / (colours - 1);
        table.append(qRgb(level(palette.red, brightness), level(palette.green, brightness),
                          level(palette.blue, brightness)));
    }
    return table;
}

} // namespace Simulator
