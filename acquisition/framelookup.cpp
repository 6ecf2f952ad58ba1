#include "acquisition/framelookup.h"

#include "acquisition/framerules.h"

qint64 FrameLookup::deltaSeconds() const
{
    return actualUtc.isValid() ? FrameRules::deltaSeconds(request.requestedUtc, actualUtc) : 0;
}

ManifestRow FrameLookup::toRow(FrameStatus status) const
{
    ManifestRow row;
    row.request = request;
    row.actualUtc = actualUtc;
    row.imageId = imageId;
    row.deltaSeconds = deltaSeconds();
    row.toleranceSeconds = toleranceSeconds;
    row.status = status;
    row.metadata = answer;
    return row;
}
