#pragma once

class Album;
class QString;

/// Pictures of the region tool, and of what it makes of the frames of a stored session.
namespace RegionPictures {

/// False when the datasource @p nickname of the session has no frames to show.
bool take(Album &album, const QString &sessionDirectory, const QString &nickname);

} // namespace RegionPictures
