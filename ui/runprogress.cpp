#include "ui/runprogress.h"

#include <QCoreApplication>

#include <algorithm>

namespace {

constexpr int knownAfter = 3; // requests; the mean of fewer says little

QString tr(const char *text)
{
    return QCoreApplication::translate("RunProgress", text);
}

QString number(qint64 value)
{
    return QString::number(value);
}

/// @p value in units of @p step, the last one begun counting as whole.
qint64 unitsUp(qint64 value, qint64 step)
{
    return (value + step - 1) / step;
}

} // namespace

QString RunProgress::text(const Count &count)
{
    if (!count.isPlanned)
        return tr("Measuring cadences: %1 of %2 datasources")
            .arg(number(count.done), number(count.total));
    const int requests = count.total - count.films;
    const int done = std::min(count.done, requests);
    QString requestsDone = tr("%1 of %2 requests").arg(number(done), number(requests));
    if (done == requests) {
        return count.films > 0
                   ? tr("%1, %2 of %3 films")
                         .arg(requestsDone, number(count.done - done), number(count.films))
                   : requestsDone;
    }
    if (done < knownAfter)
        return requestsDone;
    const qint64 leftMs = count.elapsedMs * (requests - done) / done;
    return tr("%1, about %2 left").arg(requestsDone, roundedDuration(leftMs));
}

QString RunProgress::roundedDuration(qint64 ms)
{
    constexpr qint64 secondMs = 1000;
    constexpr qint64 minuteMs = 60 * secondMs;
    constexpr qint64 hourMs = 60 * minuteMs;
    const qint64 tensOfSeconds = std::max<qint64>(unitsUp(ms, 10 * secondMs), 1);
    if (tensOfSeconds < 6)
        return tr("%1 s").arg(number(10 * tensOfSeconds));
    const qint64 minutes = unitsUp(ms, minuteMs);
    if (minutes < 60)
        return tr("%1 min").arg(number(minutes));
    const qint64 tensOfMinutes = unitsUp(ms, hourMs / 6);
    if (tensOfMinutes % 6 == 0)
        return tr("%1 h").arg(number(tensOfMinutes / 6));
    return tr("%1 h %2 min").arg(number(tensOfMinutes / 6), number(tensOfMinutes % 6 * 10));
}
