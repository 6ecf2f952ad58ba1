#pragma once

#include <QString>
#include <QStringList>

/**
 * The film that already bears the name of a new one, kept aside until the new one stands.
 *
 * It lies beside its place under a name of its own kind, which no search takes for a film's, and
 * comes back unless the new film supersedes it. When the program is killed in between it stays
 * there until restoreAll() or the next attempt at the same name finds it.
 */
class EarlierFilm final
{
public:
    /// Bytes that the file name of a film may have so that there is room for the one kept aside.
    static int maxNameBytes();

    /// Whether a film has been left aside in @p folder.
    static bool isWaitingIn(const QString &folder) { return !waiting(folder).isEmpty(); }

    /**
     * Puts the films that wait in @p folder back to places that are empty or hold a cut-off film.
     *
     * Nothing may be encoding there meanwhile.
     *
     * @return the films that are back
     */
    static QStringList restoreAll(const QString &folder);

    /// Frees @p film, the path of a film, for the encoder; see isOutOfTheWay().
    explicit EarlierFilm(const QString &film);
    /// Puts the earlier film back over whatever is at its place; without one clears that place.
    ~EarlierFilm();

    /// False when the system refused to move it: an encoder would write over it.
    bool isOutOfTheWay() const { return m_isOutOfTheWay; }

    /// The new film is whole: the earlier one goes. Without a new film it stays after all.
    void supersede();

private:
    Q_DISABLE_COPY(EarlierFilm)

    static QStringList waiting(const QString &folder);

    QString m_film;
    QString m_aside;
    bool m_isOutOfTheWay;
    bool m_superseded = false;
};
