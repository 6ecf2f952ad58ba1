#pragma once

#include <QtGlobal>

#include <optional>

class QString;

/// Films as ffmpeg leaves them on disk.
namespace FilmFile {

/// What an MP4 tells of itself.
struct Content
{
    bool isCutOff = false; ///< only the beginning of a film, or nothing at all
    qint64 pictures = 0;   ///< that its tables list; 0 when it is cut off
};

/**
 * Looks through the boxes of the MP4 at @p path, trusting none of their lengths.
 *
 * An MP4 is a row of boxes, each with its length in front (ISO/IEC 14496-12, 4.2); the one called
 * "moov", which ffmpeg writes last, holds the tables without which nothing can be played.
 *
 * @return nothing for what is no MP4, has more boxes than a film of ours, is no regular file or
 *         cannot be opened: that is not judged
 */
std::optional<Content> read(const QString &path);

/// Whether @p path holds only the beginning of a film, or nothing at all; false when not judged.
bool isCutOff(const QString &path);

/**
 * What is wrong with a film that ffmpeg says it has finished, as the end of a sentence; empty when
 * it has all of its @p pictures, or is not judged.
 *
 * The exit code does not tell: ffmpeg up to 5.1 at least ends with 0 when the disk turns out to be
 * full as it closes the film, and when it leaves out pictures that it cannot read.
 */
QString flaw(const QString &path, qint64 pictures);

} // namespace FilmFile
