#include "simulator/service/connection.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace Simulator {

namespace {

thread_local Connection *connectionOfThread = nullptr; // not owned

/// True when one of @p events, or the end of the connection, comes in time; -1 waits for ever.
short waitFor(int socket, short events, int milliseconds)
{
    pollfd waiting{socket, events, 0};
    return poll(&waiting, 1, milliseconds) > 0 ? waiting.revents : short(0);
}

void describe(const sockaddr_in &address, std::string &ip, int &port)
{
    char text[INET_ADDRSTRLEN] = {};
    inet_ntop(AF_INET, &address.sin_addr, text, sizeof text);
    ip = text;
    port = ntohs(address.sin_port);
}

} // namespace

Connection::Connection(int socket, SSL_CTX *tls) : m_socket(socket)
{
    const int on = 1; // an answer of two writes must not wait for the peer's acknowledgement
    setsockopt(m_socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    if (tls) {
        m_tls.reset(SSL_new(tls));
        SSL_set_fd(m_tls.get(), m_socket);
    }
    connectionOfThread = this;
}

Connection::~Connection()
{
    connectionOfThread = nullptr;
    if (m_tls && !m_isBroken)
        SSL_shutdown(m_tls.get());
    m_tls.reset();
    close(m_socket);
}

Connection *Connection::current()
{
    return connectionOfThread;
}

bool Connection::shakeHands()
{
    if (!m_tls || SSL_accept(m_tls.get()) == 1)
        return true;
    m_isBroken = true; // a failed handshake must not be shut down
    return false;
}

bool Connection::waitForRequest(int milliseconds) const
{
    if (m_tls && SSL_pending(m_tls.get()) > 0)
        return true;
    return (waitFor(m_socket, POLLIN | POLLRDHUP, milliseconds) & POLLIN) != 0;
}

bool Connection::waitUntilClosed(int milliseconds) const
{
    return waitFor(m_socket, POLLRDHUP, milliseconds) != 0;
}

void Connection::breakOff(bool reset)
{
    m_isBroken = true;
    if (!reset)
        return;
    const linger atOnce{1, 0}; // closing then discards what is unsent and resets the connection
    setsockopt(m_socket, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
}

bool Connection::is_readable() const
{
    return (m_tls && SSL_pending(m_tls.get()) > 0) || (waitFor(m_socket, POLLIN, 0) & POLLIN) != 0;
}

bool Connection::is_writable() const
{
    return !m_isBroken;
}

ssize_t Connection::read(char *bytes, size_t count)
{
    if (m_isBroken)
        return -1;
    if (m_tls)
        return SSL_read(m_tls.get(), bytes, int(count));
    return recv(m_socket, bytes, count, 0);
}

ssize_t Connection::write(const char *bytes, size_t count)
{
    if (m_isBroken)
        return -1;
    if (m_tls)
        return SSL_write(m_tls.get(), bytes, int(count));
    return send(m_socket, bytes, count, MSG_NOSIGNAL);
}

void Connection::get_remote_ip_and_port(std::string &ip, int &port) const
{
    sockaddr_in address{};
    socklen_t length = sizeof address;
    if (getpeername(m_socket, reinterpret_cast<sockaddr *>(&address), &length) == 0)
        describe(address, ip, port);
}

void Connection::get_local_ip_and_port(std::string &ip, int &port) const
{
    sockaddr_in address{};
    socklen_t length = sizeof address;
    if (getsockname(m_socket, reinterpret_cast<sockaddr *>(&address), &length) == 0)
        describe(address, ip, port);
}

} // namespace Simulator
