#pragma once

#include <QRect>
#include <QSize>
#include <QString>

#include <functional>

/// Positions of the annotations of a frame in whole pixels, computed from sizes alone.
namespace AnnotationLayout {

/// The sizes that follow from the width of the frame, in pixels.
struct Measures
{
    int margin;   ///< between a box and the border of the frame
    int paddingX; ///< between a box and its text, on either side
    int paddingY;
    int textPx; ///< time stamp and label, before they are shrunk to fit
    int scaleTextPx;
    int tickPx; ///< how far the ends of the scale bar stand up
    int linePx;
};

/// Fixed shares of @p frameWidth in pixels, but never too small to read.
Measures measuresFor(int frameWidth);

/**
 * The largest text size from @p textPx down to 6 at which a text is not wider than @p widestPx.
 *
 * @param advancePx  the width of the text at a size, both in pixels; asked once per size tried
 * @return           6 at the least, whether the text fits or not
 */
int fittingTextPx(int textPx, int widestPx, const std::function<int(int)> &advancePx);

/// The width that a text may take in a frame of this width.
int widestText(int frameWidth, const Measures &measures);

/// The boxes of the bottom corners; @p text is the size of the text that each holds.
QRect bottomLeftBox(QSize frame, const Measures &measures, QSize text);
QRect bottomRightBox(QSize frame, const Measures &measures, QSize text);

/// What is left of a box for its text.
QRect insideBox(const QRect &box, const Measures &measures);

/// A round length on the Sun and how long it is in the frame.
struct ScaleBar
{
    int lengthPx = 0; ///< 0 when there is no bar to draw
    QString label;
};

/// A bar of about a fifth of the frame; none when the scale is unknown or the bar below 12 pixels.
ScaleBar scaleBarFor(int frameWidth, double kmPerPixel);

/// The scale in the top right corner: the label above the bar, which ends at two ticks.
struct ScaleBox
{
    QRect box;
    QRect label;
    QPoint left; ///< the ends of the bar; ticks go up from both
    QPoint right;
};

/// @p label is the size of the bar's label.
ScaleBox scaleBoxFor(int frameWidth, const Measures &measures, int barPx, QSize label);

} // namespace AnnotationLayout
