#include "roi/intervalslider.h"

#include <QPainter>
#include <QStyle>
#include <QStyleOptionSlider>

namespace {

constexpr int barPx = 3;
constexpr int endPx = 7;

} // namespace

void IntervalSlider::setInterval(const std::optional<QPair<int, int>> &interval)
{
    m_interval = interval;
    update();
}

void IntervalSlider::paintEvent(QPaintEvent *event)
{
    QSlider::paintEvent(event);
    if (!m_interval)
        return;
    const int left = xOf(m_interval->first);
    const int right = xOf(m_interval->second);
    QPainter painter(this);
    const QColor color = palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled,
                                         QPalette::Text); // the style's own bar is highlighted
    painter.fillRect(left, height() - barPx, right - left + 1, barPx, color);
    for (const int x : {left, right})
        painter.fillRect(x - 1, height() - endPx, 2, endPx, color);
}

/// The middle of the handle at @p value.
int IntervalSlider::xOf(int value) const
{
    QStyleOptionSlider option;
    initStyleOption(&option);
    option.sliderPosition = value;
    option.sliderValue = value;
    return style()
        ->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, this)
        .center()
        .x();
}
