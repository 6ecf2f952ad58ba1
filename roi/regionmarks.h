#pragma once

#include "roi/regionshape.h"

#include <QRectF>
#include <QSizeF>
#include <QString>
#include <QVector>

/// A region as the canvas shows it.
struct RegionMark
{
    QRect pixels; ///< of the frame
    QString name;
};

/// The part of a region that the mouse can take hold of.
struct RegionGrip
{
    enum class Kind { None, Name, Side };

    Kind kind = Kind::None;
    RegionShape::Sides sides; ///< that a drag moves
};

/// Names and handles of regions, in pixels of the view, whatever the zoom.
namespace RegionMarks {

/// A region's name with its number in the list; in brackets when it is not ticked.
QString nameOf(int number, const QString &name, bool enabled);

/// The eight places of the handles: corners, and the middles of the sides.
QVector<QRectF> handles(const QRectF &outline);

/**
 * Where a name of that size is drawn: above the top left corner, or within the outline if there is
 * no room above.
 *
 * Stays in view as long as any part of the outline does; empty otherwise.
 */
QRectF nameBox(const QRectF &outline, const QSizeF &size, const QRectF &sight);

/// What is under the mouse: a corner before a name, and a name before a side.
RegionGrip gripAt(const QPointF &mouse, const QRectF &outline, const QRectF &nameBox);

} // namespace RegionMarks
