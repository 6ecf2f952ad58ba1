#include "ui/utctyping.h"

#include "base/utctext.h"

#include <QRegularExpression>
#include <QVector>

#include <algorithm>

using UtcTyping::Reading;
using UtcTyping::Run;
using UtcTyping::Section;

namespace {

constexpr int sectionCount = 6;
constexpr int stampDigits = 14;

struct Layout
{
    int position;
    int width;
    int lowest;
    int highest;
    const char *shown;      // what follows in a shown time
    const char *separators; // what may be typed to end the section
};

constexpr Layout layouts[sectionCount] = {
    {0, 4, 1, 9999, "-", "-/."}, {5, 2, 1, 12, "-", "-/."}, {8, 2, 1, 31, " ", " T_"},
    {11, 2, 0, 23, ":", ":"},    {14, 2, 0, 59, ":", ":"},  {17, 2, 0, 59, "", ""},
};

bool isDigit(QChar character)
{
    return character >= QLatin1Char('0') && character <= QLatin1Char('9');
}

bool isDigits(const QString &text)
{
    return std::all_of(text.begin(), text.end(), isDigit);
}

bool ends(int section, QChar key)
{
    return QLatin1String(layouts[section].separators).contains(key.toUpper());
}

/// Typed digits, each in its section.
struct Filled
{
    QVector<QString> digits = QVector<QString>(sectionCount);
    int last = UtcTyping::Year;

    bool isFull(int section) const { return digits[section].size() >= layouts[section].width; }
};

/**
 * Deals the keys out to the sections from @p start on; nothing when they do not fit.
 *
 * @param overwrites  whether digits beyond the last section begin that section anew
 */
std::optional<Filled> fill(const QString &keys, int start, bool overwrites = false)
{
    Filled filled;
    filled.last = start;
    for (const QChar key : keys) {
        if (isDigit(key)) {
            if (filled.isFull(filled.last) && filled.last < UtcTyping::Second)
                ++filled.last;
            else if (filled.isFull(filled.last) && !overwrites)
                return std::nullopt;
            else if (filled.isFull(filled.last))
                filled.digits[filled.last].clear();
            filled.digits[filled.last] += key;
        } else if (ends(filled.last, key)) {
            ++filled.last;
        } else if (key != QLatin1Char(' ') || !filled.digits[filled.last].isEmpty()) {
            return std::nullopt; // a second blank does no harm
        }
    }
    return filled;
}

/// Whether every section that is done holds a number of its range; when @p isOver all are done.
bool isInRange(const Filled &filled, bool isOver = false)
{
    for (int section = 0; section < sectionCount; ++section) {
        const QString &digits = filled.digits[section];
        const bool isDone = isOver || section != filled.last || filled.isFull(section);
        if (digits.isEmpty() || !isDone)
            continue;
        const int number = digits.toInt();
        if (number < layouts[section].lowest || number > layouts[section].highest ||
            (section == UtcTyping::Year && !filled.isFull(section)))
            return false;
    }
    return true;
}

using Numbers = QVector<int>; // one for each section

/// The numbers of all sections; those of @p before where none are typed yet.
Numbers numbersOf(const Filled &filled, const QDateTime &before)
{
    const QDate date = before.date();
    const QTime time = before.time();
    Numbers numbers = {date.year(), date.month(),  date.day(),
                       time.hour(), time.minute(), time.second()};
    for (int section = 0; section < sectionCount; ++section) {
        const int typed = filled.digits[section].toInt(); // 0 when empty
        const bool counts = section == UtcTyping::Year ? filled.isFull(section)
                                                       : !filled.digits[section].isEmpty() &&
                                                             typed >= layouts[section].lowest;
        if (counts)
            numbers[section] = typed;
    }
    // The old day may be none of the new month.
    const QDate month(numbers[UtcTyping::Year], numbers[UtcTyping::Month], 1);
    if (filled.digits[UtcTyping::Day].isEmpty() && month.isValid())
        numbers[UtcTyping::Day] = std::min(numbers[UtcTyping::Day], month.daysInMonth());
    return numbers;
}

QDateTime timeOf(const Filled &filled, const QDateTime &before)
{
    if (!isInRange(filled))
        return {};
    const Numbers numbers = numbersOf(filled, before);
    const QDate date(numbers[UtcTyping::Year], numbers[UtcTyping::Month], numbers[UtcTyping::Day]);
    const QTime time(numbers[UtcTyping::Hour], numbers[UtcTyping::Minute],
                     numbers[UtcTyping::Second]);
    return date.isValid() ? QDateTime(date, time, Qt::UTC) : QDateTime();
}

QString padded(const QString &digits, int section)
{
    return digits.rightJustified(layouts[section].width, QLatin1Char('0'));
}

Reading readingOf(const Filled &filled, const Run &run)
{
    Reading reading;
    reading.time = timeOf(filled, run.before);
    reading.isFinished = isInRange(filled, true);
    reading.last = static_cast<Section>(filled.last);
    const bool leadsOn = filled.isFull(filled.last) && filled.last < UtcTyping::Second;
    const int next = leadsOn ? filled.last + 1 : filled.last;
    const Numbers numbers = numbersOf(filled, run.before);
    for (int section = 0; section < sectionCount; ++section) {
        QString digits = filled.digits[section];
        if (digits.isEmpty() && !(run.keys.isEmpty() && section == run.start))
            digits = padded(QString::number(numbers[section]), section);
        else if (section != filled.last)
            digits = padded(digits, section);
        if (section == next) {
            reading.selected = filled.digits[section].isEmpty() ? digits.size() : 0;
            reading.cursor = reading.text.size() + filled.digits[section].size();
        }
        reading.text += digits + QLatin1String(layouts[section].shown);
    }
    return reading;
}

/// What cannot be dealt out at all is shown as it was typed.
Reading unreadable(const Run &run)
{
    Reading reading;
    reading.text = run.keys;
    reading.last = run.start;
    reading.cursor = run.keys.size();
    return reading;
}

/// Whether the keys, which mean nothing where they were typed, may be the beginning of a stamp.
bool beginsLikeStamp(const QString &keys)
{
    static const QRegularExpression pattern(QStringLiteral("^(1|2|19|20)$|^(19|20)\\d|^\\d{4}\\D"));
    return pattern.match(keys).hasMatch();
}

/// Removes a date from the beginning of @p text; an invalid one when there is none.
QDate takeDate(QString *text)
{
    static const QRegularExpression form(
        QStringLiteral("^(\\d{4})([-/.]?)(\\d\\d)\\2(\\d\\d)(?:[ Tt_]+|(?=\\d)|$)"));
    const QRegularExpressionMatch match = form.match(*text);
    if (!match.hasMatch())
        return {};
    text->remove(0, match.capturedLength());
    return {match.captured(1).toInt(), match.captured(3).toInt(), match.captured(4).toInt()};
}

/// The time of day that is all of @p text; seconds may be left out.
QTime timeFrom(const QString &text)
{
    static const QRegularExpression form(
        QStringLiteral("^(\\d\\d?):(\\d\\d)(?::(\\d\\d)(?:\\.\\d+)?)?$|"
                       "^(\\d\\d)(\\d\\d)(\\d\\d)?$"));
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        return {};
    const int first = match.capturedLength(1) > 0 ? 1 : 4;
    return {match.captured(first).toInt(), match.captured(first + 1).toInt(),
            match.captured(first + 2).toInt()};
}

} // namespace

bool UtcTyping::isKey(QChar character)
{
    return isDigit(character) || QLatin1String("-/.: _TZ").contains(character.toUpper());
}

Section UtcTyping::sectionAt(int position)
{
    int section = Second;
    while (position < layouts[section].position)
        --section;
    return static_cast<Section>(section);
}

int UtcTyping::positionOf(Section section)
{
    return layouts[section].position;
}

Reading UtcTyping::read(const Run &run)
{
    QString keys = run.keys;
    if (keys.endsWith(QLatin1Char('Z'), Qt::CaseInsensitive))
        keys.chop(1);
    const bool onlyDigits = isDigits(keys);
    if (onlyDigits && keys.size() == stampDigits) {
        const std::optional<Filled> stamp = fill(keys, Year);
        if (stamp && timeOf(*stamp, run.before).isValid())
            return readingOf(*stamp, run);
    }

    const std::optional<Filled> here = fill(keys, run.start, onlyDigits);
    if (here && isInRange(*here))
        return readingOf(*here, run);
    const std::optional<Filled> timeOfDay =
        keys.contains(QLatin1Char(':')) ? fill(keys, Hour) : std::nullopt;
    if (timeOfDay && isInRange(*timeOfDay))
        return readingOf(*timeOfDay, run);
    const std::optional<Filled> stamp = beginsLikeStamp(keys) ? fill(keys, Year) : std::nullopt;
    for (const std::optional<Filled> &filled : {stamp, here, timeOfDay}) {
        if (filled)
            return readingOf(*filled, run);
    }
    return unreadable(run);
}

std::optional<QDateTime> UtcTyping::fromPasted(const QString &text, const QDateTime &before)
{
    static const QRegularExpression utc(QStringLiteral(" ?(Z|UTC)$"),
                                        QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression zone(QStringLiteral(":.*[+-]\\d\\d(:?\\d\\d)?$"));
    const QString plain = text.simplified();
    if (zone.match(plain).hasMatch()) {
        const QDateTime time = UtcText::fromText(plain);
        return time.isValid() ? std::make_optional(UtcText::wholeSecond(time)) : std::nullopt;
    }
    QString rest = QString(plain).remove(utc);
    const bool isTimeAlone = rest.indexOf(QLatin1Char(':')) <= 2 && rest.contains(QLatin1Char(':'));
    const QDate date = isTimeAlone ? before.date() : takeDate(&rest);
    const QTime time = rest.isEmpty() ? before.time() : timeFrom(rest);
    if (!date.isValid() || !time.isValid() || plain.isEmpty())
        return std::nullopt;
    return QDateTime(date, time, Qt::UTC);
}
