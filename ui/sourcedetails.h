#pragma once

#include "acquisition/cadenceanalysis.h"
#include "session/datasource.h"

#include <QDateTime>
#include <QJsonObject>
#include <QString>

#include <optional>

/// One datasource of the catalog as the details page describes it.
struct CatalogSource
{
    DataSource source;
    QJsonObject entry;                         ///< as the service delivered it
    std::optional<CadenceStatistics> analysis; ///< what the planning of a session found, if any
};

/// The sampling that the settings show at the moment.
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

/// Plain text: place in the catalog and the period with images; cadence unknown.
QString toolTip(const QString &path, const QJsonObject &entry);
/// The same tool tip with what the analysis found in place of its cadence line.
QString toolTipWithCadence(const QString &toolTip, const CadenceStatistics &analysis);

} // namespace SourceDetails
