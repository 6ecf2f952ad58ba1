#include "imaging/frameannotation.h"

#include "base/errortext.h"
#include "base/utctext.h"
#include "imaging/annotationlayout.h"
#include "imaging/metricscale.h"
#include "imaging/pngwriter.h"

#include <QDir>
#include <QFileInfo>
#include <QFontMetrics>
#include <QJsonObject>
#include <QPainter>

#include <algorithm>
#include <utility>

namespace {

using AnnotationLayout::Measures;

QFont boldFont(int px)
{
    QFont font(QStringLiteral("Segoe UI"));
    font.setWeight(QFont::Bold);
    font.setPixelSize(px);
    return font;
}

QSize textSize(const QFont &font, const QString &text)
{
    const QFontMetrics metrics(font);
    return {metrics.horizontalAdvance(text), metrics.height()};
}

QFont fittingFont(const QString &text, int frameWidth, const Measures &measures)
{
    const auto advancePx = [&text](int px) { return textSize(boldFont(px), text).width(); };
    const int widestPx = AnnotationLayout::widestText(frameWidth, measures);
    return boldFont(AnnotationLayout::fittingTextPx(measures.textPx, widestPx, advancePx));
}

void fillBox(QPainter &painter, const QRect &box)
{
    painter.fillRect(box, QColor(0, 0, 0, 165));
}

void drawText(QPainter &painter, const QFont &font, const QRect &rect, Qt::Alignment alignment,
              const QString &text)
{
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(rect, static_cast<int>(alignment), text);
}

void drawBottomText(QPainter &painter, QSize frame, const Measures &measures, const QString &text,
                    Qt::AlignmentFlag side)
{
    const QFont font = fittingFont(text, frame.width(), measures);
    const QSize size = textSize(font, text);
    const QRect box = side == Qt::AlignRight
                          ? AnnotationLayout::bottomRightBox(frame, measures, size)
                          : AnnotationLayout::bottomLeftBox(frame, measures, size);
    fillBox(painter, box);
    drawText(painter, font, AnnotationLayout::insideBox(box, measures), side | Qt::AlignVCenter,
             text);
}

void drawBar(QPainter &painter, const AnnotationLayout::ScaleBox &scale, const Measures &measures)
{
    painter.setPen(QPen(Qt::white, measures.linePx, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin));
    painter.drawLine(scale.left, scale.right);
    const QPoint tickTop(0, -measures.tickPx);
    const QPoint tickEnd(0, 1);
    painter.drawLine(scale.left + tickTop, scale.left + tickEnd);
    painter.drawLine(scale.right + tickTop, scale.right + tickEnd);
}

void drawScaleBar(QPainter &painter, QSize frame, const Measures &measures, double kmPerPixel)
{
    const auto bar = AnnotationLayout::scaleBarFor(frame.width(), kmPerPixel);
    if (bar.lengthPx == 0)
        return;
    const QFont font = boldFont(measures.scaleTextPx);
    const auto scale = AnnotationLayout::scaleBoxFor(frame.width(), measures, bar.lengthPx,
                                                     textSize(font, bar.label));
    fillBox(painter, scale.box);
    drawText(painter, font, scale.label, Qt::AlignCenter, bar.label);
    drawBar(painter, scale, measures);
}

/// @p image, in 32 bits per pixel, with its last column and row repeated where a side is odd.
QImage withEvenSides(QImage image)
{
    const QSize even((image.width() + 1) & ~1, (image.height() + 1) & ~1);
    if (image.size() == even)
        return image;
    QImage padded = image.copy(QRect(QPoint(0, 0), even));
    for (int y = 0; y < even.height(); ++y) {
        const int from = std::min(y, image.height() - 1);
        auto *line = reinterpret_cast<QRgb *>(padded.scanLine(y));
        if (from != y)
            std::copy_n(reinterpret_cast<const QRgb *>(image.constScanLine(from)), image.width(),
                        line);
        line[even.width() - 1] = line[image.width() - 1];
    }
    return padded;
}

} // namespace

void drawFrameAnnotations(QImage &image, const QDateTime &actualUtc, const QString &sourceLabel,
                          bool drawTimestamp, bool drawSource, bool drawScale, double kmPerPixel)
{
    QPainter painter;
    if (image.isNull() || !painter.begin(&image))
        return;
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);

    const QSize frame = image.size();
    const Measures measures = AnnotationLayout::measuresFor(frame.width());
    if (drawTimestamp && actualUtc.isValid())
        drawBottomText(painter, frame, measures, UtcText::toOverlayText(actualUtc), Qt::AlignLeft);
    const QString label = sourceLabel.trimmed();
    if (drawSource && !label.isEmpty())
        drawBottomText(painter, frame, measures, label, Qt::AlignRight);
    if (drawScale)
        drawScaleBar(painter, frame, measures, kmPerPixel);
}

QImage FrameAnnotation::timestampedCopy(QImage image, const QDateTime &actualUtc,
                                        const QString &sourceLabel, const QJsonObject &metadata,
                                        bool drawSource, bool drawScale)
{
    if (image.isNull())
        return image;
    // An opaque picture is painted on alike without an alpha channel, and twice as fast.
    image = std::move(image).convertToFormat(image.hasAlphaChannel() ? QImage::Format_ARGB32
                                                                     : QImage::Format_RGB32);
    drawFrameAnnotations(image, actualUtc, sourceLabel, true, drawSource, drawScale,
                         MetricScale::kmPerPixel(metadata, image.width()));
    return withEvenSides(std::move(image));
}

bool FrameAnnotation::save(const QImage &copy, const QString &outputPath, QString *errorText)
{
    if (copy.isNull())
        return ErrorText::fail(errorText, QStringLiteral("cannot decode downloaded PNG"));
    if (!QDir().mkpath(QFileInfo(outputPath).absolutePath()))
        return ErrorText::fail(errorText,
                               QStringLiteral("cannot create timestamped frame directory"));
    if (!PngWriter::save(copy, outputPath))
        return ErrorText::fail(errorText, QStringLiteral("cannot save timestamped PNG"));
    return true;
}

bool saveTimestampedFrame(QImage image, const QString &outputPath, const QDateTime &actualUtc,
                          const QString &sourceLabel, const QJsonObject &metadata, bool drawSource,
                          bool drawScale, QString *errorText)
{
    return FrameAnnotation::save(FrameAnnotation::timestampedCopy(std::move(image), actualUtc,
                                                                  sourceLabel, metadata, drawSource,
                                                                  drawScale),
                                 outputPath, errorText);
}
