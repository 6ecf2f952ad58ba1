#pragma once

#include <QtGlobal>

namespace Simulator {

class LightField;
struct Optics;

/// Paints the outer corona around an occulter: streamers, outbursts, stars.
void paintCoronagraph(LightField &field, qint64 unixTime, const Optics &optics);

} // namespace Simulator
