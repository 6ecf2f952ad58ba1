#pragma once

#include "simulator/service/answer.h"
#include "simulator/service/fault.h"
#include "simulator/service/query.h"

#include <QVector>

namespace Simulator {

class Archive;
class PictureStore;

/// The answer to a request, spoilt by the faults that concern its content.
Answer answerOf(Operation operation, const Archive &archive, PictureStore &pictures,
                const Query &query, const QVector<Fault> &faults);

} // namespace Simulator
