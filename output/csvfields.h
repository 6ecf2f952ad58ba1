#pragma once

#include <QString>
#include <QStringView>
#include <QVector>

/**
 * The fields of one line of comma-separated text, without their quotes.
 *
 * Reuse one object for many lines: it keeps its memory, so a line costs no allocation.
 */
class CsvFields final
{
public:
    /// @p value between double quotes, its own double quotes doubled.
    static QString quote(const QString &value);

    /**
     * Takes the fields of @p line, replacing those of the line before.
     *
     * A double quote opens or closes a passage in which commas are text, anywhere in a field; a
     * doubled one inside such a passage stands for itself. A passage that is never closed ends with
     * the line. Nothing is trimmed, and an empty line has one empty field.
     */
    void split(QStringView line);

    int count() const { return m_ends.size(); }
    /// Empty when the line has no such field; valid until the next split().
    QStringRef at(int index) const;

private:
    QString m_text;      // the fields, one after the other
    QVector<int> m_ends; // where each of them ends in it
};
