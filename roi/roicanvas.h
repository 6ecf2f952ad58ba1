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
    /// Puts its scene into @p view and takes the mouse of its viewport.
    explicit RoiCanvas(QGraphicsView *view, QObject *parent = nullptr);

    bool isDrawing() const { return m_drawing; }
    /// Size in pixels of the frame that is shown; empty when none is.
    QSize frameSize() const { return m_framePixmap.size(); }

    /// Shows a frame without regions; ends drawing.
    void showFrame(const QPixmap &frame);
    /// Shows @p text in place of a frame; ends drawing.
    void showMessage(const QString &text);
    /// Replaces the outlines; the one at @p current, if any, stands out.
    void showRegions(const QVector<QRect> &regions, int current);

    /// Lets the next drag that begins inside the frame draw a rectangle where it would pan.
    void startDrawing();
    /// Lets drags pan again; a rectangle that is being drawn is dropped without a signal.
    void cancelDrawing();

public slots:
    /// Fits the whole frame into the view: at once, or as soon as the view has its size.
    void fit();

signals:
    /// A drag of at least 2 x 2 pixels ended; @p pixels lies inside the frame.
    void rectangleDrawn(const QRectF &pixels);
    /// The drag ended smaller than that; nothing is to be created.
    void rectangleTooSmall();
    /// The mouse went down beside the frame; drawing goes on.
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
