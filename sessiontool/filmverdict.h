#pragma once

#include <QString>

/// What is at the place of a datasource's film, measured by the frames that it has to show.
struct FilmVerdict
{
    enum class Kind {
        Whole,
        Missing,
        Broken, ///< cut off, with too few pictures, or a link that leads nowhere
        Other,  ///< no MP4, or with more pictures than there are frames: not to be replaced
    };

    Kind kind = Kind::Missing;
    QString flaw; ///< the end of a sentence that the film's name begins; empty when whole
};

namespace FilmVerdicts {

/// Judges the film at @p path.
FilmVerdict judge(const QString &path, qint64 pictures);

} // namespace FilmVerdicts
