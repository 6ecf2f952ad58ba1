#pragma once

#include <QJsonObject>
#include <QString>
#include <QVector>

/// Whether a region is the same place on the Sun in several datasources.
namespace SameScale {

/// A datasource, with metadata of one of its images; empty when nothing is known.
struct Source
{
    QString nickname;
    QJsonObject metadata;
};

/**
 * A warning that names the datasources that show the Sun at another scale than the first one, or at
 * another place of the frame; empty when there is none.
 *
 * A region is the same fraction of each frame. Scales differ if its width in kilometres does so by
 * more than 2 %, places if the centres of the disks lie more than 2 % of the frame apart.
 * Datasources without metadata are not compared.
 */
QString warning(const QVector<Source> &sources);

} // namespace SameScale
