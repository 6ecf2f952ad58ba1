#include "roi/regionmarks.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double handlePx = 8.0;
constexpr double reachPx = 6.0; // how far beside a line or a corner a mouse may be

/// -1 near the first end, 1 near the other one, which counts where both are near; else 0.
int nearEnd(double value, double first, double last)
{
    if (std::abs(value - last) <= reachPx)
        return 1;
    return std::abs(value - first) <= reachPx ? -1 : 0;
}

} // namespace

QString RegionMarks::nameOf(int number, const QString &name, bool enabled)
{
    return (enabled ? QStringLiteral("%1 %2") : QStringLiteral("[%1 %2]"))
        .arg(QString::number(number), name);
}

QVector<QRectF> RegionMarks::handles(const QRectF &outline)
{
    QVector<QRectF> handles;
    for (const double y : {outline.top(), outline.center().y(), outline.bottom()}) {
        for (const double x : {outline.left(), outline.center().x(), outline.right()}) {
            if (QPointF(x, y) != outline.center())
                handles.append({x - handlePx / 2.0, y - handlePx / 2.0, handlePx, handlePx});
        }
    }
    return handles;
}

QRectF RegionMarks::nameBox(const QRectF &outline, const QSizeF &size, const QRectF &sight)
{
    if (!outline.intersects(sight))
        return {};
    const bool fitsAbove = outline.top() - size.height() >= sight.top();
    const double top = fitsAbove ? outline.top() - size.height() : outline.top();
    const double rightmost = std::max(sight.right() - size.width(), sight.left());
    const double lowest = sight.bottom() - size.height();
    return {QPointF(std::clamp(outline.left(), sight.left(), rightmost),
                    std::max(std::min(top, lowest), sight.top())),
            size};
}

RegionGrip RegionMarks::gripAt(const QPointF &mouse, const QRectF &outline, const QRectF &nameBox)
{
    const QRectF reach = outline.adjusted(-reachPx, -reachPx, reachPx, reachPx);
    RegionShape::Sides sides;
    if (reach.contains(mouse))
        sides = {nearEnd(mouse.x(), outline.left(), outline.right()),
                 nearEnd(mouse.y(), outline.top(), outline.bottom())};
    if (sides.x != 0 && sides.y != 0)
        return {RegionGrip::Kind::Side, sides};
    if (nameBox.contains(mouse))
        return {RegionGrip::Kind::Name, {}};
    if (sides.x != 0 || sides.y != 0)
        return {RegionGrip::Kind::Side, sides};
    return {};
}
