#pragma once

#include <QProxyStyle>

/**
 * Fusion, with what it draws too dark for a dark palette made visible: the outline of a tick box,
 * and the frame of a list, a text or a picture that has the focus.
 *
 * It also leaves disabled entries of a menu grey, where Fusion prints them in white as well.
 */
class ApplicationStyle final : public QProxyStyle
{
    Q_OBJECT

public:
    ApplicationStyle();

    using QProxyStyle::polish;
    void polish(QWidget *widget) override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override;
    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                  QStyleHintReturn *returned) const override;
};
