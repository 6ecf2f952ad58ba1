#pragma once

#include <QObject>

/**
 * The signals by which a system ends a program, told in the event loop.
 *
 * SIGTERM, SIGHUP and SIGINT come at a logout, from `kill` and from Ctrl+C in a terminal. Each is
 * told once; the second of a kind ends the program at once, as ever. SIGXFSZ is ignored, so that a
 * limit on the size of files fails the write and not the program. There may be one such object; on
 * Windows it does nothing.
 */
class TerminationSignals final : public QObject
{
    Q_OBJECT

public:
    explicit TerminationSignals(QObject *parent = nullptr);

signals:
    /// The program is asked to end, by the signal of this @p number.
    void received(int number);
};
