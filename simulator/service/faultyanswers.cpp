#include "simulator/service/faultyanswers.h"

#include "simulator/archive/servicetime.h"
#include "simulator/service/endpoints.h"
#include "simulator/service/pngencoder.h"

#include <QColor>
#include <QImage>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <array>

namespace Simulator {

namespace {

Answer trueAnswer(Operation operation, const Archive &archive, PictureStore &pictures,
                  const QUrlQuery &query)
{
    switch (operation) {
    case Operation::GetDataSources:
        return dataSourcesAnswer(archive);
    case Operation::GetJPX:
        return jpxAnswer(archive, query);
    case Operation::GetClosestImage:
        return closestImageAnswer(archive, query);
    case Operation::DownloadImage:
        break;
    }
    return downloadImageAnswer(archive, pictures, query);
}

Answer errorWithoutStatus(Operation operation)
{
    if (operation == Operation::GetJPX)
        return jpxErrorObject(QStringLiteral("Error encountered during JPX creation: Error "
                                             "creating JPX file"));
    Answer answer = errorObject(QStringLiteral("0"), 1);
    answer.status = 200;
    return answer;
}

/// As of a renderer that skipped one of its blocks, left of the middle and inside the disk.
QByteArray withoutBlock(const QByteArray &png, const QColor &colour)
{
    constexpr int freeIndex = 255; // pictures leave the palette's last place free
    QImage picture = QImage::fromData(png);
    if (picture.isNull())
        return png; // an error in its place
    picture.setColorCount(freeIndex + 1);
    picture.setColor(freeIndex, colour.rgba());
    const int side = std::clamp(std::min(picture.width(), picture.height()) / 16, 64, 256);
    const int left = static_cast<int>(0.34 * picture.width()) / side * side;
    const int top = static_cast<int>(0.46 * picture.height()) / side * side;
    for (int row = top; row < std::min(top + side, picture.height()); ++row)
        std::fill_n(picture.scanLine(row) + left, std::min(side, picture.width() - left),
                    static_cast<uchar>(freeIndex));
    return encodePng(picture);
}

void withNumbersAsTexts(QJsonObject &image)
{
    for (auto member = image.begin(); member != image.end(); ++member)
        if (member->isDouble())
            *member = member->toVariant().toString();
}

QByteArray departing(const QByteArray &body, const Fault &fault)
{
    const QString id = QStringLiteral("id");
    const QString date = QStringLiteral("date");
    QJsonObject image = QJsonDocument::fromJson(body).object();
    if (fault.kind == FaultKind::WrongId) {
        const std::array<QJsonValue, 4> ids = {QStringLiteral("0"), QStringLiteral("unknown"),
                                               QJsonValue::Null, QJsonValue::Undefined};
        image.insert(id, ids.at(static_cast<size_t>(
                             std::clamp(fault.value, 0, 3)))); // the last one removes it
    } else if (fault.kind == FaultKind::NumberId) {
        image.insert(id, image.value(id).toString().toLongLong());
    } else if (fault.kind == FaultKind::NumericStrings) {
        withNumbersAsTexts(image);
    } else if (fault.kind == FaultKind::StaleDate) {
        const qint64 time = parseArchiveTime(image.value(date).toString()).value_or(0);
        image.insert(date, archiveTimeText(time + fault.value));
    } else {
        image.remove(QStringLiteral("rsun"));
    }
    return jsonAnswer(image).body;
}

QByteArray spoiltBody(const QByteArray &body, const Fault &fault)
{
    switch (fault.kind) {
    case FaultKind::EmptyBody:
        return {};
    case FaultKind::JsonArray:
        return "[]";
    case FaultKind::TruncatedPng:
    case FaultKind::CutOffJson:
        return body.left(body.size() / 2);
    case FaultKind::LeadingNewline:
        return '\n' + body;
    case FaultKind::BlackBlock:
        return withoutBlock(body, Qt::black);
    case FaultKind::TransparentBlock:
        return withoutBlock(body, Qt::transparent);
    case FaultKind::WrongId:
    case FaultKind::NumberId:
    case FaultKind::NumericStrings:
    case FaultKind::StaleDate:
    case FaultKind::NoRsun:
        return departing(body, fault);
    case FaultKind::Status:
    case FaultKind::HtmlBody:
    case FaultKind::JsonErrorBody:
    case FaultKind::Delay:
    case FaultKind::Hang:
    case FaultKind::Refuse:
    case FaultKind::ResetInBody:
        break; // these concern the whole answer, or the connection
    }
    return body;
}

Answer spoilt(const Answer &answer, Operation operation, const Fault &fault)
{
    if (fault.kind == FaultKind::Status)
        return answerWithStatus(fault.value);
    if (fault.kind == FaultKind::HtmlBody)
        return pageOfError(QStringLiteral("Limit of 3000 requests per 60 seconds has been exceeded "
                                          "by identifier: 127.0.0.1"),
                           200);
    if (fault.kind == FaultKind::JsonErrorBody)
        return errorWithoutStatus(operation);
    return {answer.status, answer.contentType, spoiltBody(answer.body, fault)};
}

} // namespace

Answer answerOf(Operation operation, const Archive &archive, PictureStore &pictures,
                const QUrlQuery &query, const QVector<Fault> &faults)
{
    Answer answer = trueAnswer(operation, archive, pictures, query);
    for (const Fault &fault : faults)
        answer = spoilt(answer, operation, fault);
    return answer;
}

} // namespace Simulator
