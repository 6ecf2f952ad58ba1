#include "simulator/service/server.h"

#include "simulator/service/certificates.h"
#include "simulator/service/httpservice.h"

#include <QTemporaryDir>
#include <QThread>

namespace Simulator {

class Server::Private
{
public:
    Private(std::shared_ptr<const Archive> archive, Transport usedTransport)
        : service(std::move(archive)), transport(usedTransport)
    {
        service.moveToThread(&thread);
    }

    bool prepare(QString *errorText);

    HttpService service;
    Transport transport;
    QTemporaryDir folder; // of the certificates
    QThread thread;       // serves while it runs
    int port = 0;
};

/// An encrypted service is given its certificate before it starts.
bool Server::Private::prepare(QString *errorText)
{
    if (transport == Transport::Http)
        return true;
    if (!makeCertificates(transport, folder.path(), errorText))
        return false;
    service.encrypt(folder.filePath(QStringLiteral("host.pem")),
                    folder.filePath(QStringLiteral("host.key")));
    return true;
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
    if (!d->prepare(errorText))
        return false;
    d->thread.start();
    // Sockets belong to the thread that opens them.
    QMetaObject::invokeMethod(
        &d->service, [this, port] { return d->service.listenOn(port); },
        Qt::BlockingQueuedConnection, &d->port);
    if (d->port > 0)
        return true;
    stop();
    if (errorText)
        *errorText = QStringLiteral("Cannot listen on port %1 of 127.0.0.1.").arg(port);
    return false;
}

void Server::stop()
{
    if (!d->thread.isRunning())
        return;
    QMetaObject::invokeMethod(
        &d->service, [this] { d->service.breakOff(); }, Qt::BlockingQueuedConnection);
    d->thread.quit();
    d->thread.wait();
    d->port = 0;
}

void Server::setJournal(std::function<void(const QByteArray &)> note)
{
    d->service.setJournal(std::move(note));
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
    d->service.faults().add(fault);
}

void Server::clearFaults()
{
    d->service.faults().clear();
}

int Server::requestCount(Operation operation) const
{
    return d->service.faults().count(operation);
}

void Server::clearJournal()
{
    d->service.faults().clearCounts();
}

} // namespace Simulator
