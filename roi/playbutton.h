#pragma once

#include <QToolButton>

/// The button that plays frames, and pauses them while they play.
class PlayButton final : public QToolButton
{
    Q_OBJECT

public:
    explicit PlayButton(QWidget *parent = nullptr);

    void showPlaying(bool playing);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    bool m_playing = false;
};
