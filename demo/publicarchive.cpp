#include "demo/publicarchive.h"

#include "base/errortext.h"
#include "base/runtimeconfig.h"
#include "client/helioviewerclient.h"
#include "demo/sessionrun.h"

#include <QEventLoop>
#include <QFile>
#include <QJsonObject>

#include <algorithm>

namespace {

bool holds(const QJsonObject &node, int sourceId)
{
    return node.value(QLatin1String("sourceId")).toInt(-1) == sourceId ||
           std::any_of(node.begin(), node.end(), [sourceId](const QJsonValue &value) {
               return value.isObject() && holds(value.toObject(), sourceId);
           });
}

/// Nothing, with a reason, when the archive does not answer.
std::optional<QJsonObject> fetchCatalog(QString *errorText)
{
    HelioviewerClient client;
    QEventLoop loop;
    std::optional<QJsonObject> received;
    QObject::connect(&client, &HelioviewerClient::catalogReceived, &loop,
                     [&](const QJsonObject &catalog) {
                         received = catalog;
                         loop.quit();
                     });
    QObject::connect(&client, &HelioviewerClient::requestError, &loop,
                     [&](const QString &, const QString &message) {
                         *errorText = message;
                         loop.quit();
                     });
    client.getDataSources();
    loop.exec();
    return received;
}

} // namespace

AcquisitionSettings PublicArchive::settings()
{
    AcquisitionSettings settings;
    settings.startUtc = QDateTime({2024, 5, 10}, {12, 20}, Qt::UTC);
    settings.endUtc = settings.startUtc.addSecs(480);
    settings.cadenceSeconds = 240; // that of SUVI
    settings.imageWidth = 512;
    settings.scaleOverlay = true;
    settings.sources = {{10, QStringLiteral("AIA 171"), QStringLiteral("SDO/AIA/171")},
                        {2003, QStringLiteral("GOES-R SUVI 195"), QStringLiteral("GOES/SUVI/195")}};
    return settings;
}

bool PublicArchive::configure(QString *errorText)
{
    // The engine asks at once for what comes next, as every user is served; a demonstration waits.
    const QString program = RuntimeConfig::resolveAppPath(QStringLiteral("bin/curl-politely"));
    QFile script(program);
    if (!script.open(QIODevice::WriteOnly) ||
        script.write("#!/bin/sh\nsleep 1\nexec \"$(dirname \"$0\")/curl\" \"$@\"\n") < 0 ||
        !script.setPermissions(script.permissions() | QFile::ExeOwner))
        return ErrorText::fail(
            errorText,
            QStringLiteral("%1 cannot be written: %2").arg(program, script.errorString()));
    SessionRun::configure(QStringLiteral("paths/curl"), program);
    SessionRun::configure(QStringLiteral("network/preflightParallelRequests"), 1);
    return true;
}

bool PublicArchive::answers(QString *errorText)
{
    QString reason;
    const auto catalog = fetchCatalog(&reason);
    if (!catalog)
        return ErrorText::fail(
            errorText, QStringLiteral("The archive at %1 cannot be reached: %2\nLook at this "
                                      "machine's network and proxy, or try again later. Without "
                                      "--public the demonstration needs no network.")
                           .arg(RuntimeConfig::apiBase(), reason.trimmed()));
    for (const DataSource &source : settings().sources) {
        if (!holds(*catalog, source.sourceId))
            return ErrorText::fail(errorText, QStringLiteral("The archive at %1 has no %2.")
                                                  .arg(RuntimeConfig::apiBase(), source.nickname));
    }
    return true;
}
