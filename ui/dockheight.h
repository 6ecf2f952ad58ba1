#pragma once

#include <QObject>
#include <QTimer>

class QDockWidget;
class QMainWindow;

/**
 * Keeps a dock at least as high as its contents need.
 *
 * A dock that does not expand keeps the height of its first layout, even if its contents need more
 * later, for example with their final font; it would then overlap its neighbours.
 */
class DockHeight final : public QObject
{
public:
    /// Watches @p dock of @p window, its parent.
    DockHeight(QMainWindow *window, QDockWidget *dock);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void fit();

    QMainWindow *m_window; // not owned
    QDockWidget *m_dock;   // not owned
    QTimer m_timer;        // once per turn of the event loop
};
