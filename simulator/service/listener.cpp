#include "simulator/service/listener.h"

#include <sys/socket.h>
#include <unistd.h>

namespace Simulator {

namespace {

constexpr size_t threadCount = 32;
constexpr int backlog = 128; // the library's own 5 makes a sixth caller wait a second
constexpr int idleMs = 5000;
constexpr size_t requestsPerConnection = 10000;

} // namespace

Listener::Listener(Handler handler, TlsContext tls) : m_tls(std::move(tls))
{
    new_task_queue = [] { return new httplib::ThreadPool(threadCount); };
    set_keep_alive_max_count(requestsPerConnection);
    set_socket_options([](socket_t socket) {
        // A port must be free again at once, but never shared with another process.
        const int on = 1;
        setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    });
    Get(".*", std::move(handler));
}

Listener::~Listener()
{
    end();
}

int Listener::listenOn(int port)
{
    const std::string host = "127.0.0.1";
    if (port == 0)
        port = bind_to_any_port(host);
    else if (!bind_to_port(host, port))
        port = -1;
    if (port < 0)
        return -1;
    ::listen(svr_sock_, backlog);
    m_thread = std::thread([this] { listen_after_bind(); });
    while (!is_running())
        std::this_thread::yield(); // the library's stop() does nothing before that
    return port;
}

void Listener::end()
{
    if (!m_thread.joinable())
        return;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_isEnding = true;
        for (const int socket : m_sockets)
            ::shutdown(socket, SHUT_RDWR);
    }
    stop();
    m_thread.join();
}

bool Listener::enter(int socket)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_isEnding)
        m_sockets.insert(socket);
    return !m_isEnding;
}

void Listener::leave(int socket)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_sockets.erase(socket);
}

bool Listener::process_and_close_socket(socket_t socket)
{
    if (!enter(socket)) {
        close(socket);
        return false;
    }
    bool ok = false;
    {
        Connection connection(socket, m_tls.get());
        bool closed = !connection.shakeHands();
        size_t left = requestsPerConnection;
        while (!closed && left > 0 && connection.waitForRequest(idleMs)) {
            --left;
            ok = process_request(connection, left == 0, closed, nullptr);
            closed = closed || !ok || connection.isBroken();
        }
        leave(socket); // before the number can be given to another connection
    }
    return ok;
}

} // namespace Simulator
