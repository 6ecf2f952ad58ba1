#include "roi/roimessagebox.h"

#include <QCoreApplication>
#include <QLabel>
#include <QLayout>
#include <QScreen>
#include <QScrollArea>

namespace {

QString title()
{
    return QCoreApplication::translate("RoiMessageBox", "ROI video");
}

/// Puts the box's own text label into a scroll area; a box built otherwise stays as it is.
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
    text->setWordWrap(true);
    scroll->setWidget(text);
    scroll->setAccessibleName(box.windowTitle());
}

} // namespace

void RoiMessageBox::show(QMessageBox::Icon icon, const QString &text, QWidget *parent)
{
    QMessageBox box(icon, title(), text, QMessageBox::Ok, parent);
    box.setTextFormat(Qt::PlainText);
    const QSize limit = box.screen()->availableSize() / 2;
    const int textHeight =
        box.fontMetrics().boundingRect(QRect(QPoint(), limit), Qt::TextWordWrap, text).height();
    if (textHeight > limit.height())
        makeScrollable(box, limit);
    box.exec();
}

QMessageBox::StandardButton RoiMessageBox::askToSave(const QString &text, QWidget *parent)
{
    QMessageBox box(QMessageBox::Question, title(), text,
                    QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, parent);
    box.setTextFormat(Qt::PlainText);
    box.setDefaultButton(QMessageBox::Save);
    return static_cast<QMessageBox::StandardButton>(box.exec());
}
