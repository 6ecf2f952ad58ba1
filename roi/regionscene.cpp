#include "roi/regionscene.h"

#include <QFontMetricsF>
#include <QGraphicsPixmapItem>
#include <QGraphicsRectItem>
#include <QGraphicsView>
#include <QPainter>

#include <algorithm>
#include <utility>

namespace {

constexpr double outlineZ = 10.0;
constexpr double widestNamePx = 220.0;
constexpr double namePaddingPx = 4.0;
constexpr QColor nameBackground(0, 0, 0, 165); // that of the annotations on the frames

QColor regionColor(bool current)
{
    return current ? Qt::yellow : Qt::green;
}

/// In pixels of the frame, so that it scales with the zoom; wider on larger frames.
QPen regionPen(int frameWidthPx, bool current)
{
    return QPen(regionColor(current), std::max(1.0, frameWidthPx / 1000.0));
}

} // namespace

RegionScene::RegionScene(QGraphicsView *view, QObject *parent)
    : QGraphicsScene(parent), m_view(view)
{
    // A spatial index does not help: all regions are visible. With many that overlap it takes
    // minutes and gigabytes.
    setItemIndexMethod(NoIndex);
    m_view->setScene(this);
    // Names reach beyond their items, and stay in sight while the picture is moved below them.
    m_view->setViewportUpdateMode(QGraphicsView::FullViewportUpdate);
}

RegionScene::Hit RegionScene::hitAt(const QPoint &position) const
{
    const auto grip = [&](int row) {
        return RegionMarks::gripAt(position, onScreen(row), nameBox(row));
    };
    Hit hit;
    if (m_current >= 0)
        hit = {m_current, grip(m_current)};
    for (int row = m_regions.size() - 1; hit.grip.kind == RegionGrip::Kind::None && row >= 0; --row)
        hit = {row, grip(row)}; // what is drawn last lies on top
    return hit.grip.kind == RegionGrip::Kind::None ? Hit() : hit;
}

QPointF RegionScene::framePosition(const QPoint &position) const
{
    return m_view->mapToScene(position); // the frame lies at the origin
}

void RegionScene::showFrame(const QPixmap &frame)
{
    removeFrame();
    m_framePixmap = frame;
    m_frame = addPixmap(frame);
    m_frame->setTransformationMode(Qt::SmoothTransformation);
    m_frame->setCacheMode(QGraphicsItem::DeviceCoordinateCache); // scaled once, not at each drag
    setSceneRect(frame.rect());
}

void RegionScene::removeFrame()
{
    clear();
    m_frame = nullptr;
    m_framePixmap = QPixmap();
    m_outlines.clear();
    m_regions.clear();
    m_current = -1;
}

void RegionScene::showRegions(const QVector<RegionMark> &regions, int current)
{
    if (!m_frame)
        return;
    const QVector<RegionMark> before = std::exchange(m_regions, regions);
    m_current = current;
    fitOutlines();
    measureNames(before);
    update();
}

void RegionScene::drawForeground(QPainter *painter, const QRectF & /*exposed*/)
{
    painter->resetTransform();
    for (int row = 0; row < m_regions.size(); ++row) {
        if (row != m_current)
            drawMark(*painter, row);
    }
    if (m_current >= 0) { // also above regions that cover it
        drawMark(*painter, m_current);
        painter->setPen(Qt::black);
        painter->setBrush(regionColor(true));
        painter->drawRects(RegionMarks::handles(onScreen(m_current)));
    }
}

void RegionScene::fitOutlines()
{
    while (m_outlines.size() > m_regions.size())
        delete m_outlines.takeLast();
    while (m_outlines.size() < m_regions.size()) {
        m_outlines.append(new QGraphicsRectItem(m_frame));
        m_outlines.last()->setZValue(outlineZ);
    }
    const QPen pens[] = {regionPen(m_framePixmap.width(), false),
                         regionPen(m_framePixmap.width(), true)};
    for (int row = 0; row < m_regions.size(); ++row) { // those that stay as they are cost nothing
        m_outlines.at(row)->setRect(m_regions.at(row).pixels);
        m_outlines.at(row)->setPen(pens[row == m_current ? 1 : 0]);
    }
}

void RegionScene::measureNames(const QVector<RegionMark> &before)
{
    const QFontMetricsF metrics(m_view->font(), m_view);
    m_labels.resize(m_regions.size());
    for (int row = 0; row < m_regions.size(); ++row) {
        const QString &name = m_regions.at(row).name;
        if (row < before.size() && before.at(row).name == name)
            continue;
        const QString text = metrics.elidedText(name, Qt::ElideRight, widestNamePx);
        m_labels[row] = {text,
                         {metrics.horizontalAdvance(text) + 2.0 * namePaddingPx, metrics.height()}};
    }
}

QRectF RegionScene::onScreen(int row) const
{
    return m_view->viewportTransform().mapRect(QRectF(m_regions.at(row).pixels));
}

QRectF RegionScene::nameBox(int row) const
{
    return RegionMarks::nameBox(onScreen(row), m_labels.at(row).size, m_view->viewport()->rect());
}

/// The name, and the outline where the item's own, which shrinks with the frame, has faded.
void RegionScene::drawMark(QPainter &painter, int row) const
{
    const double widthPx = m_outlines.at(row)->pen().widthF() * m_view->transform().m11();
    if (widthPx < 1.0 || row == m_current) {
        painter.setPen(QPen(regionColor(row == m_current), std::max(widthPx, 1.0)));
        painter.drawRect(onScreen(row));
    }
    const QRectF box = nameBox(row);
    if (box.isEmpty())
        return;
    painter.fillRect(box, nameBackground);
    painter.setPen(regionColor(row == m_current));
    painter.drawText(box, static_cast<int>(Qt::AlignCenter) | static_cast<int>(Qt::TextSingleLine),
                     m_labels.at(row).text);
}
