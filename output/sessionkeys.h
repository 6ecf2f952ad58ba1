#pragma once

#include <QLatin1String>

/// The keys of session.json that are read back, written here once for those who write and read it.
namespace SessionKeys {

template<int Size>
constexpr QLatin1String key(const char (&text)[Size])
{
    return QLatin1String(text, Size - 1);
}

constexpr QLatin1String startUtc = key("startUtc");
constexpr QLatin1String videoFps = key("videoFps");
constexpr QLatin1String videoCrf = key("videoCrf");
constexpr QLatin1String sourceOverlay = key("sourceOverlay");
constexpr QLatin1String scaleOverlay = key("scaleOverlay");
constexpr QLatin1String sources = key("sources");

// Of each datasource.
constexpr QLatin1String sourceId = key("sourceId");
constexpr QLatin1String nickname = key("nickname");
constexpr QLatin1String archiveName = key("archiveName");

} // namespace SessionKeys
