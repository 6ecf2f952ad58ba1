#include "roi/roicanvas.h"

#include <QApplication>
#include <QEvent>
#include <QGraphicsPixmapItem>
#include <QGraphicsRectItem>
#include <QGraphicsView>
#include <QLabel>
#include <QMouseEvent>
#include <QTimer>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <utility>

namespace {

constexpr double zoomStep = 1.15;
constexpr double smallestDragPx = 2.0;
constexpr double rubberBandZ = 1000.0;

Qt::CursorShape cursorFor(const RegionShape::Sides &sides)
{
    if (sides.x != 0 && sides.y != 0)
        return sides.x == sides.y ? Qt::SizeFDiagCursor : Qt::SizeBDiagCursor;
    return sides.x != 0 ? Qt::SizeHorCursor : Qt::SizeVerCursor;
}

} // namespace

RoiCanvas::RoiCanvas(QGraphicsView *view, QObject *parent)
    : QObject(parent), m_view(view), m_scene(view), m_message(new QLabel(view->viewport()))
{
    m_view->setDragMode(QGraphicsView::ScrollHandDrag);
    m_view->setTransformationAnchor(QGraphicsView::AnchorUnderMouse);
    m_view->viewport()->installEventFilter(this);
    m_message->setAlignment(Qt::AlignCenter);
    m_message->setWordWrap(true);
    m_message->setTextFormat(Qt::PlainText);
    (new QVBoxLayout(m_view->viewport()))->addWidget(m_message);
}

QPointF RoiCanvas::mousePosition() const
{
    return m_scene.framePosition(m_view->viewport()->mapFromGlobal(QCursor::pos()));
}

void RoiCanvas::showFrame(const QPixmap &frame)
{
    endDrag(true);
    cancelDrawing();
    m_message->hide();
    m_scene.showFrame(frame);
}

void RoiCanvas::showMessage(const QString &text)
{
    endDrag(true);
    cancelDrawing();
    m_scene.removeFrame();
    m_message->setText(text);
    m_message->show();
}

void RoiCanvas::showRegions(const QVector<RegionMark> &regions, int current)
{
    m_scene.showRegions(regions, current);
}

void RoiCanvas::startDrawing()
{
    m_drawing = true;
    m_view->setDragMode(QGraphicsView::NoDrag);
    m_view->viewport()->setCursor(Qt::CrossCursor);
}

void RoiCanvas::cancelDrawing()
{
    delete m_rubberBand;
    m_rubberBand = nullptr;
    if (!m_drawing)
        return;
    m_drawing = false;
    m_view->setDragMode(QGraphicsView::ScrollHandDrag); // with its own cursor
}

void RoiCanvas::drawMiddle()
{
    cancelDrawing();
    emit rectangleDrawn(RegionShape::middle(m_scene.frameSize(), m_proportion));
}

void RoiCanvas::cancelDrag()
{
    endDrag(false);
}

void RoiCanvas::fit()
{
    m_fitPending = !m_view->isVisible();
    if (m_scene.frame() && !m_fitPending)
        m_view->fitInView(m_scene.frame(), Qt::KeepAspectRatio);
}

bool RoiCanvas::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::Wheel: // always consumed: the view would scroll
        zoom(static_cast<QWheelEvent *>(event)->angleDelta().y() >= 1);
        return true;
    case QEvent::Show:
        fitWhenShown();
        break;
    case QEvent::Leave:
        emit left();
        break;
    default:
        if (m_scene.frame() && mouseEvent(event))
            return true;
    }
    return QObject::eventFilter(watched, event);
}

void RoiCanvas::fitWhenShown()
{
    if (m_fitPending)
        QTimer::singleShot(0, this, &RoiCanvas::fit); // the window has its final size by then
}

void RoiCanvas::zoom(bool closer)
{
    const double factor = closer ? zoomStep : 1.0 / zoomStep;
    m_view->scale(factor, factor);
}

/// Whether @p event is consumed. Moves are passed on: the view zooms about the last position.
bool RoiCanvas::mouseEvent(QEvent *event)
{
    switch (event->type()) {
    case QEvent::MouseMove:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick: // a press soon after another one
    case QEvent::MouseButtonRelease: {
        const auto &mouse = *static_cast<QMouseEvent *>(event);
        emit hovered(m_scene.framePosition(mouse.pos()));
        const bool taken = m_drawing ? drawingEvent(mouse) : regionEvent(mouse);
        return taken && event->type() != QEvent::MouseMove;
    }
    default:
        return false;
    }
}

bool RoiCanvas::drawingEvent(const QMouseEvent &event)
{
    const bool left = event.button() == Qt::LeftButton;
    const QPointF position = m_scene.framePosition(event.pos());
    if (event.type() == QEvent::MouseMove) {
        if (m_rubberBand && (event.buttons() & Qt::LeftButton))
            m_rubberBand->setRect(drawnTo(position));
    } else if (event.type() != QEvent::MouseButtonRelease) {
        if (left)
            beginRectangle(position);
    } else if (m_rubberBand && left) {
        endRectangle(position);
    }
    return true;
}

void RoiCanvas::beginRectangle(const QPointF &position)
{
    if (!QRectF(QPointF(), m_scene.frameSize()).contains(position)) {
        emit startedOutside();
        return;
    }
    delete m_rubberBand;
    m_dragStart = position;
    m_rubberBand = new QGraphicsRectItem(QRectF(position, QSizeF()), m_scene.frame());
    m_rubberBand->setPen(QPen(Qt::yellow, 0.0, Qt::DashLine)); // one screen pixel at any zoom
    m_rubberBand->setZValue(rubberBandZ);
    m_rubberBand->setAcceptedMouseButtons(Qt::NoButton);
}

void RoiCanvas::endRectangle(const QPointF &position)
{
    const QRectF drawn = drawnTo(position);
    cancelDrawing();
    if (drawn.width() >= smallestDragPx && drawn.height() >= smallestDragPx)
        emit rectangleDrawn(drawn);
    else
        emit rectangleTooSmall();
}

QRectF RoiCanvas::drawnTo(const QPointF &position) const
{
    return RegionShape::spanned(m_dragStart, position, m_scene.frameSize(), m_proportion);
}

/// Whether a region takes @p event, which would else pan.
bool RoiCanvas::regionEvent(const QMouseEvent &event)
{
    if (event.type() == QEvent::MouseMove) {
        if (m_drag)
            drag(m_scene.framePosition(event.pos()));
        else if (event.buttons() == Qt::NoButton)
            showCursorFor(event.pos());
        return m_drag.has_value();
    }
    if (event.button() != Qt::LeftButton)
        return m_drag.has_value();
    return event.type() == QEvent::MouseButtonRelease ? letGo(event.pos()) : takeHold(event.pos());
}

bool RoiCanvas::takeHold(const QPoint &position)
{
    const RegionScene::Hit hit = m_scene.hitAt(position);
    if (hit.row >= 0 && hit.row == m_scene.currentRow()) {
        const QRect region = m_scene.region(hit.row);
        m_drag = {hit.grip, region, m_scene.framePosition(position), region};
        return true;
    }
    m_pickRow = hit.row;
    m_pickPosition = position;
    return false; // what begins on an outline may become a panning
}

void RoiCanvas::drag(const QPointF &position)
{
    const QPointF by = position - m_drag->pressed;
    const QSize frame = m_scene.frameSize();
    QRect pixels = m_drag->start; // unchanged by a mere click, whatever its shape
    if (m_drag->grip.kind == RegionGrip::Kind::Name)
        pixels = RegionShape::moved(pixels, by, frame);
    else if (!by.isNull())
        pixels = RegionShape::resized(pixels, m_drag->grip.sides, by, frame, m_proportion);
    if (pixels == m_drag->pixels)
        return;
    m_drag->pixels = pixels;
    emit regionDragged(pixels);
}

bool RoiCanvas::letGo(const QPoint &position)
{
    if (m_drag) {
        drag(m_scene.framePosition(position));
        endDrag(true);
        return true;
    }
    const int row = std::exchange(m_pickRow, -1);
    const int way = (position - m_pickPosition).manhattanLength();
    if (row >= 0 && way < QApplication::startDragDistance())
        emit regionPicked(row);
    return false;
}

void RoiCanvas::endDrag(bool kept)
{
    if (!m_drag)
        return;
    m_drag.reset();
    emit dragEnded(kept);
}

void RoiCanvas::showCursorFor(const QPoint &position)
{
    const RegionScene::Hit hit = m_scene.hitAt(position);
    Qt::CursorShape shape = Qt::OpenHandCursor; // the view's own, for panning
    if (hit.row >= 0 && hit.row != m_scene.currentRow())
        shape = Qt::PointingHandCursor;
    else if (hit.row >= 0)
        shape =
            hit.grip.kind == RegionGrip::Kind::Name ? Qt::SizeAllCursor : cursorFor(hit.grip.sides);
    if (m_view->viewport()->cursor().shape() != shape)
        m_view->viewport()->setCursor(shape);
}
