#include "simulator/service/httpservice.h"

#include "simulator/service/faultyanswers.h"
#include "simulator/service/listener.h"

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

} // namespace

HttpService::HttpService(std::shared_ptr<const Archive> archive)
    : m_archive(std::move(archive)), m_pictures(m_archive)
{}

void HttpService::serve(const httplib::Request &request, httplib::Response &response)
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
    const InFlight inFlight(m_journal);
    const QVector<Fault> faults = m_journal.begin(endpoint->operation, rawQuery(request));
    serveFaulty(endpoint->operation, request, faults, response);
}

void HttpService::serveFaulty(Operation operation, const httplib::Request &request,
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
    const Answer answer = answerOf(operation, *m_archive, m_pictures, queryOf(request), faults);
    if (const Fault *fault = findFault(faults, FaultKind::ResetInBody))
        sendHalf(answer, response, fault->value == 0);
    else
        send(answer, response);
    if (answer.status >= 301 && answer.status <= 308)
        response.set_header("Location", request.target); // comes round to where it was
}

} // namespace Simulator
