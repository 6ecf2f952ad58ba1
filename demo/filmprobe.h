#pragma once

#include <QSize>
#include <QString>

#include <optional>

/// What a film turned out to hold.
struct Film
{
    int frames = 0;
    double seconds = 0.0;
    QSize size;
};

namespace FilmProbe {

/**
 * Decodes a whole film with ffprobe and returns what it found.
 *
 * @return nothing when the film is missing or a single frame does not decode; @p errorText, which
 *         may be null, then says why
 */
std::optional<Film> read(const QString &file, QString *errorText = nullptr);

} // namespace FilmProbe
