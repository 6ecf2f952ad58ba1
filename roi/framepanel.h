#pragma once

#include "roi/roisession.h"

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
 * A frame is decoded in a turn of the event loop of its own, and of all that were asked for since
 * the last one only the newest.
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

    /// Shows nothing, until there are frames.
    void clear();
    /// Takes over the frames of a datasource, of which the first one is shown.
    void showFrames(const QVector<RoiSourceFrame> &frames);
    /// Tells what is known of the size of the current region; empty when nothing is.
    void showRegionSize(const QString &text);
    /// Lets the next drag draw a region; does nothing without a frame but say so.
    void startDrawing();
    void focusSlider();

public slots:
    /// Drops a rectangle that is being drawn, or the wish to draw one.
    void endDrawing();

signals:
    /// Another frame is shown, or none.
    void frameChanged();
    /// A sentence for the status line; empty when the last one no longer holds.
    void statusChanged(const QString &text);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void wantFrame(int index);
    void showWanted();
    void showNone(const QString &text);
    void showCursor(const QPointF &pixel);
    void connectCanvas();

    std::unique_ptr<Ui::FramePanel> m_ui;
    RoiCanvas *m_canvas; // owned as a child
    QVector<RoiSourceFrame> m_frames;
    RoiSourceFrame m_frame;
    QImage m_image;
    QTimer m_decoding;
};
