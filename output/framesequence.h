#pragma once

class QString;

/// The numbered frames that a film is made of.
namespace FrameSequence {

/// Whether @p path is a PNG file with a beginning and an end.
bool isWhole(const QString &path);

/**
 * How many of the frames 0 to @p count - 1 in @p folder are PNG files with a beginning and an end.
 *
 * An encoder ends with 0 over the frames up to the first that is missing or cut off.
 */
int countWhole(const QString &folder, int count);

} // namespace FrameSequence
