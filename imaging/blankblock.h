#pragma once

class QImage;
class QJsonObject;
class QString;

/**
 * Looks for a square patch that the service's renderer left black or transparent inside the disk.
 *
 * @return the warning text, or nothing when the picture looks complete or cannot be judged
 */
QString detectBlankRendererBlock(const QImage &image, const QJsonObject &metadata);
