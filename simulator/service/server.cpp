#include "simulator/service/server.h"

#include "simulator/service/certificates.h"
#include "simulator/service/httpservice.h"
#include "simulator/service/listener.h"

#include <QFile>
#include <QTemporaryDir>

namespace Simulator {

namespace {

Identity identityFor(Transport transport, const Identity &authority)
{
    const QByteArray loopback = QByteArrayLiteral("IP:127.0.0.1,DNS:localhost");
    switch (transport) {
    case Transport::HttpsSelfSigned:
        return makeHostIdentity("127.0.0.1", loopback, nullptr);
    case Transport::HttpsForeignHost:
        return makeHostIdentity("helioviewer.example", "DNS:helioviewer.example", &authority);
    case Transport::HttpsTrusted:
        return makeHostIdentity("127.0.0.1", loopback, &authority);
    case Transport::Http:
        break;
    }
    return {};
}

TlsContext tlsContextOf(const Identity &identity)
{
    TlsContext context(SSL_CTX_new(TLS_server_method()));
    SSL_CTX_use_certificate(context.get(), identity.certificate.get());
    SSL_CTX_use_PrivateKey(context.get(), identity.key.get());
    return context;
}

} // namespace

class Server::Private
{
public:
    Private(std::shared_ptr<const Archive> archive, Transport transport);

    bool writeAuthority();

    HttpService service;
    Transport transport;
    QTemporaryDir folder;
    Identity authority; // empty for Http
    Identity identity;
    std::unique_ptr<Listener> listener; // null unless running
    int port = 0;
};

Server::Private::Private(std::shared_ptr<const Archive> archive, Transport usedTransport)
    : service(std::move(archive)), transport(usedTransport)
{
    if (transport == Transport::Http)
        return;
    authority = makeAuthority();
    identity = identityFor(transport, authority);
}

bool Server::Private::writeAuthority()
{
    if (transport == Transport::Http)
        return true;
    QFile file(folder.filePath(QStringLiteral("authority.pem")));
    const QByteArray pem = pemOf(authority);
    return file.open(QIODevice::WriteOnly) && file.write(pem) == pem.size();
}

Server::Server(std::shared_ptr<const Archive> archive, Transport transport)
    : d(std::make_unique<Private>(std::move(archive), transport))
{}

Server::~Server()
{
    stop();
}

bool Server::start(QString *errorText, int port)
{
    stop();
    const auto fail = [errorText](const QString &text) {
        if (errorText)
            *errorText = text;
        return false;
    };
    if (!d->writeAuthority())
        return fail(QStringLiteral("Cannot write the certificate of the authority."));
    HttpService *service = &d->service;
    d->listener = std::make_unique<Listener>(
        [service](const httplib::Request &request, httplib::Response &response) {
            service->serve(request, response);
        },
        d->transport == Transport::Http ? nullptr : tlsContextOf(d->identity));
    d->port = d->listener->listenOn(port);
    if (d->port > 0)
        return true;
    stop();
    return fail(QStringLiteral("Cannot listen on port %1 of 127.0.0.1.").arg(port));
}

void Server::stop()
{
    d->listener.reset();
    d->port = 0;
}

void Server::setCacheLimit(qint64 bytes)
{
    d->service.pictures().setLimit(bytes);
}

QString Server::baseUrl() const
{
    const QString scheme =
        d->transport == Transport::Http ? QStringLiteral("http") : QStringLiteral("https");
    return QStringLiteral("%1://127.0.0.1:%2/v2").arg(scheme, QString::number(d->port));
}

int Server::port() const
{
    return d->port;
}

QString Server::caCertificateFile() const
{
    return d->transport == Transport::Http ? QString()
                                           : d->folder.filePath(QStringLiteral("authority.pem"));
}

void Server::addFault(const Fault &fault)
{
    d->service.journal().addFault(fault);
}

void Server::clearFaults()
{
    d->service.journal().clearFaults();
}

QVector<JournalEntry> Server::journal() const
{
    return d->service.journal().entries();
}

int Server::requestCount(Operation operation) const
{
    return d->service.journal().count(operation);
}

void Server::clearJournal()
{
    d->service.journal().clear();
}

} // namespace Simulator
