#pragma once

class QString;

/// The numbered frames that a film is made of.
namespace FrameSequence {

/// Whether @p path is a PNG file with a beginning and an end.
bool isWhole(const QString &path);

/**
 * How many of the frames 0 to @p count - 1 in @p folder are PNG files with a beginning and an end.
 *
 * An encoder stops before the first one that is missing or cut off, and still exits with 0.
 */
int countWhole(const QString &folder, int count);

} // namespace FrameSequence
