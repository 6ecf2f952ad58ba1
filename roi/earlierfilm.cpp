#include "roi/earlierfilm.h"

#include "base/filereplace.h"
#include "output/filmfile.h"

#include <QFile>
#include <QFileInfo>

namespace {

/// A link counts as itself, also when it leads nowhere: the encoder would write through it.
bool isThere(const QString &path)
{
    const QFileInfo info(path);
    return info.isFile() || info.isSymLink();
}

/// No longer than the film's own name, which may be as long as the system allows.
QString besideName(const QString &film)
{
    return film.left(film.lastIndexOf(QLatin1Char('.'))) + QStringLiteral(".old");
}

} // namespace

EarlierFilm::EarlierFilm(const QString &film) : m_film(film), m_aside(besideName(film))
{
    if (isThere(m_aside) && FilmFile::isCutOff(m_film)) // the program was killed while it encoded
        QFile::remove(m_film);
    m_isOutOfTheWay = !isThere(m_film) || FileReplace::replace(m_aside, m_film);
}

EarlierFilm::~EarlierFilm()
{
    if (m_superseded)
        QFile::remove(m_aside);
    else if (m_isOutOfTheWay && !(isThere(m_aside) && FileReplace::replace(m_film, m_aside)))
        QFile::remove(m_film);
}

void EarlierFilm::supersede()
{
    m_superseded = isThere(m_film);
}
