#pragma once

#include "roi/regionscene.h"

#include <QObject>

#include <optional>

class QGraphicsView;
class QLabel;
class QMouseEvent;

/**
 * The graphics view on which the user looks at one full frame and its regions, takes hold of them,
 * and drags out a new one.
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
    bool isDragging() const { return m_drag.has_value(); }
    /// Size in pixels of the frame that is shown; empty when none is.
    QSize frameSize() const { return m_scene.frameSize(); }

    /// The pixel of the frame that the mouse is at, or would be at beside it.
    QPointF mousePosition() const;

    /// Shows a frame without regions; ends drawing.
    void showFrame(const QPixmap &frame);
    /// Shows @p text in place of a frame; ends drawing.
    void showMessage(const QString &text);
    /// Replaces the regions; the one at the index @p current, if any, is highlighted and has
    /// handles.
    void showRegions(const QVector<RegionMark> &regions, int current);
    /// Width / height that drags hold, as in RegionShape; 0 for a free one.
    void setProportion(double proportion) { m_proportion = proportion; }

    /// Makes the next drag inside the frame draw a rectangle instead of panning.
    void startDrawing();
    /// Makes drags pan again; drops a rectangle that is being drawn, without a signal.
    void cancelDrawing();
    /// Draws half of the frame, in its middle, as if by a drag.
    void drawMiddle();
    /// Undoes the drag in progress; does nothing without one.
    void cancelDrag();

public slots:
    /// Fits the whole frame into the view, as soon as the view has its final size.
    void fit();

signals:
    /// A rectangle of at least 2 x 2 pixels is drawn; @p pixels lies inside the frame.
    void rectangleDrawn(const QRectF &pixels);
    /// A drag ended that was smaller; no region is to be created.
    void rectangleTooSmall();
    /// The mouse was pressed outside the frame; drawing mode stays on.
    void startedOutside();
    /// The mouse is at @p pixel of the frame, or beside it.
    void hovered(const QPointF &pixel);
    /// The mouse has left the view.
    void left();
    /// A click on the outline or the name of another region.
    void regionPicked(int row);
    /// During a drag: the current region is to cover @p pixels.
    void regionDragged(const QRect &pixels);
    /// The drag is over; unless it is @p kept, the region is to be as before.
    void dragEnded(bool kept);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    /// A drag of the current region.
    struct Drag
    {
        RegionGrip grip;
        QRect start;     // of the region, in pixels of the frame
        QPointF pressed; // by the mouse, likewise
        QRect pixels;    // of the region so far
    };

    void fitWhenShown();
    void zoom(bool closer);
    bool mouseEvent(QEvent *event);
    bool drawingEvent(const QMouseEvent &event);
    void beginRectangle(const QPointF &position);
    void endRectangle(const QPointF &position);
    QRectF drawnTo(const QPointF &position) const;
    bool regionEvent(const QMouseEvent &event);
    bool takeHold(const QPoint &position);
    void drag(const QPointF &position);
    bool letGo(const QPoint &position);
    void endDrag(bool kept);
    void showCursorFor(const QPoint &position);

    QGraphicsView *m_view; // not owned; belongs to the panel's form
    RegionScene m_scene;
    QLabel *m_message;                         // owned by the view
    QGraphicsRectItem *m_rubberBand = nullptr; // exists only while the mouse is held down
    QPointF m_dragStart;                       // of the rubber band, in pixels of the frame
    std::optional<Drag> m_drag;
    int m_pickRow = -1; // the region that a click would pick, while the mouse is held down
    QPoint m_pickPosition;
    double m_proportion = 0.0;
    bool m_drawing = false;
    bool m_fitPending = false;
};
