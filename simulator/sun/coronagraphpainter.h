#pragma once

#include "simulator/sun/look.h"

#include <QtGlobal>

namespace Simulator {

class LightField;

/// Paints the corona in white light around an occulter: streamers, outbursts, stars.
void paintCoronagraph(LightField &field, qint64 unixTime, Look look);

} // namespace Simulator
