#pragma once

#include <QImage>
#include <QSize>
#include <QString>

/// A finished film, as ffprobe and ffmpeg see it.
struct Film
{
    int frames = 0;
    QSize size;
    QString rate; ///< "5/1"

    /// An empty record when @p path is no film.
    static Film probe(const QString &path);
    /// Frame @p index, decoded; null when there is none.
    static QImage frame(const QString &path, int index);
};
