#include "roi/frameinterval.h"

#include "base/utctext.h"

#include <QCoreApplication>

#include <algorithm>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("FrameIntervals", text);
}

bool contains(const FrameInterval &interval, const QDateTime &utc)
{
    if (!interval.fromUtc.isValid() && !interval.toUtc.isValid())
        return true;
    return utc.isValid() && (!interval.fromUtc.isValid() || utc >= interval.fromUtc) &&
           (!interval.toUtc.isValid() || utc <= interval.toUtc);
}

QPair<int, int> positions(const FrameInterval &interval, const QVector<RoiSourceFrame> &frames,
                          int row)
{
    return interval.positions.value(row, {0, frames.size() - 1});
}

QVector<int> between(int first, int last)
{
    QVector<int> indices;
    for (int index = first; index <= last; ++index)
        indices.append(index);
    return indices;
}

} // namespace

bool FrameIntervals::haveTimes(const QVector<RoiSourceFrame> &frames)
{
    return std::any_of(frames.cbegin(), frames.cend(),
                       [](const RoiSourceFrame &frame) { return frame.actualUtc.isValid(); });
}

bool FrameIntervals::isAll(const FrameInterval &interval)
{
    return !interval.fromUtc.isValid() && !interval.toUtc.isValid() && interval.positions.isEmpty();
}

QVector<int> FrameIntervals::kept(const FrameInterval &interval,
                                  const QVector<RoiSourceFrame> &frames, int row)
{
    if (interval.positions.contains(row)) {
        const QPair<int, int> ends = positions(interval, frames, row);
        return between(ends.first, ends.second);
    }
    QVector<int> indices;
    for (int index = 0; index < frames.size(); ++index) {
        if (contains(interval, frames.at(index).actualUtc))
            indices.append(index);
    }
    return indices;
}

RoiSource FrameIntervals::cut(const FrameInterval &interval, const RoiSource &source, int row)
{
    if (isAll(interval))
        return source;
    RoiSource part = source;
    part.frames.clear();
    const QVector<int> indices = kept(interval, source.frames, row);
    for (const int index : indices)
        part.frames.append(source.frames.at(index));
    return part;
}

FrameInterval FrameIntervals::beginningAt(FrameInterval interval,
                                          const QVector<RoiSourceFrame> &frames, int row, int index)
{
    if (!haveTimes(frames)) {
        const int last = positions(interval, frames, row).second;
        interval.positions.insert(row, {index, last < index ? frames.size() - 1 : last});
        return interval;
    }
    interval.fromUtc = frames.at(index).actualUtc;
    if (interval.toUtc < interval.fromUtc)
        interval.toUtc = {};
    return interval;
}

FrameInterval FrameIntervals::endingAt(FrameInterval interval,
                                       const QVector<RoiSourceFrame> &frames, int row, int index)
{
    if (!haveTimes(frames)) {
        const int first = positions(interval, frames, row).first;
        interval.positions.insert(row, {first > index ? 0 : first, index});
        return interval;
    }
    interval.toUtc = frames.at(index).actualUtc;
    if (interval.toUtc < interval.fromUtc)
        interval.fromUtc = {};
    return interval;
}

QString FrameIntervals::timesText(const FrameInterval &interval)
{
    const QString from = UtcText::toOverlayText(interval.fromUtc);
    const QString to = UtcText::toOverlayText(interval.toUtc);
    if (interval.fromUtc.isValid() && interval.toUtc.isValid())
        return tr("from %1 to %2").arg(from, to);
    if (interval.fromUtc.isValid())
        return tr("from %1 on").arg(from);
    return interval.toUtc.isValid() ? tr("up to %1").arg(to) : QString();
}

QString FrameIntervals::keptText(const QVector<int> &kept, int frames)
{
    if (kept.size() == frames)
        return tr("Film: all frames");
    if (kept.isEmpty())
        return tr("Film: no frame");
    if (kept.size() == 1)
        return tr("Film: frame %1").arg(kept.first() + 1);
    return tr("Film: frames %1 to %2")
        .arg(QString::number(kept.first() + 1), QString::number(kept.last() + 1));
}

QString FrameIntervals::explanation(const FrameInterval &interval, int row)
{
    if (interval.positions.contains(row))
        return tr("Films are made of this part of the datasource. Its frames have no times, so "
                  "that other datasources are not cut with it.");
    const QString times = timesText(interval); // none where only other datasources are cut
    return times.isEmpty() ? tr("Films are made of all frames.")
                           : tr("Films are made of the frames of every datasource %1.").arg(times);
}
