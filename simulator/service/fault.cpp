#include "simulator/service/fault.h"

#include <QMetaEnum>
#include <QStringList>

#include <array>

namespace Simulator {

std::optional<Fault> faultFromText(const QString &text)
{
    const QStringList words = text.split(QLatin1Char(':'));
    bool isOperation = false;
    bool isKind = false;
    const int operation = QMetaEnum::fromType<Operation>().keyToValue(
        words.at(0).toLatin1().constData(), &isOperation);
    const int kind =
        QMetaEnum::fromType<FaultKind>().keyToValue(words.value(1).toLatin1().constData(), &isKind);
    if (!isOperation || !isKind || words.size() > 5)
        return std::nullopt;

    const Fault usual{Operation(operation), FaultKind(kind)};
    std::array<int, 3> numbers = {usual.value, usual.first, usual.count};
    for (int word = 2; word < words.size(); ++word) {
        bool isNumber = false;
        numbers.at(static_cast<size_t>(word - 2)) = words.at(word).toInt(&isNumber);
        if (!isNumber)
            return std::nullopt;
    }
    return Fault{usual.operation, usual.kind, numbers[0], numbers[1], numbers[2]};
}

} // namespace Simulator
