#pragma once

class QString;

/// Files that take the place of others.
namespace FileReplace {

/**
 * Gives the file @p by the name @p path, under which there may be another one.
 *
 * Both are in one folder. Whoever opens @p path meanwhile gets the old file or the new one, both
 * whole. A link there is replaced itself, wherever it leads; a folder is not.
 *
 * @return false when the system refuses; then both are as before
 */
bool replace(const QString &path, const QString &by);

} // namespace FileReplace
