#pragma once

#include <QGraphicsScene>
#include <QObject>
#include <QPixmap>
#include <QRect>
#include <QVector>

class QGraphicsPixmapItem;
class QGraphicsRectItem;
class QGraphicsView;
class QLabel;
class QMouseEvent;

/**
 * The graphics view on which the user looks at one full frame, its regions, and drags out a new
 * one.
 *
 * Knows pixels only: it neither reads files nor keeps the list of regions.
 */
class RoiCanvas final : public QObject
{
    Q_OBJECT

public:
    /// Sets the scene of @p view and handles the mouse events of its viewport.
    explicit RoiCanvas(QGraphicsView *view, QObject *parent = nullptr);

    bool isDrawing() const { return m_drawing; }
    /// Size in pixels of the frame that is shown; empty when none is.
    QSize frameSize() const { return m_framePixmap.size(); }

    /// Shows a frame without regions; ends drawing.
    void showFrame(const QPixmap &frame);
    /// Shows @p text in place of a frame; ends drawing.
    void showMessage(const QString &text);
    /// Replaces the outlines; the one at the index @p current, if any, is highlighted.
    void showRegions(const QVector<QRect> &regions, int current);

    /// Makes the next drag inside the frame draw a rectangle instead of panning.
    void startDrawing();
    /// Makes drags pan again; drops a rectangle that is being drawn, without a signal.
    void cancelDrawing();

public slots:
    /// Fits the whole frame into the view, as soon as the view has its final size.
    void fit();

signals:
    /// A drag of at least 2 x 2 pixels ended; @p pixels lies inside the frame.
    void rectangleDrawn(const QRectF &pixels);
    /// A drag ended that was smaller; no region is to be created.
    void rectangleTooSmall();
    /// The mouse was pressed outside the frame; drawing mode stays on.
    void startedOutside();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void fitWhenShown();
    void zoom(bool closer);
    bool drawingEvent(QEvent *event);
    void draw(const QMouseEvent &event);
    void beginRectangle(const QPointF &position);
    void endRectangle(const QPointF &position);
    QPointF framePosition(const QMouseEvent &event) const;
    QRectF draggedTo(const QPointF &position) const;
    void clearScene();

    QGraphicsView *m_view; // not owned; belongs to the dialog's form
    QGraphicsScene m_scene;
    QLabel *m_message; // owned by the view
    QPixmap m_framePixmap;
    QGraphicsPixmapItem *m_frame = nullptr; // this and the items on it are owned by the scene
    QVector<QGraphicsRectItem *> m_regions;
    QGraphicsRectItem *m_rubberBand = nullptr; // exists only while the mouse is held down
    QPointF m_dragStart;                       // in pixels of the frame
    bool m_drawing = false;
    bool m_fitPending = false;
};
