#pragma once

#include <QDateTime>
#include <QString>

#include <optional>

/**
 * What typed and pasted characters mean for a UTC time shown as "2024-05-01 12:00:07".
 *
 * A section that is full leads on to the next one; a separator typed there as well changes nothing.
 * A whole stamp, "2024-05-01 12:00:07", "2024-05-01T12:00:07Z" or "20240501120007", is understood
 * wherever the cursor stood when its first digit was typed.
 */
namespace UtcTyping {

/// The parts of a shown time, from left to right.
enum Section { Year, Month, Day, Hour, Minute, Second };

/// What is typed from the first key until the cursor is moved or the field is left.
struct Run
{
    QDateTime before;     ///< the time until then, UTC; sections that are not typed keep it
    Section start = Year; ///< where the cursor stood
    QString keys;         ///< characters for which isKey() is true; none: the section was emptied
};

/// What a run means.
struct Reading
{
    QDateTime time;          ///< UTC; invalid when what was typed is not a time
    bool isFinished = false; ///< false while a section is not yet a number in its range
    QString text;            ///< to be shown: the digits of the section being typed as they are
    Section last = Year;     ///< the section that the last key went to
    int cursor = 0;          ///< position in the text
    int selected = 0;        ///< characters after the cursor that the next digit replaces
};

/// Whether a time can be typed with @p character: a digit or a separator.
bool isKey(QChar character);

/// The section at @p position of a shown time; a position after a section's last digit is its own.
Section sectionAt(int position);
/// Where the section begins in a shown time.
int positionOf(Section section);

Reading read(const Run &run);

/**
 * Reads pasted text: a stamp in any form that can be typed or that UtcText::fromText() takes, a
 * date alone (the time of day stays), or hours and minutes alone (the date stays).
 *
 * Without a zone the text is UTC. Seconds that are left out are 0.
 *
 * @return nothing when the text is something else
 */
std::optional<QDateTime> fromPasted(const QString &text, const QDateTime &before);

} // namespace UtcTyping
