#pragma once

class QString;

/// Films as ffmpeg leaves them on disk.
namespace FilmFile {

/**
 * Whether @p path holds only the beginning of a film, or nothing at all.
 *
 * The exit code does not tell: ffmpeg up to 5.1 at least ends with 0 when the disk turns out to be
 * full as it closes the film. An MP4 is a row of boxes, each with its length in front; the one
 * called "moov", without which nothing can be played, comes last. What is no MP4 is not judged, and
 * neither is a file that cannot be opened.
 */
bool isCutOff(const QString &path);

} // namespace FilmFile
