#pragma once

#include "simulator/service/answer.h"
#include "simulator/service/fault.h"

#include <QVector>

class QUrlQuery;

namespace Simulator {

class Archive;
class PictureStore;

/// The answer to a request, spoilt by the faults that concern its content.
Answer answerOf(Operation operation, const Archive &archive, PictureStore &pictures,
                const QUrlQuery &query, const QVector<Fault> &faults);

} // namespace Simulator
