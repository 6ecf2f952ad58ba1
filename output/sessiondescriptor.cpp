#include "output/sessiondescriptor.h"

#include "base/filenames.h"
#include "base/utctext.h"
#include "output/sessionfiles.h"
#include "output/sessionkeys.h"

#include <QJsonArray>

namespace {

constexpr int formatVersion = 1;

/// What is the same in every session, recorded for whoever finds the folder years later.
QJsonObject conventions()
{
    return {
        {QStringLiteral("application"), QStringLiteral("Orvik")},
        {QStringLiteral("formatVersion"), formatVersion},
        {QStringLiteral("timestampOverlay"), true},
        {QStringLiteral("timestampTimeBasis"), QStringLiteral("Helioviewer actual UTC")},
        {QStringLiteral("timestampedVideoFramesDirectory"), SessionFiles::videoFramesFolder()},
        {QStringLiteral("sourceOverlayPosition"), QStringLiteral("bottom-right")},
        {QStringLiteral("scaleOverlayPosition"), QStringLiteral("top-right")},
        {QStringLiteral("scaleBasis"),
         QStringLiteral("Helioviewer rsun + IAU nominal solar radius 695700 km")},
    };
}

void insertSettings(QJsonObject &json, const AcquisitionSettings &settings)
{
    json.insert(SessionKeys::startUtc, UtcText::toText(settings.startUtc));
    json.insert(SessionKeys::endUtc, UtcText::toText(settings.endUtc));
    json.insert(QStringLiteral("cadenceSeconds"), settings.cadenceSeconds);
    json.insert(QStringLiteral("maxTimeErrorSeconds"), settings.maxTimeErrorSeconds);
    json.insert(QStringLiteral("useSourceTimingProfiles"), settings.useSourceTimingProfiles);
    json.insert(QStringLiteral("imageWidth"), settings.imageWidth);
    json.insert(SessionKeys::videoFps, settings.videoFps);
    json.insert(SessionKeys::videoCrf, settings.videoCrf);
    json.insert(SessionKeys::keepFrames, settings.keepFrames);
    json.insert(SessionKeys::createVideos, settings.createVideos);
    json.insert(SessionKeys::sourceOverlay, settings.sourceOverlay);
    json.insert(SessionKeys::scaleOverlay, settings.scaleOverlay);
}

QString toText(PreflightMode mode)
{
    switch (mode) {
    case PreflightMode::DirectDenseSource:
        return QStringLiteral("direct-dense-source");
    case PreflightMode::QuickProbe:
        return QStringLiteral("quick-probe");
    case PreflightMode::Fallback:
        break;
    }
    return QStringLiteral("fallback");
}

QJsonObject sourceJson(const SessionSourceRecord &record, const SessionRecord &session)
{
    const QString archiveName =
        record.archiveName.isEmpty()
            ? FileNames::datasourceFolder(record.source.nickname, session.settings.startUtc)
            : record.archiveName;
    return {
        {SessionKeys::sourceId, record.source.sourceId},
        {SessionKeys::nickname, record.source.nickname},
        {QStringLiteral("path"), record.source.path},
        {SessionKeys::archiveName, archiveName},
        {QStringLiteral("videoFile"), SessionFiles::film(archiveName)},
        {QStringLiteral("timingProfile"), record.timingProfile},
        {QStringLiteral("maxTimeErrorSeconds"), record.maxTimeErrorSeconds},
        {SessionKeys::acceptedFrames, record.acceptedFrames},
        {SessionKeys::timestampedVideoFrames, record.timestampedVideoFrames},
        {SessionKeys::duplicateRequests, record.duplicateRequests},
        {SessionKeys::rejectedTimeRequests, record.rejectedTimeRequests},
        {QStringLiteral("preflightMode"), toText(record.preflightMode)},
        {QStringLiteral("preflightUsed"), record.preflightMode == PreflightMode::QuickProbe},
        {QStringLiteral("preflightProbeSeconds"), session.preflightProbeSeconds},
        {QStringLiteral("preflightUniqueFrames"), record.preflightUniqueFrames},
        {QStringLiteral("effectiveCadenceMedianSeconds"), record.medianSeconds},
        {QStringLiteral("effectiveCadenceMinSeconds"), record.minSeconds},
        {QStringLiteral("effectiveCadenceMaxSeconds"), record.maxSeconds},
    };
}

} // namespace

QJsonObject SessionDescriptor::toJson(const SessionRecord &session)
{
    QJsonArray sources;
    for (const SessionSourceRecord &source : session.sources)
        sources.append(sourceJson(source, session));

    QJsonObject json = conventions();
    insertSettings(json, session.settings);
    json.insert(QStringLiteral("apiBase"), session.apiBase);
    json.insert(QStringLiteral("preflightParallelRequests"), session.preflightParallelRequests);
    json.insert(SessionKeys::canceled, session.canceled);
    json.insert(QStringLiteral("completedUtc"), UtcText::toText(session.completedUtc));
    json.insert(SessionKeys::sources, sources);
    return json;
}
