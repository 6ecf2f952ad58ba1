#pragma once

#include <QString>

/// "text"_s is a text, as it will be called in Qt 6.
inline QString operator""_s(const char *utf8, std::size_t size)
{
    return QString::fromUtf8(utf8, static_cast<int>(size));
}
