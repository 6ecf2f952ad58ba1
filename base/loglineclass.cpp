#include "base/loglineclass.h"

namespace {

using LogLineClass::LineClass;

enum class Place { Start, Anywhere, Whole };

struct Rule
{
    LineClass lineClass;
    Place place;
    const char *word;
};

// The first rule that fits decides: the order tells a warning about a failure from the failure.
constexpr Rule rules[] = {
    {LineClass::Error, Place::Start, "ERROR"},
    {LineClass::Error, Place::Start, "FFMPEG ERROR"},
    {LineClass::Error, Place::Anywhere, " DOWNLOAD_ERROR"},
    {LineClass::Error, Place::Anywhere, " LOOKUP_ERROR"},
    {LineClass::Warning, Place::Start, "WARNING"},
    {LineClass::Warning, Place::Start, "REJECT"},
    {LineClass::Warning, Place::Start, "DUPLICATE"},
    {LineClass::Warning, Place::Start, "SUSPICIOUS"},
    {LineClass::Warning, Place::Anywhere, " SKIPPED"},
    {LineClass::Warning, Place::Anywhere, "UNAVAILABLE"},
    {LineClass::Error, Place::Anywhere, "ERROR"},
    {LineClass::Error, Place::Anywhere, "FAILED"},
    {LineClass::Error, Place::Anywhere, "FAILURE"},
    {LineClass::Error, Place::Anywhere, "CORRUPT"},
    {LineClass::Error, Place::Anywhere, "INVALID DATA"},
    {LineClass::Success, Place::Start, "OK "},
    {LineClass::Success, Place::Start, "VIDEO COMPLETED"},
    {LineClass::Success, Place::Whole, "SESSION COMPLETED."},
    {LineClass::Success, Place::Anywhere, "CATALOG UPDATED"},
    {LineClass::Success, Place::Anywhere, " DEFINITIONS SAVED"},
    {LineClass::Info, Place::Start, "CURL:"},
    {LineClass::Info, Place::Start, "FFMPEG:"},
};

bool fits(const Rule &rule, const QString &line)
{
    const QLatin1String word(rule.word);
    switch (rule.place) {
    case Place::Start:
        return line.startsWith(word);
    case Place::Anywhere:
        return line.contains(word);
    case Place::Whole:
        return line == word;
    }
    return false;
}

} // namespace

LogLineClass::LineClass LogLineClass::classify(const QString &text)
{
    const QString line = text.trimmed().toUpper();
    for (const Rule &rule : rules) {
        if (fits(rule, line))
            return rule.lineClass;
    }
    return LineClass::Plain;
}

std::optional<QRgb> LogLineClass::colour(LineClass lineClass)
{
    switch (lineClass) {
    case LineClass::Plain:
        return std::nullopt;
    case LineClass::Info:
        return qRgb(105, 175, 235);
    case LineClass::Success:
        return qRgb(90, 220, 115);
    case LineClass::Warning:
        return qRgb(255, 190, 70);
    case LineClass::Error:
        return qRgb(255, 90, 90);
    }
    return std::nullopt;
}

bool LogLineClass::isBold(LineClass lineClass)
{
    return lineClass == LineClass::Warning || lineClass == LineClass::Error;
}
