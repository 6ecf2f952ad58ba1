#pragma once

#include <QtGlobal>

#include <optional>

namespace Simulator {

/**
 * Gives numbers 0 .. count - 1 ids that look as if drawn at random, and finds the number again.
 *
 * Backfills have left the ids of the real archive in no order of time. Here a Feistel network, a
 * permutation by construction, does it without a table.
 */
class ImageIds
{
public:
    explicit ImageIds(qint64 count);

    /// 1 or more.
    qint64 idOf(qint64 number) const;
    /// None for an id that was never given.
    std::optional<qint64> numberOf(qint64 id) const;

private:
    qint64 m_count;
    int m_halfBits;
};

} // namespace Simulator
