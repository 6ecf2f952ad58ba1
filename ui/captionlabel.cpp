#include "ui/captionlabel.h"

#include <QPainter>
#include <QRegularExpression>
#include <QStyle>

namespace {

constexpr int anyHeightPx = 10'000;

/// @p line with a line break for each bar behind which the next part would not fit.
QString brokenLine(const QString &line, const QFontMetrics &metrics, int width)
{
    static const QRegularExpression bar(QStringLiteral(" +\\| +"));
    QString text = line;
    int lineStart = 0;
    for (QRegularExpressionMatch match = bar.match(text); match.hasMatch();) {
        const QRegularExpressionMatch next = bar.match(text, match.capturedEnd());
        const int partEnd = next.hasMatch() ? next.capturedStart() : text.size();
        int searchFrom = match.capturedEnd();
        // Equal will not do: the advance is rounded.
        if (metrics.horizontalAdvance(text.mid(lineStart, partEnd - lineStart)) >= width) {
            text.replace(match.capturedStart(), match.capturedLength(), QLatin1Char('\n'));
            lineStart = searchFrom = match.capturedStart() + 1;
        }
        match = bar.match(text, searchFrom);
    }
    return text;
}

} // namespace

int CaptionLabel::heightForWidth(int width) const
{
    const int besides = 2 * (frameWidth() + margin());
    const QRect room(0, 0, width - besides - indentPx(), anyHeightPx);
    return fontMetrics().boundingRect(room, Qt::TextWordWrap, broken(room.width())).height() +
           besides;
}

void CaptionLabel::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    drawFrame(&painter);
    const QRect room =
        contentsRect().adjusted(margin() + indentPx(), margin(), -margin(), -margin());
    style()->drawItemText(&painter, room, static_cast<int>(alignment()) | Qt::TextWordWrap,
                          palette(), isEnabled(), broken(room.width()), foregroundRole());
}

/// As any label keeps its text off a frame.
int CaptionLabel::indentPx() const
{
    return frameWidth() > 0 ? fontMetrics().horizontalAdvance(QLatin1Char('x')) / 2 : 0;
}

QString CaptionLabel::broken(int width) const
{
    QStringList lines = text().split(QLatin1Char('\n'));
    for (QString &line : lines)
        line = brokenLine(line, fontMetrics(), width);
    return lines.join(QLatin1Char('\n'));
}
