#pragma once

#include <QString>

/// Finds the newest files below a folder; none in a folder that does not exist.
namespace OutputSearch {

/// Absolute path of the MP4 modified last, at any depth; empty when there is none.
QString newestVideo(const QString &root);

/// Where to look for a video: @p lastFolder while it exists, else that of the newest video, else
/// @p root.
QString videoStartFolder(const QString &root, const QString &lastFolder);

/// Absolute folder of the session.json modified last, at any depth; empty when there is none.
QString newestSession(const QString &root);

} // namespace OutputSearch
