// rois.json: what is read once must be kept as it is.

#include "base/jsonfile.h"
#include "fuzz/scratch.h"
#include "roi/roiset.h"

#include <QJsonDocument>
#include <QJsonObject>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    const auto object = JsonFile::parse(Scratch::bytes(data, size));
    if (!object)
        return 0;
    const QVector<Roi> rois = RoiSet::fromJson(*object);
    for (const Roi &roi : rois)
        Scratch::require(roi.rect.isValid(), "a region has an area");
    const QJsonDocument kept(RoiSet::toJson(rois, QStringLiteral("session")));
    const auto again = JsonFile::parse(kept.toJson());
    Scratch::require(again && RoiSet::fromJson(*again) == rois, "regions come back as they were");
    return 0;
}
