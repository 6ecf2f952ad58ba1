#include "simulator/service/fault.h"

#include <QMetaEnum>
#include <QStringList>

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

    Fault fault{Operation(operation), FaultKind(kind)};
    int *const numbers[] = {&fault.value, &fault.first, &fault.count};
    for (int word = 2; word < words.size(); ++word) {
        bool isNumber = false;
        *numbers[word - 2] = words.at(word).toInt(&isNumber);
        if (!isNumber)
            return std::nullopt;
    }
    return fault;
}

} // namespace Simulator
