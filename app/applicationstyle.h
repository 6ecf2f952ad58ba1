#pragma once

#include <QProxyStyle>

/**
 * Fusion, corrected for a dark palette: it draws the outline of check boxes and the focus frame of
 * lists, texts and pictures bright enough to be seen.
 *
 * It also keeps disabled menu entries grey; Fusion draws them white.
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
