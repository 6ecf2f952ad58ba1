#pragma once

#include "simulator/service/fault.h"

#include <QString>

#include <functional>
#include <memory>

namespace Simulator {

class Archive;

enum class Transport {
    Http,
    HttpsSelfSigned,  ///< a certificate that no authority signed
    HttpsForeignHost, ///< signed by caCertificateFile(), but for another host
    HttpsTrusted,     ///< signed by caCertificateFile() for the loopback address
};

/**
 * A Helioviewer API v2 service on a free loopback port, served by a thread of its own.
 *
 * Faults and counts may be asked for from any thread while it runs.
 */
class Server final
{
public:
    explicit Server(std::shared_ptr<const Archive> archive, Transport transport = Transport::Http);
    ~Server(); ///< stops

    /// Listens and serves; @p port 0 picks a free one. False with a reason when it cannot.
    bool start(QString *errorText = nullptr, int port = 0);
    /// Breaks open connections, hanging ones too; from then on new ones are refused. A stopped
    /// server may be started again, on the same port when it is named.
    void stop();

    /// Before start(): @p note is called with the path and query of each request as it comes, in
    /// the server's thread.
    void setJournal(std::function<void(const QByteArray &)> note);

    QString baseUrl() const; ///< as "network/apiBase" wants it, without trailing slash
    int port() const;
    QString caCertificateFile() const; ///< PEM of the authority; empty for Http

    void addFault(const Fault &fault);
    void clearFaults();

    /// How many requests there were since clearJournal().
    int requestCount(Operation operation) const;
    void clearJournal();

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Simulator
