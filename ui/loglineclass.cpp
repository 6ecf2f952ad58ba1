#include "ui/loglineclass.h"

namespace {

using LogLineClass::LineClass;

enum class Place { Start, Anywhere, Whole };

struct Rule
{
    LineClass lineClass;
    Place place;
    QLatin1String word;
};

// The first rule that fits decides: the order tells a warning about a failure from the failure.
constexpr Rule rules[] = {
    {LineClass::Error, Place::Start, QLatin1String("ERROR")},
    {LineClass::Error, Place::Start, QLatin1String("FFMPEG ERROR")},
    {LineClass::Error, Place::Anywhere, QLatin1String(" DOWNLOAD_ERROR")},
    {LineClass::Error, Place::Anywhere, QLatin1String(" LOOKUP_ERROR")},
    {LineClass::Warning, Place::Start, QLatin1String("WARNING")},
    {LineClass::Warning, Place::Start, QLatin1String("REJECT")},
    {LineClass::Warning, Place::Start, QLatin1String("DUPLICATE")},
    {LineClass::Warning, Place::Start, QLatin1String("SUSPICIOUS")},
    {LineClass::Warning, Place::Anywhere, QLatin1String(" SKIPPED")},
    {LineClass::Warning, Place::Anywhere, QLatin1String("UNAVAILABLE")},
    {LineClass::Error, Place::Anywhere, QLatin1String("ERROR")},
    {LineClass::Error, Place::Anywhere, QLatin1String("FAILED")},
    {LineClass::Error, Place::Anywhere, QLatin1String("FAILURE")},
    {LineClass::Error, Place::Anywhere, QLatin1String("CORRUPT")},
    {LineClass::Error, Place::Anywhere, QLatin1String("INVALID DATA")},
    {LineClass::Success, Place::Start, QLatin1String("OK ")},
    {LineClass::Success, Place::Start, QLatin1String("VIDEO COMPLETED")},
    {LineClass::Success, Place::Whole, QLatin1String("SESSION COMPLETED.")},
    {LineClass::Success, Place::Anywhere, QLatin1String("CATALOG UPDATED")},
    {LineClass::Success, Place::Anywhere, QLatin1String(" DEFINITIONS SAVED")},
    {LineClass::Info, Place::Start, QLatin1String("CURL:")},
    {LineClass::Info, Place::Start, QLatin1String("FFMPEG:")},
};

bool fits(const Rule &rule, const QString &line)
{
    switch (rule.place) {
    case Place::Start:
        return line.startsWith(rule.word);
    case Place::Anywhere:
        return line.contains(rule.word);
    case Place::Whole:
        return line == rule.word;
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
