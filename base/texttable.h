#pragma once

#include <QStringList>
#include <QVector>

namespace TextTable {

/**
 * Rows of cells as lines of aligned columns, with the first row underlined as the heading.
 *
 * The first column is aligned to the left, all others, which hold numbers, to the right.
 */
QString format(const QVector<QStringList> &rows);

} // namespace TextTable
