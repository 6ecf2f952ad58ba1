#pragma once

class QString;

/// Replaces a file in one step.
namespace FileReplace {

/**
 * Renames the file @p by to @p path, replacing any file of that name.
 *
 * Both are in one folder. A program that opens @p path meanwhile gets the old file or the new one,
 * never a part of one. A link is replaced itself, not its target; a folder is not replaced.
 *
 * @return false when the system refuses; both are then unchanged
 */
bool replace(const QString &path, const QString &by);

} // namespace FileReplace
