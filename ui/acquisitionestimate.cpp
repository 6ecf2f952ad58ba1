#include "ui/acquisitionestimate.h"

#include <QCoreApplication>
#include <QDateTime>

#include <cmath>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("AcquisitionEstimate", text);
}

QString padded(qint64 value, int digits)
{
    return QStringLiteral("%1").arg(value, digits, 10, QLatin1Char('0'));
}

} // namespace

QString AcquisitionEstimate::formatDuration(qint64 seconds)
{
    const auto number = [](qint64 value) { return QString::number(value); };
    if (seconds <= 0)
        return tr("n/a");
    if (seconds < 60)
        return tr("%1 s").arg(number(seconds));
    if (seconds % 3600 == 0)
        return tr("%1 h").arg(number(seconds / 3600));
    if (seconds % 60 == 0)
        return tr("%1 min").arg(number(seconds / 60));
    if (seconds / 3600 == 0)
        return tr("%1 min %2 s").arg(number(seconds / 60), number(seconds % 60));
    return tr("%1 h %2 min").arg(number(seconds / 3600), number(seconds % 3600 / 60));
}

QString AcquisitionEstimate::formatVideoDuration(qint64 frames, int fps)
{
    if (frames < 1 || fps < 1)
        return QStringLiteral("--");
    const qint64 ms = std::llround(static_cast<double>(frames) * 1000.0 / fps);
    return QStringLiteral("%1:%2:%3.%4")
        .arg(padded(ms / 3'600'000, 2), padded(ms / 60'000 % 60, 2), padded(ms / 1000 % 60, 2),
             padded(ms % 1000, 3));
}

QString AcquisitionEstimate::text(const QDateTime &startUtc, const QDateTime &endUtc,
                                  int cadenceSeconds, int fps)
{
    const bool valid = startUtc.isValid() && endUtc.isValid() && endUtc >= startUtc;
    if (!valid || cadenceSeconds < 1 || fps < 1)
        return tr("Estimated acquisition: invalid interval or parameters");
    const qint64 frames = startUtc.secsTo(endUtc) / cadenceSeconds + 1;
    return tr("Nominal estimate: %1 frame(s) per datasource  |  video %2 @ %3 fps")
        .arg(QString::number(frames), formatVideoDuration(frames, fps), QString::number(fps));
}
