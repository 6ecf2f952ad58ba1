#include "app/applicationstyle.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QPainter>
#include <QStyleFactory>
#include <QStyleOption>

namespace {

// Fusion makes the outline of a box from the colour of the window, and darker.
constexpr QRgb boxOrigin = qRgb(185, 185, 190);

const QString &baseKey()
{
    static const QString key = QStringLiteral("Fusion");
    return key;
}

/// Whether keys go to @p widget, also by way of another that it leaves them to.
bool takesKeys(const QWidget *widget)
{
    const QWidget *focused = QApplication::focusWidget();
    return focused && (focused == widget || focused == widget->focusProxy());
}

void drawFocusedFrame(const QStyleOption &option, QPainter *painter)
{
    painter->save();
    painter->setPen(option.palette.color(QPalette::Highlight).lighter(125));
    painter->drawRect(option.rect.adjusted(0, 0, -1, -1));
    painter->restore();
}

} // namespace

ApplicationStyle::ApplicationStyle() : QProxyStyle(QStyleFactory::create(baseKey()))
{
    setObjectName(baseKey().toLower()); // Fusion's own
}

void ApplicationStyle::polish(QWidget *widget)
{
    QProxyStyle::polish(widget);
    if (!qobject_cast<QAbstractScrollArea *>(widget))
        return;
    connect(qApp, &QApplication::focusChanged, widget,
            [widget](const QWidget *old, const QWidget *now) {
                const QWidget *proxy = widget->focusProxy();
                if (proxy && (old == proxy || now == proxy))
                    widget->update();
            });
}

void ApplicationStyle::drawPrimitive(PrimitiveElement element, const QStyleOption *option,
                                     QPainter *painter, const QWidget *widget) const
{
    const auto *box = qstyleoption_cast<const QStyleOptionButton *>(option);
    if (element == PE_IndicatorCheckBox && box) {
        QStyleOptionButton visible = *box;
        visible.palette.setColor(QPalette::Window, QColor(boxOrigin));
        QProxyStyle::drawPrimitive(element, &visible, painter, widget);
        return;
    }
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    if (element == PE_Frame && qobject_cast<const QAbstractScrollArea *>(widget) &&
        takesKeys(widget))
        drawFocusedFrame(*option, painter);
}

int ApplicationStyle::styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                                QStyleHintReturn *returned) const
{
    return hint == SH_EtchDisabledText ? 0 : QProxyStyle::styleHint(hint, option, widget, returned);
}
