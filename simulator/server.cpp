#include "simulator/server.h"

#include "simulator/archive.h"
#include "simulator/certificates.h"
#include "simulator/faultplan.h"
#include "simulator/faultyanswers.h"
#include "simulator/journal.h"
#include "simulator/listener.h"
#include "simulator/picturestore.h"

#include <QFile>
#include <QTemporaryDir>

namespace Simulator {

namespace {

constexpr int withoutLimit = -1;

struct Endpoint
{
    const char *path;
    Operation operation;
};

constexpr Endpoint endpoints[] = {
    {"/v2/getDataSources/", Operation::GetDataSources},
    {"/v2/getJPX/", Operation::GetJPX},
    {"/v2/getClosestImage/", Operation::GetClosestImage},
    {"/v2/downloadImage/", Operation::DownloadImage},
};

const Endpoint *endpointOf(const std::string &path)
{
    for (const Endpoint &endpoint : endpoints)
        if (path == endpoint.path)
            return &endpoint;
    return nullptr;
}

/// What follows the "?", as it came.
QByteArray rawQuery(const httplib::Request &request)
{
    const size_t mark = request.target.find('?');
    return mark == std::string::npos ? QByteArray()
                                     : QByteArray::fromStdString(request.target.substr(mark + 1));
}

Query queryOf(const httplib::Request &request)
{
    Query query;
    for (const auto &parameter : request.params)
        query.insert(QString::fromStdString(parameter.first),
                     QString::fromStdString(parameter.second));
    return query;
}

void send(const Answer &answer, httplib::Response &response)
{
    response.status = answer.status;
    for (const auto &header : answer.headers)
        response.set_header(header.first.toStdString(), header.second.toStdString());
    response.set_content(answer.body.constData(), size_t(answer.body.size()),
                         answer.contentType.toStdString());
}

/// Declares the whole body, sends half of it and breaks the connection.
void sendHalf(const Answer &answer, httplib::Response &response, bool reset)
{
    send(answer, response);
    response.body.clear();
    response.headers.erase("Content-Type"); // the provider names it again
    const QByteArray half = answer.body.left(answer.body.size() / 2);
    response.set_content_provider(size_t(answer.body.size()), answer.contentType.toStdString(),
                                  [half, reset](size_t, size_t, httplib::DataSink &sink) {
                                      sink.write(half.constData(), size_t(half.size()));
                                      Connection::current()->breakOff(reset);
                                      return false;
                                  });
}

/// Ends the request's entry when it has been served.
class InFlight
{
public:
    explicit InFlight(Journal &journal) : m_journal(journal) {}
    ~InFlight() { m_journal.end(); }

    InFlight(const InFlight &) = delete;
    InFlight &operator=(const InFlight &) = delete;

private:
    Journal &m_journal;
};

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

    void serve(const httplib::Request &request, httplib::Response &response);
    void serveFaulty(const Endpoint &endpoint, const httplib::Request &request,
                     const QVector<Fault> &faults, httplib::Response &response);
    bool writeAuthority();

    std::shared_ptr<const Archive> archive;
    Transport transport;
    PictureStore pictures;
    Journal journal;
    QTemporaryDir folder;
    Identity authority; // empty for Http
    Identity identity;
    std::unique_ptr<Listener> listener; // null unless running
    int port = 0;
};

Server::Private::Private(std::shared_ptr<const Archive> servedArchive, Transport usedTransport)
    : archive(std::move(servedArchive)), transport(usedTransport), pictures(archive)
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

void Server::Private::serve(const httplib::Request &request, httplib::Response &response)
{
    const Endpoint *endpoint = endpointOf(request.path);
    if (!endpoint) {
        const bool isAction = request.path.rfind("/v2/", 0) == 0;
        send(isAction ? pageOfError(QStringLiteral("Unknown action: %1")
                                        .arg(QString::fromStdString(request.path.substr(4))))
                      : answerWithStatus(404),
             response);
        return;
    }
    const InFlight inFlight(journal);
    const QVector<Fault> faults = journal.begin(endpoint->operation, rawQuery(request));
    serveFaulty(*endpoint, request, faults, response);
}

void Server::Private::serveFaulty(const Endpoint &endpoint, const httplib::Request &request,
                                  const QVector<Fault> &faults, httplib::Response &response)
{
    Connection *connection = Connection::current();
    if (const Fault *delay = findFault(faults, FaultKind::Delay))
        connection->waitUntilClosed(delay->value);
    if (findFault(faults, FaultKind::Hang))
        connection->waitUntilClosed(withoutLimit);
    if (findFault(faults, FaultKind::Hang) || findFault(faults, FaultKind::Refuse)) {
        connection->breakOff(false);
        return;
    }
    const Answer answer =
        answerOf(endpoint.operation, *archive, pictures, queryOf(request), faults);
    if (const Fault *fault = findFault(faults, FaultKind::ResetInBody))
        sendHalf(answer, response, fault->value == 0);
    else
        send(answer, response);
    if (answer.status >= 301 && answer.status <= 308)
        response.set_header("Location", request.target); // comes round to where it was
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
    Private *service = d.get();
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
    d->pictures.setLimit(bytes);
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
    d->journal.addFault(fault);
}

void Server::clearFaults()
{
    d->journal.clearFaults();
}

QVector<JournalEntry> Server::journal() const
{
    return d->journal.entries();
}

int Server::requestCount(Operation operation) const
{
    return d->journal.count(operation);
}

void Server::clearJournal()
{
    d->journal.clear();
}

} // namespace Simulator
