#pragma once

#include "simulator/service/answer.h"

class QUrlQuery;

namespace Simulator {

class Archive;
class PictureStore;

/// The tree of all datasources, keyed by the levels of their paths.
Answer dataSourcesAnswer(const Archive &archive);

/// The frame index of a film, resampled at the cadence asked for.
Answer jpxAnswer(const Archive &archive, const QUrlQuery &query);

/// The image nearest to a time.
Answer closestImageAnswer(const Archive &archive, const QUrlQuery &query);

/// The rendering of one image, as a PNG.
Answer downloadImageAnswer(const Archive &archive, PictureStore &pictures, const QUrlQuery &query);

} // namespace Simulator
