#pragma once

#include <QObject>

/**
 * The signals that ask a program to end, delivered through the event loop.
 *
 * SIGTERM, SIGHUP and SIGINT come at a logout, from `kill` and from Ctrl+C in a terminal. Each is
 * delivered once; a second one of the same kind ends the program at once. SIGXFSZ is ignored, so
 * that a limit on the size of files fails the write and not the program. There may be one such
 * object; on Windows it does nothing.
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
