#pragma once

#include <QLatin1String>

/// The keys of session.json that are read back, defined once for writing and reading.
namespace SessionKeys {

template<int Size>
constexpr QLatin1String key(const char (&text)[Size])
{
    return QLatin1String(text, Size - 1);
}

constexpr QLatin1String startUtc = key("startUtc");
constexpr QLatin1String endUtc = key("endUtc");
constexpr QLatin1String videoFps = key("videoFps");
constexpr QLatin1String videoCrf = key("videoCrf");
constexpr QLatin1String keepFrames = key("keepFrames");
constexpr QLatin1String createVideos = key("createVideos");
constexpr QLatin1String sourceOverlay = key("sourceOverlay");
constexpr QLatin1String scaleOverlay = key("scaleOverlay");
constexpr QLatin1String canceled = key("canceled");
constexpr QLatin1String recovered = key("recovered"); // only if it was written from the manifest
constexpr QLatin1String sources = key("sources");

// Of each datasource.
constexpr QLatin1String sourceId = key("sourceId");
constexpr QLatin1String nickname = key("nickname");
constexpr QLatin1String archiveName = key("archiveName");
constexpr QLatin1String acceptedFrames = key("acceptedFrames");
constexpr QLatin1String timestampedVideoFrames = key("timestampedVideoFrames");
constexpr QLatin1String duplicateRequests = key("duplicateRequests");
constexpr QLatin1String rejectedTimeRequests = key("rejectedTimeRequests");

} // namespace SessionKeys
