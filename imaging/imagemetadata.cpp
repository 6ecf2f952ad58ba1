#include "imaging/imagemetadata.h"

#include <QJsonObject>
#include <QString>

double ImageMetadata::metadataNumber(const QJsonObject &metadata, const QString &key)
{
    const QJsonValue value = metadata.value(key);
    if (value.isString())
        return value.toString().toDouble(); // 0 when it is no number
    return value.toDouble();                // 0 for any other type
}
