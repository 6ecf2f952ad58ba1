#include "simulator/sun/scene.h"

#include "simulator/sun/activeregions.h"
#include "simulator/sun/coronagraphpainter.h"
#include "simulator/sun/coronapainter.h"
#include "simulator/sun/darkroom.h"
#include "simulator/sun/diskpainter.h"
#include "simulator/sun/lightfield.h"
#include "simulator/sun/looppainter.h"
#include "simulator/sun/magnetogrampainter.h"
#include "simulator/sun/regionpainter.h"
#include "simulator/sun/surface.h"

#include <QImage>

namespace Simulator {

namespace {

constexpr int darkestOnDisk = 8; // a colour that is told from a part never rendered

void paintSun(LightField &field, qint64 unixTime, const SunStyle &style)
{
    const Surface surface(unixTime, field.disk().radius);
    const std::vector<ActiveRegion> regions = activeRegionsAt(unixTime);
    paintDisk(field, surface, style);
    paintCorona(field, surface, regions, style);
    paintRegions(field, surface, regions, style);
    paintFilaments(field, filamentsAt(unixTime), style);
    paintLoops(field, regions, unixTime, style);
}

Development paint(LightField &field, const SceneView &view)
{
    const Look &look = view.look;
    if (look.optics) {
        paintCoronagraph(field, view.unixTime, *look.optics);
        return {0.0F, 2.0F, 1.15F, 3.5F, 0, view.grainSeed};
    }
    if (!look.sun) {
        paintMagnetogram(field, Surface(view.unixTime, view.disk.radius),
                         activeRegionsAt(view.unixTime));
        return {0.0F, 0.0F, 1.0F, 2.5F, darkestOnDisk, view.grainSeed};
    }
    const SunStyle &style = *look.sun;
    paintSun(field, view.unixTime, style);
    return {style.black, style.curve, style.white, style.grain, darkestOnDisk, view.grainSeed};
}

} // namespace

QImage renderScene(const SceneView &view)
{
    LightField field(view.widthPx, view.heightPx, view.disk);
    const Development development = paint(field, view);
    return develop(field, colourTable(*view.look.palette), development);
}

} // namespace Simulator
