#include "sessiontool/sessiongaps.h"

#include "sessiontool/sessionledger.h"

#include <algorithm>

namespace {

/// A moment that a gap may begin or end with.
struct Mark
{
    qint64 seconds; ///< since the epoch
    int frame;      ///< -1 for a request
};

/// The first request, the frames in the order of their times, the last request.
QVector<Mark> marksOf(const SourceLedger &source)
{
    QVector<Mark> marks;
    marks.reserve(source.frames.size() + 2);
    for (const LedgerFrame &frame : source.frames) {
        if (frame.actualUtc.isValid())
            marks.append({frame.actualUtc.toSecsSinceEpoch(), frame.number});
    }
    const auto isEarlier = [](const Mark &a, const Mark &b) { return a.seconds < b.seconds; };
    if (!std::is_sorted(marks.cbegin(), marks.cend(), isEarlier))
        std::stable_sort(marks.begin(), marks.end(), isEarlier);
    const auto [first, last] =
        std::minmax_element(source.requestedSeconds.cbegin(), source.requestedSeconds.cend());
    marks.prepend({*first, -1});
    marks.append({*last, -1});
    return marks;
}

} // namespace

QVector<SessionGap> SessionGaps::find(const SourceLedger &source, int stepSeconds)
{
    QVector<SessionGap> gaps;
    if (stepSeconds <= 0 || source.requestedSeconds.isEmpty())
        return gaps;
    const QVector<Mark> marks = marksOf(source);
    for (int i = 1; i < marks.size(); ++i) {
        const Mark &from = marks.at(i - 1);
        const Mark &to = marks.at(i);
        if (to.seconds - from.seconds > 2 * static_cast<qint64>(stepSeconds))
            gaps.append({QDateTime::fromSecsSinceEpoch(from.seconds, Qt::UTC),
                         QDateTime::fromSecsSinceEpoch(to.seconds, Qt::UTC), from.frame, to.frame});
    }
    return gaps;
}
