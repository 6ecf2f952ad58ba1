#pragma once

#include <QString>

/// The state of a datasource's film, judged by the number of frames that it must show.
struct FilmVerdict
{
    enum class Kind {
        Whole,
        Missing,
        Broken, ///< cut off, with too few pictures, or a link that leads nowhere
        Other,  ///< not an MP4, or more pictures than there are frames: not to be replaced
    };

    Kind kind = Kind::Missing;
    QString flaw; ///< completes a sentence that begins with the film's name; empty when whole
};

namespace FilmVerdicts {

/// Judges the film at @p path.
FilmVerdict judge(const QString &path, qint64 pictures);

} // namespace FilmVerdicts
