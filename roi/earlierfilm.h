#pragma once

#include <QString>
#include <QStringList>

/**
 * The earlier film of the same name, kept aside until the new one is complete.
 *
 * It is renamed within its folder, to a name that no search for films matches, and gets its own
 * name back unless the new film supersedes it. If the program is killed in between, restoreAll() or
 * the next run that makes the same film finds it.
 */
class EarlierFilm final
{
public:
    /// The longest file name a film may have, in bytes: the name of the one kept aside is longer.
    static int maxNameBytes();

    /// Whether @p folder holds a film that was kept aside.
    static bool isWaitingIn(const QString &folder) { return !waiting(folder).isEmpty(); }

    /**
     * Gives the films kept aside in @p folder their names back, unless a whole film has taken them.
     *
     * No encoder may be at work in that folder.
     *
     * @return paths of the films that were restored
     */
    static QStringList restoreAll(const QString &folder);

    /// Moves the film at the path @p film aside, if there is one; see isOutOfTheWay().
    explicit EarlierFilm(const QString &film);
    /// Replaces whatever is at the film's path by the earlier film; removes it if there is none.
    ~EarlierFilm();

    /// False when it could not be moved: an encoder would overwrite it.
    bool isOutOfTheWay() const { return m_isOutOfTheWay; }

    /// Tells that the new film is whole: the earlier one is removed, provided there is a new one.
    void supersede();

private:
    Q_DISABLE_COPY(EarlierFilm)

    static QStringList waiting(const QString &folder);

    QString m_film;
    QString m_aside;
    bool m_isOutOfTheWay;
    bool m_superseded = false;
};
