#pragma once

#include "simulator/service/answer.h"
#include "simulator/service/query.h"

namespace Simulator {

class Archive;
class PictureStore;
struct ArchiveImage;

/// The tree of all datasources, keyed by the levels of their paths.
Answer dataSourcesAnswer(const Archive &archive);

/// The frame index of a film, resampled at the cadence asked for.
Answer jpxAnswer(const Archive &archive, const Query &query);

/// How an answer to getClosestImage departs from the usual one.
enum class ClosestImageForm {
    Usual,
    NumberId,       ///< "id":12 in place of "id":"12"
    ZeroId,         ///< "id":"0"
    WordId,         ///< "id":"unknown"
    NullId,         ///< "id":null
    MissingId,      ///< no "id"
    NumericStrings, ///< every number is a text
    NoRsun,         ///< an older server, which does not know "rsun"
};

/// The image nearest to a time; @p dateShiftSeconds moves the time that it claims.
Answer closestImageAnswer(const Archive &archive, const Query &query,
                          ClosestImageForm form = ClosestImageForm::Usual,
                          int dateShiftSeconds = 0);

/// A part of a rendering that the service's renderer left empty.
enum class MissingBlock { None, Black, Transparent };

/// The rendering of one image.
Answer downloadImageAnswer(const Archive &archive, PictureStore &pictures, const Query &query,
                           MissingBlock block = MissingBlock::None);

} // namespace Simulator
