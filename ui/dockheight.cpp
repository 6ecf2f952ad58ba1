#include "ui/dockheight.h"

#include <QDockWidget>
#include <QEvent>
#include <QMainWindow>

DockHeight::DockHeight(QMainWindow *window, QDockWidget *dock)
    : QObject(window), m_window(window), m_dock(dock)
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &DockHeight::fit);
    dock->installEventFilter(this);
}

bool DockHeight::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::LayoutRequest || event->type() == QEvent::Resize)
        m_timer.start();
    return QObject::eventFilter(watched, event);
}

void DockHeight::fit()
{
    // A window that is too low for all of it changes nothing, and asks no further.
    if (m_dock->isVisible() && m_dock->height() <= m_dock->minimumSizeHint().height())
        m_window->resizeDocks({m_dock}, {m_dock->sizeHint().height()}, Qt::Vertical);
}
