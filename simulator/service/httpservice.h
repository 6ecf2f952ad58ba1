#pragma once

#include "simulator/service/answer.h"
#include "simulator/service/faultplan.h"
#include "simulator/service/picturestore.h"

#include <QSslCertificate>
#include <QSslKey>
#include <QTcpServer>

#include <functional>
#include <memory>

class QTcpSocket;
class QUrlQuery;

namespace Simulator {

class Archive;

/**
 * Reads HTTP requests, and sends, spoils or withholds what the archive answers.
 *
 * A connection serves one request, as the public service's do for curl. Lives in one thread; only
 * faults() may be used from others.
 */
class HttpService final : public QTcpServer
{
    Q_OBJECT

public:
    explicit HttpService(std::shared_ptr<const Archive> archive);

    FaultPlan &faults() { return m_faults; }
    /// Before it listens: @p note is called with the path and query of each request as it comes.
    void setJournal(std::function<void(const QByteArray &)> note) { m_journal = std::move(note); }

    /// Before it listens: all connections will be encrypted, with a certificate of PEM files.
    void encrypt(const QString &certificateFile, const QString &keyFile);
    /// On 127.0.0.1; @p port 0 takes a free one. Returns the port, or 0.
    int listenOn(int port);
    /// Ends all connections and listens no longer.
    void breakOff();

protected:
    void incomingConnection(qintptr descriptor) override;

private:
    void readRequest(QTcpSocket *socket);
    void serve(QTcpSocket *socket, Operation operation, const QUrlQuery &query,
               const QVector<Fault> &faults);
    void send(QTcpSocket *socket, Operation operation, const QUrlQuery &query,
              const QVector<Fault> &faults);

    std::shared_ptr<const Archive> m_archive;
    PictureStore m_pictures;
    FaultPlan m_faults;
    std::function<void(const QByteArray &)> m_journal; // may be empty
    QSslCertificate m_certificate;                     // null for plain HTTP
    QSslKey m_key;
};

} // namespace Simulator
