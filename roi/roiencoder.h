#pragma once

#include "output/filmencoder.h"

#include <QObject>

/**
 * Runs ffmpeg and waits for its end in a nested event loop, so that windows stay responsive.
 */
class RoiEncoder final : public QObject
{
    Q_OBJECT

public:
    explicit RoiEncoder(QObject *parent = nullptr);

    /// Whether the file @p program exists; @p errorText, which may be null, is set if not.
    static bool isPresent(const QString &program, QString *errorText = nullptr);

    /**
     * Makes a film.
     *
     * After a failure or a cancel the earlier film of the same name, if any, is back in place, and
     * nothing of the new one is left.
     *
     * @param errorText  may be null; set on failure only: the last 4000 characters that ffmpeg
     *                   wrote, or the system's error text when it wrote nothing. When ffmpeg did
     *                   not report the failure itself, a sentence about it comes first
     */
    bool run(FilmOrder order, QString *errorText = nullptr);

public slots:
    /// Kills the encoder, waiting up to a second for its end; run() then returns false.
    void cancel() { m_encoder.cancel(); }

signals:
    /// ffmpeg has written @p text, trimmed and not empty.
    void outputRead(const QString &text);

private:
    FilmOutcome runToEnd(const FilmOrder &order);
    QString failureText(const FilmOutcome &outcome) const;

    FilmEncoder m_encoder;
};
