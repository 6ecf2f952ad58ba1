#include "ui/captionlabel.h"

#include <QPainter>
#include <QStringList>
#include <QStyle>

#include <algorithm>
#include <utility>

namespace {

constexpr int anyHeightPx = 10'000;

/// @p line with a line break for each bar behind which the next part would not fit.
QString brokenLine(const QString &line, const QFontMetrics &metrics, int width)
{
    const QString bar = QStringLiteral(" | ");
    QStringList parts = line.split(bar); // other blanks around a bar are parts' own
    QStringList lines;
    QString last = parts.takeFirst();
    for (const QString &part : std::as_const(parts)) {
        const QString longer = last + bar + part;
        if (metrics.horizontalAdvance(longer.trimmed()) < width) { // equal may be rounded down
            last = longer;
        } else {
            lines.append(last.trimmed());
            last = part.trimmed();
        }
    }
    lines.append(last);
    return lines.join(QLatin1Char('\n'));
}

} // namespace

int CaptionLabel::heightForWidth(int width) const
{
    const int besides = 2 * (frameWidth() + margin());
    const QRect room(QPoint(), QSize(width - besides - indentPx(), anyHeightPx));
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
    const int half = fontMetrics().horizontalAdvance(QLatin1Char('x')) / 2;
    return frameWidth() > 0 ? std::max(half - margin(), 0) : 0;
}

QString CaptionLabel::broken(int width) const
{
    QStringList lines = text().split(QLatin1Char('\n'));
    for (QString &line : lines)
        line = brokenLine(line, fontMetrics(), width);
    return lines.join(QLatin1Char('\n'));
}
