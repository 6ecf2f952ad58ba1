#pragma once

#include <QString>

class Album;

namespace Simulator {
class Server;
}

/// Pictures of the main window, taken while it does real work.
namespace WindowPictures {

/**
 * A first film from the catalog to the finished session.
 *
 * @return folder of the session; empty when the run failed
 */
QString takeFirstFilm(Album &album);

/// A short session with mishaps, so that the log shows a line of every class; its folder likewise.
QString takeLog(Album &album, Simulator::Server &server);

} // namespace WindowPictures
