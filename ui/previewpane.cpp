#include "ui/previewpane.h"

#include <QEvent>
#include <QImage>
#include <QLabel>

namespace {

constexpr int marginPx = 4; // between the picture and the label's frame, both sides together
constexpr QSize largestPx(4096, 4096); // as large as the archive's; larger ones take memory

} // namespace

PreviewPane::PreviewPane(QLabel *label, QObject *parent) : QObject(parent), m_label(label)
{
    label->installEventFilter(this);
}

bool PreviewPane::showFrame(const QImage &frame)
{
    if (frame.isNull())
        return false;
    const bool fits = frame.size().boundedTo(largestPx) == frame.size();
    m_frame = QPixmap::fromImage(fits ? frame : frame.scaled(largestPx, Qt::KeepAspectRatio));
    m_shown = QPixmap();
    rescale();
    return true;
}

void PreviewPane::clear(const QString &text)
{
    m_frame = QPixmap();
    m_shown = QPixmap();
    m_label->setText(text); // replaces the picture
}

void PreviewPane::rescale()
{
    if (m_frame.isNull())
        return;
    const QSize target =
        (m_label->contentsRect().size() - QSize(marginPx, marginPx)).expandedTo(QSize(1, 1));
    const qreal ratio = m_label->devicePixelRatioF();
    const QSize fitted = m_frame.size().scaled(target * ratio, Qt::KeepAspectRatio);
    if (m_shown.size() == fitted && m_shown.devicePixelRatio() == ratio)
        return; // a window that is resized asks twice: itself and through the label
    m_shown = m_frame.scaled(fitted, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    m_shown.setDevicePixelRatio(ratio);
    m_label->setPixmap(m_shown); // replaces the text
}

bool PreviewPane::eventFilter(QObject *watched, QEvent *event)
{
    // The splitter and the docks resize the label while the window keeps its size.
    if (event->type() == QEvent::Resize)
        rescale();
    return QObject::eventFilter(watched, event);
}
