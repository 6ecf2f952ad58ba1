#pragma once

#include <QJsonObject>

#include <optional>

/// The last catalog that the service delivered, kept in a file so that a start needs no network.
namespace CatalogCache {

/// Nothing when the file is missing, unreadable or holds no JSON object.
std::optional<QJsonObject> load();

/// False when the file cannot be written; the old one then stays as it was.
bool save(const QJsonObject &catalog);

} // namespace CatalogCache
