#include "sessiontool/storeddescriptor.h"

#include "base/errortext.h"
#include "base/jsonfile.h"
#include "base/utctext.h"
#include "output/sessionfiles.h"
#include "output/sessionkeys.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>

namespace {

QVector<DescribedSource> sourcesFromJson(const QJsonArray &elements)
{
    QVector<DescribedSource> sources;
    for (const QJsonValue &element : elements) {
        DescribedSource source;
        source.record = element.toObject();
        source.sourceId = source.record.value(SessionKeys::sourceId).toInt(-1);
        source.nickname = source.record.value(SessionKeys::nickname).toString();
        source.archiveName = source.record.value(SessionKeys::archiveName).toString();
        if (source.sourceId >= 0)
            sources.append(source);
    }
    return sources;
}

StoredDescriptor fromJson(const QJsonObject &json)
{
    StoredDescriptor session;
    session.startUtc = UtcText::fromText(json.value(SessionKeys::startUtc).toString());
    session.endUtc = UtcText::fromText(json.value(SessionKeys::endUtc).toString());
    session.videoFps = json.value(SessionKeys::videoFps).toInt(session.videoFps);
    session.videoCrf = json.value(SessionKeys::videoCrf).toInt(session.videoCrf);
    session.keepFrames = json.value(SessionKeys::keepFrames).toBool(session.keepFrames);
    session.createVideos = json.value(SessionKeys::createVideos).toBool(session.createVideos);
    session.canceled = json.value(SessionKeys::canceled).toBool();
    session.recovered = json.value(SessionKeys::recovered).toBool();
    session.sources = sourcesFromJson(json.value(SessionKeys::sources).toArray());
    return session;
}

} // namespace

bool StoredDescriptors::isThere(const QDir &session)
{
    const QFileInfo file(session.filePath(SessionFiles::descriptor()));
    return file.exists() || file.isSymLink();
}

std::optional<StoredDescriptor> StoredDescriptors::load(const QDir &session, QString *errorText)
{
    if (!isThere(session))
        return ErrorText::nothing(errorText,
                                  QStringLiteral("session.json is missing. If the run is over, "
                                                 "\"orvik-session recover\" writes one."));
    QString reason;
    const std::optional<QJsonObject> json =
        JsonFile::load(session.filePath(SessionFiles::descriptor()), &reason);
    if (!json)
        return ErrorText::nothing(errorText,
                                  QStringLiteral("session.json cannot be used: %1.").arg(reason));
    return fromJson(*json);
}

bool StoredDescriptors::isFolderName(const QString &archiveName)
{
    return !archiveName.isEmpty() && archiveName != QLatin1String(".") &&
           archiveName != QLatin1String("..") && !archiveName.contains(QLatin1Char('/')) &&
           !archiveName.contains(QLatin1Char('\\'));
}
