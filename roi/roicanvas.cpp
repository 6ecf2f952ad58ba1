#include "roi/roicanvas.h"

#include <QEvent>
#include <QGraphicsPixmapItem>
#include <QGraphicsRectItem>
#include <QGraphicsView>
#include <QLabel>
#include <QMouseEvent>
#include <QTimer>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <algorithm>

namespace {

constexpr double zoomStep = 1.15;
constexpr double smallestDragPx = 2.0;
constexpr double regionZ = 10.0;
constexpr double rubberBandZ = 1000.0;

/// In pixels of the frame, so that it scales with the zoom; wider on larger frames.
QPen regionPen(int frameWidthPx, bool current)
{
    return QPen(current ? Qt::yellow : Qt::green, std::max(1.0, frameWidthPx / 1000.0));
}

} // namespace

RoiCanvas::RoiCanvas(QGraphicsView *view, QObject *parent)
    : QObject(parent), m_view(view), m_message(new QLabel(view->viewport()))
{
    // A spatial index does not help: all regions are visible. With many that overlap it takes
    // minutes and gigabytes.
    m_scene.setItemIndexMethod(QGraphicsScene::NoIndex);
    m_view->setScene(&m_scene);
    m_view->setDragMode(QGraphicsView::ScrollHandDrag);
    m_view->setTransformationAnchor(QGraphicsView::AnchorUnderMouse);
    m_view->setRenderHint(QPainter::SmoothPixmapTransform);
    m_view->viewport()->installEventFilter(this);
    m_message->setAlignment(Qt::AlignCenter);
    m_message->setWordWrap(true);
    m_message->setTextFormat(Qt::PlainText);
    m_message->setAttribute(Qt::WA_TransparentForMouseEvents);
    (new QVBoxLayout(m_view->viewport()))->addWidget(m_message);
}

void RoiCanvas::showFrame(const QPixmap &frame)
{
    cancelDrawing();
    clearScene();
    m_message->hide();
    m_framePixmap = frame;
    m_frame = m_scene.addPixmap(frame);
    m_frame->setTransformationMode(Qt::SmoothTransformation);
    m_scene.setSceneRect(frame.rect());
}

void RoiCanvas::showMessage(const QString &text)
{
    cancelDrawing();
    clearScene();
    m_message->setText(text);
    m_message->show();
}

void RoiCanvas::showRegions(const QVector<QRect> &regions, int current)
{
    if (!m_frame)
        return;
    while (m_regions.size() > regions.size())
        delete m_regions.takeLast();
    while (m_regions.size() < regions.size()) {
        m_regions.append(new QGraphicsRectItem(m_frame));
        m_regions.last()->setZValue(regionZ);
    }
    const QPen pens[] = {regionPen(m_framePixmap.width(), false),
                         regionPen(m_framePixmap.width(), true)};
    for (int row = 0; row < regions.size(); ++row) { // unchanged items are not painted anew
        m_regions.at(row)->setRect(regions.at(row));
        m_regions.at(row)->setPen(pens[row == current ? 1 : 0]);
    }
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
    m_view->viewport()->unsetCursor();
    m_view->setDragMode(QGraphicsView::ScrollHandDrag);
}

void RoiCanvas::fit()
{
    m_fitPending = !m_view->isVisible();
    if (m_frame && !m_fitPending)
        m_view->fitInView(m_frame, Qt::KeepAspectRatio);
}

bool RoiCanvas::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::Wheel: // always consumed: the view would scroll
        zoom(static_cast<QWheelEvent *>(event)->angleDelta().y() >= 1);
        return true;
    case QEvent::Show:
        fitWhenShown();
        return false;
    default:
        return (m_drawing && drawingEvent(event)) || QObject::eventFilter(watched, event);
    }
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
bool RoiCanvas::drawingEvent(QEvent *event)
{
    switch (event->type()) {
    case QEvent::MouseMove:
        draw(*static_cast<QMouseEvent *>(event));
        return false;
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick: // a press soon after one outside the frame
    case QEvent::MouseButtonRelease:
        draw(*static_cast<QMouseEvent *>(event));
        return true;
    default:
        return false;
    }
}

void RoiCanvas::draw(const QMouseEvent &event)
{
    const bool left = event.button() == Qt::LeftButton;
    if (event.type() == QEvent::MouseMove) {
        if (m_rubberBand && (event.buttons() & Qt::LeftButton))
            m_rubberBand->setRect(draggedTo(framePosition(event)));
    } else if (event.type() != QEvent::MouseButtonRelease) {
        if (left)
            beginRectangle(framePosition(event));
    } else if (m_rubberBand && left) {
        endRectangle(framePosition(event));
    }
}

void RoiCanvas::beginRectangle(const QPointF &position)
{
    if (!QRectF(m_framePixmap.rect()).contains(position)) {
        emit startedOutside();
        return;
    }
    delete m_rubberBand;
    m_dragStart = position;
    m_rubberBand = new QGraphicsRectItem(QRectF(position, QSizeF()), m_frame);
    m_rubberBand->setPen(QPen(Qt::yellow, 0.0, Qt::DashLine)); // one screen pixel at any zoom
    m_rubberBand->setZValue(rubberBandZ);
    m_rubberBand->setAcceptedMouseButtons(Qt::NoButton);
}

void RoiCanvas::endRectangle(const QPointF &position)
{
    const QRectF drawn = draggedTo(position);
    cancelDrawing();
    if (drawn.width() >= smallestDragPx && drawn.height() >= smallestDragPx)
        emit rectangleDrawn(drawn);
    else
        emit rectangleTooSmall();
}

QPointF RoiCanvas::framePosition(const QMouseEvent &event) const
{
    return m_frame->mapFromScene(m_view->mapToScene(event.pos()));
}

QRectF RoiCanvas::draggedTo(const QPointF &position) const
{
    return QRectF(m_dragStart, position).normalized().intersected(m_framePixmap.rect());
}

void RoiCanvas::clearScene()
{
    m_regions.clear();
    m_scene.clear();
    m_frame = nullptr;
    m_framePixmap = QPixmap();
}
