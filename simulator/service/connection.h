#pragma once

#include <httplib.h>
#include <openssl/ssl.h>

#include <memory>

namespace Simulator {

struct SslDeleter
{
    void operator()(SSL *ssl) const { SSL_free(ssl); }
};

/**
 * One accepted connection: the stream that the HTTP library reads and writes, plain or encrypted.
 *
 * It can be made to break, which the library has no word for.
 */
class Connection : public httplib::Stream
{
public:
    /// Takes @p socket over; encrypts when there is a context.
    Connection(int socket, SSL_CTX *tls);
    ~Connection() override;

    Connection(const Connection &) = delete;
    Connection &operator=(const Connection &) = delete;

    /// The connection that the calling thread serves, or null.
    static Connection *current();

    /// False when the peer refuses our certificate or speaks no TLS.
    bool shakeHands();
    /// Waits for the next request; false when the peer goes or stays away for @p milliseconds.
    bool waitForRequest(int milliseconds) const;
    /// True as soon as the peer, or the end of the service, closes the connection.
    bool waitUntilClosed(int milliseconds) const;
    /// Nothing is sent any more; @p reset tells the peer that the rest is lost.
    void breakOff(bool reset);
    bool isBroken() const { return m_isBroken; }

    bool is_readable() const override;
    bool is_writable() const override;
    ssize_t read(char *bytes, size_t count) override;
    ssize_t write(const char *bytes, size_t count) override;
    void get_remote_ip_and_port(std::string &ip, int &port) const override;
    void get_local_ip_and_port(std::string &ip, int &port) const override;
    socket_t socket() const override { return m_socket; }

private:
    int m_socket;
    std::unique_ptr<SSL, SslDeleter> m_tls;
    bool m_isBroken = false;
};

} // namespace Simulator
