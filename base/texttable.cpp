#include "base/texttable.h"

#include <algorithm>

namespace {

QVector<int> columnWidths(const QVector<QStringList> &rows)
{
    QVector<int> widths;
    for (const QStringList &row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (int column = 0; column < row.size(); ++column)
            widths[column] = std::max(widths.at(column), row.at(column).size());
    }
    return widths;
}

QString formatRow(const QStringList &row, const QVector<int> &widths)
{
    QString line;
    for (int column = 0; column < row.size(); ++column) {
        const int width = widths.at(column);
        line += column == 0 ? row.at(column).leftJustified(width)
                            : QStringLiteral("  ") + row.at(column).rightJustified(width);
    }
    return line + QLatin1Char('\n');
}

} // namespace

QString TextTable::format(const QVector<QStringList> &rows)
{
    const QVector<int> widths = columnWidths(rows);
    QString text;
    for (const QStringList &row : rows) {
        const QString line = formatRow(row, widths);
        const bool isHeading = text.isEmpty();
        text += line;
        if (isHeading)
            text += QString(line.size() - 1, QLatin1Char('-')) + QLatin1Char('\n');
    }
    return text;
}
