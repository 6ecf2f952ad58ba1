#pragma once

#include "simulator/service/connection.h"

#include <functional>
#include <memory>
#include <mutex>
#include <set>
#include <thread>

namespace Simulator {

struct TlsContextDeleter
{
    void operator()(SSL_CTX *context) const { SSL_CTX_free(context); }
};
using TlsContext = std::unique_ptr<SSL_CTX, TlsContextDeleter>;

/**
 * The HTTP library's server on a loopback port, with connections of ours.
 *
 * The library would wait at its end for whoever is still connected; this one breaks them.
 */
class Listener : public httplib::Server
{
public:
    using Handler = std::function<void(const httplib::Request &, httplib::Response &)>;

    /// Every GET goes to @p handler; without @p tls it is plain HTTP.
    Listener(Handler handler, TlsContext tls);
    ~Listener() override;

    /// Binds to 127.0.0.1 and serves; @p port 0 takes a free one. Returns the port, or -1.
    int listenOn(int port);
    /// Breaks all connections and waits for the threads.
    void end();

private:
    bool process_and_close_socket(socket_t socket) override;
    bool enter(int socket);
    void leave(int socket);

    TlsContext m_tls;
    std::mutex m_mutex;
    std::set<int> m_sockets; // open ones, guarded
    bool m_isEnding = false; // guarded
    std::thread m_thread;
};

} // namespace Simulator
