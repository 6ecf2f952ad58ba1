#include "simulator/service/certificates.h"

#include "simulator/service/server.h"

#include <QProcess>

namespace Simulator {

namespace {

/// Makes NAME.pem and NAME.key, signed by itself unless there are @p more options.
bool request(const QString &folder, const QString &name, const QStringList &extensions,
             const QStringList &more, QString *errorText)
{
    QStringList arguments =
        QStringLiteral("req -x509 -nodes -newkey ec -pkeyopt ec_paramgen_curve:P-256 -days 90")
            .split(QLatin1Char(' '));
    arguments += {QStringLiteral("-out"),    name + QStringLiteral(".pem"),
                  QStringLiteral("-keyout"), name + QStringLiteral(".key"),
                  QStringLiteral("-subj"),   QStringLiteral("/CN=Sample archive: ") + name};
    for (const QString &extension : extensions)
        arguments += {QStringLiteral("-addext"), extension};
    QProcess openssl;
    openssl.setWorkingDirectory(folder);
    openssl.start(QStringLiteral("openssl"), arguments + more);
    if (openssl.waitForFinished() && openssl.exitCode() == 0)
        return true;
    if (errorText)
        *errorText = QStringLiteral("openssl cannot make a certificate. ") + openssl.errorString() +
                     QString::fromLocal8Bit(openssl.readAllStandardError());
    return false;
}

} // namespace

bool makeCertificates(Transport transport, const QString &folder, QString *errorText)
{
    const QString host = transport == Transport::HttpsForeignHost
                             ? QStringLiteral("DNS:helioviewer.example")
                             : QStringLiteral("IP:127.0.0.1");
    QStringList signer;
    if (transport != Transport::HttpsSelfSigned)
        signer = QStringList{QStringLiteral("-CA"), QStringLiteral("authority.pem"),
                             QStringLiteral("-CAkey"), QStringLiteral("authority.key")};
    return request(folder, QStringLiteral("authority"),
                   {QStringLiteral("basicConstraints=critical,CA:TRUE")}, {}, errorText) &&
           request(folder, QStringLiteral("host"),
                   {QStringLiteral("basicConstraints=critical,CA:FALSE"),
                    QStringLiteral("subjectAltName=") + host},
                   signer, errorText);
}

} // namespace Simulator
