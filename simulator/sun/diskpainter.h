#pragma once

namespace Simulator {

class LightField;
class Surface;
struct SunStyle;

/// Paints the quiet Sun: the surface inside the limb, without anything that is active.
void paintDisk(LightField &field, const Surface &surface, const SunStyle &style);

} // namespace Simulator
