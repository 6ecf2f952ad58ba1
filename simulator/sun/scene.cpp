#include "simulator/sun/scene.h"

#include "simulator/hash.h"
#include "simulator/sun/activeregions.h"
#include "simulator/sun/coronagraphpainter.h"
#include "simulator/sun/coronapainter.h"
#include "simulator/sun/darkroom.h"
#include "simulator/sun/diskpainter.h"
#include "simulator/sun/lightfield.h"
#include "simulator/sun/looppainter.h"
#include "simulator/sun/magnetogrampainter.h"
#include "simulator/sun/regionpainter.h"
#include "simulator/sun/sunstyle.h"
#include "simulator/sun/surfaceview.h"

#include <QImage>

#include <algorithm>
#include <cmath>

namespace Simulator {

namespace {

constexpr int darkestOnDisk = 8; // a colour that is told from a part never rendered

/// Two feet of a flare in the middle of the picture: who looks at hard X-rays looks there.
void paintKernels(LightField &field, quint64 seed)
{
    const float x = field.xOf(field.widthPx() / 2);
    const float y = field.yOf(field.heightPx() / 2);
    const float reach = 0.15F * float(field.widthPx()) / float(field.disk().radius);
    for (quint64 kernel = 0; kernel < 3; ++kernel)
        field.addSpot(x + reach * float(chance(seed, kernel * 3) - 0.5),
                      y + reach * float(chance(seed, kernel * 3 + 1) - 0.5), 0.7F * reach,
                      0.6F + 1.8F * float(chance(seed, kernel * 3 + 2)));
}

Development paintSun(LightField &field, const SceneView &view)
{
    const SunStyle style = styleOf(view.look);
    const SurfaceView surface(view.unixTime, view.disk.radius);
    const std::vector<ActiveRegion> regions = activeRegionsAt(view.unixTime);
    paintDisk(field, surface, style);
    paintCorona(field, surface, regions, style);
    paintRegions(field, surface, regions, style);
    paintFilaments(field, surface, filamentsAt(view.unixTime), style);
    paintLoops(field, surface, regions, view.unixTime, style);
    if (view.look == Look::HardXRay)
        paintKernels(field, quint64(view.unixTime / 600));
    return {style.black, style.curve, style.white, style.grain, darkestOnDisk, view.grainSeed};
}

Development paintField(LightField &field, const SceneView &view)
{
    const SurfaceView surface(view.unixTime, view.disk.radius);
    paintMagnetogram(field, surface, activeRegionsAt(view.unixTime));
    return {0.0F, 0.0F, 1.0F, 2.5F, darkestOnDisk, view.grainSeed};
}

Development paintOutskirts(LightField &field, const SceneView &view)
{
    paintCoronagraph(field, view.unixTime, view.look);
    return {0.0F, 2.0F, 1.15F, 3.5F, 0, view.grainSeed};
}

Development paint(LightField &field, const SceneView &view)
{
    switch (view.look) {
    case Look::CoronaC2:
    case Look::CoronaC3:
    case Look::CoronaCor1:
    case Look::CoronaCor2:
    case Look::CoronaK:
    case Look::CoronaWide:
        return paintOutskirts(field, view);
    case Look::Magnetic:
        return paintField(field, view);
    case Look::Gold:
    case Look::Bronze:
    case Look::Red:
    case Look::Green:
    case Look::Teal:
    case Look::Purple:
    case Look::Blue:
    case Look::EitBlue:
    case Look::EitGreen:
    case Look::Olive:
    case Look::Rose:
    case Look::Sand:
    case Look::Visible:
    case Look::HAlpha:
    case Look::XRay:
    case Look::HardXRay:
    case Look::FarUv:
        break;
    }
    return paintSun(field, view);
}

} // namespace

QImage renderScene(const SceneView &view)
{
    LightField field(view.widthPx, view.heightPx, view.disk);
    const Development development = paint(field, view);
    QVector<QRgb> palette = colourTable(view.look);
    if (view.look == Look::CoronaWide)
        palette[0] = qRgba(0, 0, 0, 0);
    return develop(field, palette, development);
}

} // namespace Simulator
