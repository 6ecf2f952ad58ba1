#include "simulator/archive/imageids.h"

#include "simulator/hash.h"

namespace Simulator {

namespace {

constexpr int rounds = 4;
constexpr int smallestHalfBits = 14; // ids of up to nine digits, as the archive has them

quint64 roundKey(int round, quint64 half, quint64 mask)
{
    return hashOf(quint64(round) + 1, half) & mask;
}

} // namespace

ImageIds::ImageIds(qint64 count) : m_count(count), m_halfBits(smallestHalfBits)
{
    while ((qint64(1) << (2 * m_halfBits)) < count)
        ++m_halfBits;
}

qint64 ImageIds::idOf(qint64 number) const
{
    const quint64 mask = (quint64(1) << m_halfBits) - 1;
    quint64 left = quint64(number) >> m_halfBits;
    quint64 right = quint64(number) & mask;
    for (int round = 0; round < rounds; ++round) {
        const quint64 mixed = left ^ roundKey(round, right, mask);
        left = right;
        right = mixed;
    }
    return qint64((left << m_halfBits) | right) + 1;
}

std::optional<qint64> ImageIds::numberOf(qint64 id) const
{
    if (id < 1 || id > (qint64(1) << (2 * m_halfBits)))
        return std::nullopt;
    const quint64 mask = (quint64(1) << m_halfBits) - 1;
    quint64 left = quint64(id - 1) >> m_halfBits;
    quint64 right = quint64(id - 1) & mask;
    for (int round = rounds - 1; round >= 0; --round) {
        const quint64 mixed = right ^ roundKey(round, left, mask);
        right = left;
        left = mixed;
    }
    const qint64 number = qint64((left << m_halfBits) | right);
    return number < m_count ? std::optional<qint64>(number) : std::nullopt;
}

} // namespace Simulator
