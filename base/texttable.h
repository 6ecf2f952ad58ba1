#pragma once

#include <QStringList>
#include <QVector>

namespace TextTable {

/**
 * Rows of cells as lines of equal columns, the first row underlined as their heading.
 *
 * The first column is aligned to the left, all others, which hold numbers, to the right.
 */
QString format(const QVector<QStringList> &rows);

} // namespace TextTable
