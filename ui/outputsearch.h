#pragma once

#include <QString>

/// What was written last below a folder. Folders that do not exist hold nothing.
namespace OutputSearch {

/// Absolute path of the MP4 modified last, at any depth; empty when there is none.
QString newestVideo(const QString &root);

/// Where to look for a video: @p lastFolder while it exists, else that of the newest video, else
/// @p root.
QString videoStartFolder(const QString &root, const QString &lastFolder);

/// Absolute folder of the session.json modified last, at any depth; empty when there is none.
QString newestSession(const QString &root);

} // namespace OutputSearch
