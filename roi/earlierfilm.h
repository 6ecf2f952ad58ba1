#pragma once

#include <QString>

/**
 * The film that already bears the name of a new one, kept aside until the new one stands.
 *
 * It lies beside its place under a name that no search takes for a film's, and comes back unless
 * the new film supersedes it. When the program is killed in between it stays there, and the next
 * attempt at the same name finds it.
 */
class EarlierFilm
{
public:
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

    QString m_film;
    QString m_aside;
    bool m_isOutOfTheWay;
    bool m_superseded = false;
};
