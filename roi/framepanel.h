#pragma once

#include "roi/frameinterval.h"
#include "roi/frameplayer.h"

#include <QImage>
#include <QTimer>
#include <QWidget>

#include <memory>

class RoiCanvas;

namespace Ui {
class FramePanel;
}

/**
 * The frames of one datasource, one at a time: the canvas and the slider that walks through them.
 *
 * Each frame is decoded in its own turn of the event loop; of several that are requested meanwhile,
 * only the latest is decoded.
 */
class FramePanel final : public QWidget
{
    Q_OBJECT

public:
    explicit FramePanel(QWidget *parent = nullptr);
    ~FramePanel() override;

    RoiCanvas &canvas() const { return *m_canvas; }
    bool hasFrames() const { return !m_frames.isEmpty(); }
    /// The frame that is shown; null while there is none.
    const QImage &image() const { return m_image; }
    /// What is known of that frame.
    const RoiSourceFrame &frame() const { return m_frame; }

    /// The part of the session that films are made of.
    const FrameInterval &interval() const { return m_interval; }
    int keptFrames() const { return m_kept; } ///< of this datasource, by that interval

    /// Shows nothing, until there are frames; the interval is all of them again.
    void clear();
    /// Takes over the frames of the datasource in @p row of the session; the first one is shown.
    void showFrames(const QVector<RoiSourceFrame> &frames, int row);
    /// The rate at which frames are played.
    void setRate(int fps) { m_player.setRate(fps); }
    /// Shows a text about the size of the current region; empty when nothing is known.
    void showRegionSize(const QString &text);
    /// Makes the next drag draw a region; without a frame it only shows a message.
    void startDrawing();
    void focusSlider();

public slots:
    /// Leaves drawing mode; a half-drawn rectangle is dropped.
    void endDrawing();
    /// Stops drawing and playing.
    void rest();

signals:
    /// Another frame is shown, or none.
    void frameChanged();
    /// The frames that films are made of have changed.
    void intervalChanged();
    /// A sentence for the status line; empty when the last one no longer holds.
    void statusChanged(const QString &text);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    bool stepBy(QKeyEvent *event);
    bool pageBy(int key);
    void wantFrame(int index);
    void showWanted();
    void showNone(const QString &text);
    void showCursor(const QPointF &pixel);
    void togglePlaying();
    void changeInterval(FrameInterval (*change)(FrameInterval, const QVector<RoiSourceFrame> &, int,
                                                int));
    void setInterval(const FrameInterval &interval);
    void tellInterval(const FrameInterval &interval);
    void keepHeights();
    void connectCanvas();
    void connectSlider();

    std::unique_ptr<Ui::FramePanel> m_ui;
    RoiCanvas *m_canvas; // owned as a child
    QVector<RoiSourceFrame> m_frames;
    int m_row = -1; // of their datasource
    FrameInterval m_interval;
    int m_kept = 0;
    RoiSourceFrame m_frame;
    QImage m_image;
    QTimer m_decoding;
    FramePlayer m_player;
};
