#include "base/plainmessagebox.h"

#include <QLabel>
#include <QLayout>
#include <QScreen>
#include <QScrollArea>

namespace {

/// Puts the box's text label into a scroll area; does nothing if Qt builds its boxes differently.
void makeScrollable(QMessageBox &box, const QSize &size)
{
    auto *text = box.findChild<QLabel *>(QStringLiteral("qt_msgbox_label"));
    if (!text)
        return;
    auto *scroll = new QScrollArea(&box);
    delete box.layout()->replaceWidget(text, scroll);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setMinimumSize(size);
    scroll->setWidget(text);
    scroll->setAccessibleName(box.windowTitle());
}

QMessageBox::StandardButton run(QMessageBox &box)
{
    box.setTextFormat(Qt::PlainText);
    const QSize limit = box.screen()->availableSize() / 2;
    const QRect needed =
        box.fontMetrics().boundingRect(QRect(QPoint(), limit), Qt::TextWordWrap, box.text());
    if (needed.height() > limit.height())
        makeScrollable(box, limit);
    return static_cast<QMessageBox::StandardButton>(box.exec());
}

} // namespace

void PlainMessageBox::show(QWidget *parent, QMessageBox::Icon icon, const QString &title,
                           const QString &text)
{
    QMessageBox box(icon, title, text, QMessageBox::Ok, parent);
    run(box);
}

QMessageBox::StandardButton PlainMessageBox::ask(QWidget *parent, const QString &title,
                                                 const QString &text,
                                                 QMessageBox::StandardButtons buttons,
                                                 QMessageBox::StandardButton defaultButton)
{
    QMessageBox box(QMessageBox::Question, title, text, buttons, parent);
    box.setDefaultButton(defaultButton);
    return run(box);
}
