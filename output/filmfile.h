#pragma once

#include <QtGlobal>

#include <optional>

class QString;

/// Checks films that ffmpeg has written.
namespace FilmFile {

/// What the structure of an MP4 shows.
struct Content
{
    bool isCutOff = false; ///< incomplete or empty
    qint64 pictures = 0;   ///< number in its video track; 0 when it is cut off
};

/**
 * Reads the box structure of the MP4 at @p path; no length in it is trusted.
 *
 * An MP4 is a sequence of boxes, each with its length in front (ISO/IEC 14496-12, 4.2). The one
 * called "moov", which ffmpeg writes last, holds the tables that a player needs.
 *
 * @return nothing when the file is not an MP4, has more than 10,000 boxes, is not a regular file
 *         or cannot be opened
 */
std::optional<Content> read(const QString &path);

/// Whether the film at @p path is incomplete or empty; false when read() returns nothing.
bool isCutOff(const QString &path);

/**
 * What is wrong with a film that ffmpeg has finished, as the end of a sentence; empty when it shows
 * @p pictures pictures, or when read() returns nothing.
 *
 * The exit code is not enough: ffmpeg (at least up to 5.1) returns 0 when the disk is full as it
 * closes the film, and when it has skipped pictures that it could not read; a script in its place
 * may return 0 without a film.
 */
QString flaw(const QString &path, qint64 pictures);

} // namespace FilmFile
