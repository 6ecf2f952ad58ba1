#pragma once

#include "roi/regionmarks.h"

#include <QGraphicsScene>
#include <QPixmap>

class QGraphicsPixmapItem;
class QGraphicsRectItem;
class QGraphicsView;

/**
 * One full frame with the outlines, names and handles of its regions, as one view shows it.
 *
 * Outlines belong to the frame and grow with the zoom; names and handles keep their size on the
 * screen.
 */
class RegionScene final : public QGraphicsScene
{
    Q_OBJECT

public:
    /// What is under the mouse: the row of a region in the list, and the part to take hold of.
    struct Hit
    {
        int row = -1;
        RegionGrip grip;
    };

    /// Becomes the scene of @p view, which has to outlive it.
    explicit RegionScene(QGraphicsView *view, QObject *parent = nullptr);

    QGraphicsPixmapItem *frame() const { return m_frame; } ///< null when none is shown
    QSize frameSize() const { return m_framePixmap.size(); }
    int currentRow() const { return m_current; } ///< -1 when none is
    QRect region(int row) const { return m_regions.at(row).pixels; }
    /// The region at a point of the viewport, the current one first.
    Hit hitAt(const QPoint &position) const;
    QPointF framePosition(const QPoint &position) const;

    /// Shows a frame without regions.
    void showFrame(const QPixmap &frame);
    void removeFrame();
    /// Replaces the regions; the one at @p current, if any, stands out.
    void showRegions(const QVector<RegionMark> &regions, int current);

protected:
    void drawForeground(QPainter *painter, const QRectF &exposed) override;

private:
    void fitOutlines();
    void measureNames(const QVector<RegionMark> &before);
    QRectF onScreen(int row) const;
    QRectF nameBox(int row) const;
    void drawMark(QPainter &painter, int row) const;

    /// A name as it is drawn.
    struct Label
    {
        QString text; // shortened where it would cover the picture
        QSizeF size;
    };

    QGraphicsView *m_view;                  // not owned
    QGraphicsPixmapItem *m_frame = nullptr; // this and the items on it are owned by the scene
    QPixmap m_framePixmap;
    QVector<QGraphicsRectItem *> m_outlines;
    QVector<RegionMark> m_regions;
    QVector<Label> m_labels;
    int m_current = -1;
};
