#include "roi/earlierfilm.h"

#include "base/filenames.h"
#include "base/filereplace.h"
#include "output/filmfile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

/// Appended to the film's whole name; unlikely to be used by hand.
const QString &asideSuffix()
{
    static const QString suffix = QStringLiteral(".orvik-earlier");
    return suffix;
}

/// True also for a dangling link: the encoder would write through it.
bool isThere(const QString &path)
{
    const QFileInfo info(path);
    return info.isSymLink() || (info.exists() && !info.isDir());
}

/// Whether the film at this path may be replaced.
bool isFree(const QString &film)
{
    return !isThere(film) || FilmFile::isCutOff(film);
}

} // namespace

int EarlierFilm::maxNameBytes()
{
    return FileNames::maxNameBytes - asideSuffix().size();
}

QStringList EarlierFilm::restoreAll(const QString &folder)
{
    QStringList restored;
    const QStringList names = waiting(folder);
    for (const QString &name : names) {
        const QString aside = QDir(folder).filePath(name);
        const QString film = aside.chopped(asideSuffix().size());
        if (isFree(film) && FileReplace::replace(film, aside))
            restored.append(film);
    }
    return restored;
}

/// The names of the films kept aside in a folder.
QStringList EarlierFilm::waiting(const QString &folder)
{
    return QDir(folder).entryList({QStringLiteral("*.mp4") + asideSuffix()},
                                  QDir::Files | QDir::Hidden, QDir::Unsorted);
}

EarlierFilm::EarlierFilm(const QString &film) : m_film(film), m_aside(film + asideSuffix())
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
