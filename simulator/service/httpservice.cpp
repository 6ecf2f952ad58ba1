#include "simulator/service/httpservice.h"

#include "simulator/service/faultyanswers.h"

#include <QFile>
#include <QSslSocket>
#include <QTimer>
#include <QUrl>
#include <QUrlQuery>

#include <sys/socket.h>

namespace Simulator {

namespace {

/// None for a path that is no request of ours.
std::optional<Operation> operationAt(const QString &path)
{
    static const QStringList endpoints = {
        QStringLiteral("/v2/getDataSources/"), QStringLiteral("/v2/getJPX/"),
        QStringLiteral("/v2/getClosestImage/"), QStringLiteral("/v2/downloadImage/")};
    const int index = endpoints.indexOf(path);
    return index < 0 ? std::nullopt : std::optional<Operation>(Operation(index));
}

QByteArray headOf(const Answer &answer)
{
    QByteArray head = "HTTP/1.1 " + QByteArray::number(answer.status) + ' ' +
                      reasonOf(answer.status) + "\r\nContent-Type: " + answer.contentType +
                      "\r\nContent-Length: " + QByteArray::number(answer.body.size());
    if (answer.status == 429)
        head += "\r\nRetry-After: 1";
    return head + "\r\nConnection: close\r\n\r\n";
}

/// Once what is underway has gone out.
void sendAndClose(QTcpSocket *socket, const QByteArray &bytes)
{
    socket->write(bytes);
    socket->disconnectFromHost();
}

/// The peer learns that the rest is lost.
void sendAndReset(QTcpSocket *socket, const QByteArray &bytes)
{
    socket->write(bytes);
    socket->flush();
    const linger atOnce{1, 0}; // closing then resets the connection
    setsockopt(static_cast<int>(socket->socketDescriptor()), SOL_SOCKET, SO_LINGER, &atOnce,
               sizeof atOnce);
    socket->abort();
}

} // namespace

HttpService::HttpService(std::shared_ptr<const Archive> archive)
    : m_archive(std::move(archive)), m_pictures(m_archive)
{}

void HttpService::encrypt(const QString &certificateFile, const QString &keyFile)
{
    m_certificate = QSslCertificate::fromPath(certificateFile).value(0);
    QFile file(keyFile);
    if (file.open(QIODevice::ReadOnly))
        m_key = QSslKey(&file, QSsl::Ec);
}

int HttpService::listenOn(int port)
{
    return listen(QHostAddress::LocalHost, static_cast<quint16>(port)) ? serverPort() : 0;
}

void HttpService::breakOff()
{
    close();
    // An encrypted socket owns another one, which goes with it.
    qDeleteAll(findChildren<QTcpSocket *>(QString(), Qt::FindDirectChildrenOnly));
}

void HttpService::incomingConnection(qintptr descriptor)
{
    auto *encrypted = m_certificate.isNull() ? nullptr : new QSslSocket(this);
    QTcpSocket *socket = encrypted ? encrypted : new QTcpSocket(this);
    socket->setSocketDescriptor(descriptor);
    connect(socket, &QTcpSocket::readyRead, this, [this, socket] { readRequest(socket); });
    connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    if (!encrypted)
        return;
    encrypted->setLocalCertificate(m_certificate);
    encrypted->setPrivateKey(m_key);
    encrypted->startServerEncryption();
}

void HttpService::readRequest(QTcpSocket *socket)
{
    if (!socket->peek(socket->bytesAvailable()).contains("\r\n\r\n"))
        return; // the rest is on its way
    const QList<QByteArray> words = socket->readLine().split(' ');
    socket->readAll(); // no header changes an answer
    const QUrl target = QUrl::fromEncoded(words.value(1));
    const std::optional<Operation> operation = operationAt(target.path());
    if (words.at(0) != "GET" || !operation) {
        const Answer answer = pageOfError(QStringLiteral("Invalid action specified."));
        sendAndClose(socket, headOf(answer) + answer.body);
        return;
    }
    if (m_journal)
        m_journal(words.at(1));
    serve(socket, *operation, QUrlQuery(target), m_faults.next(*operation));
}

void HttpService::serve(QTcpSocket *socket, Operation operation, const QUrlQuery &query,
                        const QVector<Fault> &faults)
{
    if (findFault(faults, FaultKind::Hang))
        return; // until the peer has waited long enough
    const Fault *delay = findFault(faults, FaultKind::Delay);
    if (findFault(faults, FaultKind::Refuse))
        socket->disconnectFromHost();
    else if (delay)
        QTimer::singleShot(delay->value, socket, [=] { send(socket, operation, query, faults); });
    else
        send(socket, operation, query, faults);
}

void HttpService::send(QTcpSocket *socket, Operation operation, const QUrlQuery &query,
                       const QVector<Fault> &faults)
{
    const Answer answer = answerOf(operation, *m_archive, m_pictures, query, faults);
    const Fault *broken = findFault(faults, FaultKind::ResetInBody);
    if (!broken)
        sendAndClose(socket, headOf(answer) + answer.body);
    else if (broken->value == 0)
        sendAndReset(socket, headOf(answer) + answer.body.left(answer.body.size() / 2));
    else
        sendAndClose(socket, headOf(answer) + answer.body.left(answer.body.size() / 2));
}

} // namespace Simulator
