#include "sessiontool/reportjson.h"

#include "base/utctext.h"
#include "sessiontool/sessionreport.h"

#include <QJsonArray>

namespace {

/// A time that is not known is null.
QJsonValue timeJson(const QDateTime &time)
{
    return time.isValid() ? QJsonValue(UtcText::toText(time)) : QJsonValue();
}

/// A missing frame, or one whose file has another name, is null.
QJsonValue numberJson(int number)
{
    return number >= 0 ? QJsonValue(number) : QJsonValue();
}

QJsonArray gapsJson(const QVector<SessionGap> &gaps)
{
    QJsonArray json;
    for (const SessionGap &gap : gaps)
        json.append(QJsonObject{{QStringLiteral("fromUtc"), timeJson(gap.fromUtc)},
                                {QStringLiteral("toUtc"), timeJson(gap.toUtc)},
                                {QStringLiteral("seconds"), gap.seconds()},
                                {QStringLiteral("lastFrame"), numberJson(gap.lastFrame)},
                                {QStringLiteral("nextFrame"), numberJson(gap.nextFrame)}});
    return json;
}

QJsonArray framesJson(const QVector<LedgerFrame> &frames)
{
    QJsonArray json;
    for (const LedgerFrame &frame : frames)
        json.append(QJsonObject{{QStringLiteral("number"), numberJson(frame.number)},
                                {QStringLiteral("actualUtc"), timeJson(frame.actualUtc)},
                                {QStringLiteral("requestedUtc"), timeJson(frame.requestedUtc)}});
    return json;
}

QJsonObject sourceJson(const ReportedSource &source)
{
    const SourceLedger &ledger = source.ledger;
    return {{QStringLiteral("sourceId"), ledger.sourceId},
            {QStringLiteral("nickname"), ledger.nickname},
            {QStringLiteral("requested"), ledger.requests()},
            {QStringLiteral("accepted"), ledger.acceptedFrames()},
            {QStringLiteral("duplicate"), ledger.count(FrameStatus::Duplicate)},
            {QStringLiteral("rejectedTime"), ledger.count(FrameStatus::RejectedTime)},
            {QStringLiteral("corruptImage"), ledger.count(FrameStatus::CorruptImage)},
            {QStringLiteral("downloadError"), ledger.count(FrameStatus::DownloadError)},
            {QStringLiteral("lookupError"), ledger.count(FrameStatus::LookupError)},
            {QStringLiteral("stepSeconds"), source.stepSeconds},
            {QStringLiteral("gaps"), gapsJson(source.gaps)},
            {QStringLiteral("frames"), framesJson(ledger.frames)}};
}

} // namespace

QJsonObject ReportJson::toJson(const SessionReport &report)
{
    const SessionInterval interval = report.interval.value_or(SessionInterval());
    QJsonArray sources;
    for (const ReportedSource &source : report.sources)
        sources.append(sourceJson(source));
    return {{QStringLiteral("directory"), report.directory},
            {QStringLiteral("state"), SessionReports::toText(report.state)},
            {QStringLiteral("startUtc"), timeJson(interval.startUtc)},
            {QStringLiteral("endUtc"), timeJson(interval.endUtc)},
            {QStringLiteral("findings"), QJsonArray::fromStringList(report.findings)},
            {QStringLiteral("sources"), sources}};
}
