#pragma once

#include <QString>

#include <functional>

/// The folders of pictures for the encoder.
namespace TemporaryFrames {

/// The temporary folder in the @p folder of a datasource; it has a folder for each film.
QString root(const QString &folder);

/**
 * Removes @p path and everything in it. A link is removed itself, not its target.
 *
 * @param pause  called every few milliseconds, so that windows stay responsive while thousands of
 *               files, or large ones, are removed
 * @return       true when nothing is left there
 */
bool remove(const QString &path, const std::function<void()> &pause);

} // namespace TemporaryFrames
