#pragma once

#include "output/filmencoder.h"

#include <QObject>

/**
 * One ffmpeg run that is waited for in an event loop of its own, so that windows stay alive.
 */
class RoiEncoder final : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Whether there is an encoder at @p program; @p errorText, which may be null, says so if not.
    static bool isPresent(const QString &program, QString *errorText = nullptr);

    /**
     * Makes a film.
     *
     * One that failed or was canceled half-way is removed, also when it could be played. The
     * earlier film of the same name, if any, is there again then; it only goes when the new one
     * stands.
     *
     * @param errorText  may be null; set on failure only: the last 4000 characters of what ffmpeg
     *                   wrote, or the system's words when it wrote nothing; before them a sentence
     *                   when ffmpeg itself did not notice
     */
    bool run(FilmOrder order, QString *errorText = nullptr);

public slots:
    /// Kills the encoder, for which a second has to be enough; run() then fails.
    void cancel() { m_encoder.cancel(); }

private:
    FilmOutcome runToEnd(const FilmOrder &order);
    QString failureText(const FilmOutcome &outcome) const;

    FilmEncoder m_encoder;
};
