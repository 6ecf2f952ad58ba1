#pragma once

#include "session/datasource.h"

#include <QDateTime>
#include <QJsonObject>
#include <QString>

#include <optional>

/// What a session's planning found out about one datasource.
struct SourceCadence
{
    static constexpr int denseSource = -1; ///< as uniqueFrames: sampled directly, never probed

    int uniqueFrames = 0;
    int medianSeconds = 0; ///< the sampling step of a dense source
    int minSeconds = 0;
    int maxSeconds = 0;
};

/// One datasource of the catalog as the details page describes it.
struct CatalogSource
{
    DataSource source;
    QJsonObject entry; ///< as the service delivered it
    std::optional<SourceCadence> analysis;
};

/// The sampling that the user asks for at the moment.
struct RequestedSampling
{
    QDateTime startUtc;
    QDateTime endUtc;
    int cadenceSeconds = 0;
};

/// Texts about datasources. Names from the service are escaped wherever the text is HTML.
namespace SourceDetails {

/// HTML shown before anything was chosen.
QString welcomePage();
/// HTML shown while no datasource is current.
QString noSourcePage();
/// HTML describing one datasource.
QString page(const CatalogSource &source, const RequestedSampling &sampling);

/// Plain text: where a datasource lies and when it has images; cadence unknown.
QString toolTip(const QString &path, const QJsonObject &entry);
/// The same tool tip with what the analysis found in place of its cadence line.
QString toolTipWithCadence(const QString &toolTip, const SourceCadence &analysis);

} // namespace SourceDetails
