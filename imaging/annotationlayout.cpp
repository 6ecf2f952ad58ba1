#include "imaging/annotationlayout.h"

#include "imaging/metricscale.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int smallestTextPx = 6;
constexpr int shortestBarPx = 12;
constexpr double barShare = 0.2; // of the frame's width
constexpr int gapAboveBarPx = 4;
constexpr int gapBelowBarPx = 2;

QRect bottomBox(QSize frame, const AnnotationLayout::Measures &measures, QSize text, bool atRight)
{
    const int width =
        std::min(text.width() + 2 * measures.paddingX, frame.width() - 2 * measures.margin);
    const int height = text.height() + 2 * measures.paddingY;
    const int left = atRight ? frame.width() - width - measures.margin : measures.margin;
    return {left, frame.height() - height - measures.margin, width, height};
}

} // namespace

AnnotationLayout::Measures AnnotationLayout::measuresFor(int frameWidth)
{
    Measures measures;
    measures.margin = std::max(8, frameWidth / 80);
    measures.paddingX = std::max(6, frameWidth / 120);
    measures.paddingY = std::max(4, frameWidth / 220);
    measures.textPx = std::max(8, frameWidth / 55);
    measures.scaleTextPx = std::max(8, frameWidth / 65);
    measures.tickPx = std::max(5, frameWidth / 180);
    measures.linePx = std::max(1, frameWidth / 900);
    return measures;
}

int AnnotationLayout::fittingTextPx(int textPx, int widestPx,
                                    const std::function<int(int)> &advancePx)
{
    while (textPx > smallestTextPx && advancePx(textPx) > widestPx)
        --textPx;
    return textPx;
}

int AnnotationLayout::widestText(int frameWidth, const Measures &measures)
{
    return std::max(1, frameWidth - 2 * (measures.paddingX + measures.margin));
}

QRect AnnotationLayout::bottomLeftBox(QSize frame, const Measures &measures, QSize text)
{
    return bottomBox(frame, measures, text, false);
}

QRect AnnotationLayout::bottomRightBox(QSize frame, const Measures &measures, QSize text)
{
    return bottomBox(frame, measures, text, true);
}

QRect AnnotationLayout::insideBox(const QRect &box, const Measures &measures)
{
    return box.adjusted(measures.paddingX, measures.paddingY, -measures.paddingX,
                        -measures.paddingY);
}

AnnotationLayout::ScaleBar AnnotationLayout::scaleBarFor(int frameWidth, double kmPerPixel)
{
    const double lengthKm = MetricScale::roundLengthKm(frameWidth * kmPerPixel * barShare);
    if (!(lengthKm > 0.0)) // also when the scale is not a positive number
        return {};
    const auto lengthPx = static_cast<int>(std::lround(lengthKm / kmPerPixel));
    if (lengthPx < shortestBarPx)
        return {};
    const QString number = MetricScale::formatThousands(std::llround(lengthKm));
    return {lengthPx, QStringLiteral("%1 km").arg(number)};
}

AnnotationLayout::ScaleBox AnnotationLayout::scaleBoxFor(int frameWidth, const Measures &measures,
                                                         int barPx, QSize label)
{
    const int contentWidth = std::max(barPx, label.width());
    const int width =
        std::min(contentWidth + 2 * measures.paddingX, frameWidth - 2 * measures.margin);
    const int height = label.height() + gapAboveBarPx + measures.tickPx + 2 * measures.paddingY;
    ScaleBox scale;
    scale.box = QRect(frameWidth - width - measures.margin, measures.margin, width, height);
    scale.label = QRect(scale.box.left() + measures.paddingX, scale.box.top() + measures.paddingY,
                        width - 2 * measures.paddingX, label.height());
    scale.right = QPoint(scale.box.right() - measures.paddingX,
                         scale.box.bottom() - gapBelowBarPx - measures.paddingY);
    scale.left = scale.right - QPoint(barPx, 0);
    return scale;
}
