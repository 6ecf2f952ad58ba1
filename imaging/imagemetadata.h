#pragma once

class QJsonObject;
class QString;

/// The solar geometry that comes with an image.
namespace ImageMetadata {

/**
 * A number of a closest-image answer, which may arrive as a JSON number or as numeric text.
 *
 * @return 0 when the key is missing, of another type, or a text that is not a number
 */
double metadataNumber(const QJsonObject &metadata, const QString &key);

} // namespace ImageMetadata
