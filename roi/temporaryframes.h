#pragma once

#include <QString>

#include <functional>

/// The folders that hold pictures on their way to the encoder.
namespace TemporaryFrames {

/// The one below a datasource's own @p folder, which holds one for each film.
QString root(const QString &folder);

/**
 * Removes @p path and all in it. A link is taken away itself; where it leads is not ours.
 *
 * @param pause  called every few milliseconds: thousands of files, or large ones, take longer than
 *               a window may be without answer
 * @return       true when nothing is left there
 */
bool remove(const QString &path, const std::function<void()> &pause);

} // namespace TemporaryFrames
