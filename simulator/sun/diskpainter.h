#pragma once

namespace Simulator {

class LightField;
class SurfaceView;
struct SunStyle;

/// Paints the quiet Sun: the surface inside the limb, without anything that is active.
void paintDisk(LightField &field, const SurfaceView &surface, const SunStyle &style);

} // namespace Simulator
