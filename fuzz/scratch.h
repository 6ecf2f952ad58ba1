#pragma once

#include <QByteArray>
#include <QString>

#include <cstddef>
#include <cstdint>

class QJsonObject;

/// What the programs of this folder share, including an application object without a screen.
namespace Scratch {

QByteArray bytes(const uint8_t *data, std::size_t size);

/// Path of @p name in a folder of this process, which lies in memory where there is such a place.
QString path(const QString &name);

/// Writes a file into that folder; its path.
QString write(const QString &name, const QByteArray &content);

/// Ends the program, and with it the search, unless @p holds.
void require(bool holds, const char *what);

} // namespace Scratch
