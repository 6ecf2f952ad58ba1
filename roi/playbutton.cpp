#include "roi/playbutton.h"

#include <QPainter>

PlayButton::PlayButton(QWidget *parent) : QToolButton(parent)
{
    showPlaying(false);
}

void PlayButton::showPlaying(bool playing)
{
    m_playing = playing;
    setAccessibleName(playing ? tr("Pause") : tr("Play"));
    update();
}

/// The style's own symbols are black, and could not be seen on the dark window.
void PlayButton::paintEvent(QPaintEvent *event)
{
    QToolButton::paintEvent(event);
    const double half = height() * 0.2;
    const QPointF centre = QRectF(rect()).center();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(palette().buttonText());
    if (m_playing) {
        for (const double side : {-0.9, 0.3})
            painter.drawRect(
                QRectF(centre.x() + side * half, centre.y() - half, 0.6 * half, 2.0 * half));
        return;
    }
    painter.drawPolygon(
        QPolygonF({centre + QPointF(-0.7 * half, -half), centre + QPointF(-0.7 * half, half),
                   centre + QPointF(half, 0.0)}));
}
