#include "simulator/service/faultyanswers.h"

#include "simulator/service/endpoints.h"
#include "simulator/service/faultplan.h"

#include <algorithm>
#include <array>
#include <optional>

namespace Simulator {

namespace {

ClosestImageForm formOf(const QVector<Fault> &faults)
{
    if (findFault(faults, FaultKind::NumberId))
        return ClosestImageForm::NumberId;
    if (findFault(faults, FaultKind::NumericStrings))
        return ClosestImageForm::NumericStrings;
    if (findFault(faults, FaultKind::NoRsun))
        return ClosestImageForm::NoRsun;
    if (const Fault *wrong = findFault(faults, FaultKind::WrongId)) {
        constexpr std::array<ClosestImageForm, 4> forms = {
            ClosestImageForm::ZeroId, ClosestImageForm::WordId, ClosestImageForm::NullId,
            ClosestImageForm::MissingId};
        return forms[size_t(std::clamp(wrong->value, 0, 3))];
    }
    return ClosestImageForm::Usual;
}

MissingBlock blockOf(const QVector<Fault> &faults)
{
    if (findFault(faults, FaultKind::BlackBlock))
        return MissingBlock::Black;
    return findFault(faults, FaultKind::TransparentBlock) ? MissingBlock::Transparent
                                                          : MissingBlock::None;
}

Answer trueAnswer(Operation operation, const Archive &archive, PictureStore &pictures,
                  const Query &query, const QVector<Fault> &faults)
{
    switch (operation) {
    case Operation::GetDataSources:
        return dataSourcesAnswer(archive);
    case Operation::GetJPX:
        return jpxAnswer(archive, query);
    case Operation::GetClosestImage: {
        const Fault *stale = findFault(faults, FaultKind::StaleDate);
        return closestImageAnswer(archive, query, formOf(faults), stale ? stale->value : 0);
    }
    case Operation::DownloadImage:
        break;
    }
    return downloadImageAnswer(archive, pictures, query, blockOf(faults));
}

/// An answer that needs no look at the archive.
std::optional<Answer> replacement(Operation operation, const Fault &fault)
{
    switch (fault.kind) {
    case FaultKind::Status:
        return answerWithStatus(fault.value);
    case FaultKind::HtmlBody:
        return pageOfError(QStringLiteral("Limit of 3000 requests per 60 seconds has been exceeded "
                                          "by identifier: 127.0.0.1"),
                           200);
    case FaultKind::JsonErrorBody:
        if (operation == Operation::GetJPX)
            return jpxErrorObject(QStringLiteral("Error encountered during JPX creation: Error "
                                                 "creating JPX file"));
        return jsonAnswer(errorObject(QStringLiteral("0"), 1).body);
    case FaultKind::EmptyBody:
        return jsonAnswer({});
    case FaultKind::JsonArray:
        return jsonAnswer("[]");
    default:
        return std::nullopt;
    }
}

void spoil(Answer &answer, const Fault &fault)
{
    if (fault.kind == FaultKind::TruncatedPng || fault.kind == FaultKind::CutOffJson)
        answer.body.truncate(answer.body.size() / 2);
    else if (fault.kind == FaultKind::LeadingNewline)
        answer.body.prepend('\n');
}

} // namespace

Answer answerOf(Operation operation, const Archive &archive, PictureStore &pictures,
                const Query &query, const QVector<Fault> &faults)
{
    for (const Fault &fault : faults)
        if (const std::optional<Answer> answer = replacement(operation, fault))
            return *answer;
    Answer answer = trueAnswer(operation, archive, pictures, query, faults);
    for (const Fault &fault : faults)
        spoil(answer, fault);
    return answer;
}

} // namespace Simulator
