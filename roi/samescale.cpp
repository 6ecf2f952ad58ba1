#include "roi/samescale.h"

#include "imaging/metricscale.h"
#include "roi/solarposition.h"

#include <QCoreApplication>
#include <QStringList>

#include <cmath>

namespace {

constexpr double tolerance = 0.02;
constexpr int shownNames = 6; // more would push the window's other parts away

QString tr(const char *text)
{
    return QCoreApplication::translate("SameScale", text);
}

/// How the frames of @p other differ from those of @p one; empty when they do not.
QString difference(const QJsonObject &one, const QJsonObject &other)
{
    // On a frame of one pixel lengths are fractions of the frame.
    const double km = MetricScale::kmPerPixel(one, 1);
    const double otherKm = MetricScale::kmPerPixel(other, 1);
    if (km <= 0.0 || otherKm <= 0.0)
        return {};
    if (std::abs(otherKm - km) > tolerance * km)
        return tr("%1 times as wide").arg(QString::number(otherKm / km, 'g', 3));
    const auto centre = SolarPosition::diskOn({1, 1}, one).centre;
    const auto otherCentre = SolarPosition::diskOn({1, 1}, other).centre;
    if (!centre || !otherCentre)
        return {};
    const QPointF shift = *otherCentre - *centre;
    return std::hypot(shift.x(), shift.y()) > tolerance ? tr("shifted") : QString();
}

} // namespace

QString SameScale::warning(const QVector<Source> &sources)
{
    QStringList different;
    for (const Source &source : sources) {
        const QString text = difference(sources.first().metadata, source.metadata);
        if (!text.isEmpty())
            different.append(QStringLiteral("%1 (%2)").arg(source.nickname, text));
    }
    if (different.isEmpty())
        return {};
    const int more = different.size() - shownNames;
    if (more > 0)
        different = different.mid(0, shownNames) << tr("%1 more").arg(more);
    return tr("A region is not the same place on the Sun as in %1: %2.")
        .arg(sources.first().nickname, different.join(QStringLiteral(", ")));
}
