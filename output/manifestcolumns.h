#pragma once

#include <array>

/// The columns of manifest.csv, defined once for writing and reading.
namespace ManifestColumns {

/// In the order in which they are written.
enum Column {
    SourceId,
    Source,
    RequestIndex,
    RequestedUtc,
    ActualUtc,
    DeltaSeconds,
    ToleranceSeconds,
    ImageId,
    File,
    VideoFrame,
    Status,
    Scale,
    ScaleCorrection,
    SourceWidth,
    SourceHeight,
    RSun,
    RefPixelX,
    RefPixelY,
    Count
};

constexpr std::array<const char *, Count> names = {
    "SourceId",         "Source",      "RequestIndex", "RequestedUTC", "ActualUTC", "DeltaSeconds",
    "ToleranceSeconds", "ImageId",     "File",         "VideoFrame",   "Status",    "Scale",
    "ScaleCorrection",  "SourceWidth", "SourceHeight", "RSun",         "RefPixelX", "RefPixelY"};

/// A column of solar geometry.
struct Geometry
{
    Column column;
    const char *metadataKey; ///< in a closest-image answer
    bool positive;           ///< has no meaning at or below 0
};

constexpr std::array<Geometry, 7> geometry = {{
    {Scale, "scale", true},
    {ScaleCorrection, "scaleCorrection", true},
    {SourceWidth, "width", true},
    {SourceHeight, "height", true},
    {RSun, "rsun", true},
    {RefPixelX, "refPixelX", false}, // the centre of the disk may lie outside the image
    {RefPixelY, "refPixelY", false},
}};

} // namespace ManifestColumns
