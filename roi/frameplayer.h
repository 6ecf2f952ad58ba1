#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

/// Tells which frame is due while frames are played at a film's rate; late frames are skipped.
class FramePlayer final : public QObject
{
    Q_OBJECT

public:
    explicit FramePlayer(QObject *parent = nullptr);

    bool isPlaying() const { return m_ticking.isActive(); }
    /// Plays the frames after @p first up to @p last.
    void play(int first, int last);
    /// Sets the rate of the film, also while playing.
    void setRate(int fps);

public slots:
    void stop();

signals:
    /// Time for another frame.
    void frameDue(int index);
    void playingChanged(bool playing);

private:
    void tick();

    QTimer m_ticking;
    QElapsedTimer m_clock; // since the first frame
    int m_first = 0;
    int m_last = 0;
    int m_fps = 25;
};
