// What the service says of single images: the frame index of a probe, and the closest image.

#include "client/helioviewerresponses.h"
#include "fuzz/scratch.h"
#include "imaging/metricscale.h"

#include <QJsonObject>

namespace {

void readFrameIndex(const QJsonObject &answer)
{
    const HelioviewerResponses::FrameIndex index = HelioviewerResponses::frameIndex(answer);
    for (const QDateTime &frame : index.framesUtc)
        Scratch::require(frame.isValid() && frame.toSecsSinceEpoch() >= 1, "frames have a time");
}

void readClosestImage(const QJsonObject &answer)
{
    QString errorText;
    const auto image = HelioviewerResponses::closestImage(answer, &errorText);
    Scratch::require(image.has_value() == errorText.isEmpty(), "an image or a reason");
    if (image)
        Scratch::require(image->imageId >= 1 && image->actualUtc.isValid() &&
                             image->actualUtc.timeSpec() == Qt::UTC,
                         "an image has an id and a time in UTC");
    const double km = MetricScale::kmPerPixel(answer, 1024);
    Scratch::require(km >= 0.0, "a pixel is not shorter than nothing");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    QString errorText;
    const auto answer = HelioviewerResponses::parseObject(Scratch::bytes(data, size), &errorText);
    Scratch::require(answer.has_value() == errorText.isEmpty(), "an object or a reason");
    if (answer) {
        readFrameIndex(*answer);
        readClosestImage(*answer);
    }
    return 0;
}
