#pragma once

#include <QByteArray>

namespace Simulator {

struct IndexedPicture;

/// An 8-bit, interlaced (Adam7) palette PNG, as the service's renderer writes them.
QByteArray encodePng(const IndexedPicture &picture);

} // namespace Simulator
