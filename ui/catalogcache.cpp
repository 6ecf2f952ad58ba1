#include "ui/catalogcache.h"

#include "base/jsonfile.h"
#include "base/runtimeconfig.h"

std::optional<QJsonObject> CatalogCache::load()
{
    return JsonFile::load(RuntimeConfig::catalogPath());
}

bool CatalogCache::save(const QJsonObject &catalog)
{
    return JsonFile::save(RuntimeConfig::catalogPath(), catalog) == JsonFile::SaveResult::Saved;
}
