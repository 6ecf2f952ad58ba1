#include "simulator/archive/archive.h"
#include "simulator/service/server.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDateTime>
#include <QTextStream>

#include <csignal>

namespace {

/// Makes SIGINT and SIGTERM wait until somebody asks for them; threads started later inherit it.
sigset_t holdStopSignals()
{
    sigset_t stopSignals;
    sigemptyset(&stopSignals);
    sigaddset(&stopSignals, SIGINT);
    sigaddset(&stopSignals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr);
    return stopSignals;
}

void describeOptions(QCommandLineParser &parser)
{
    parser.setApplicationDescription(
        QStringLiteral("Serves a sample archive of the Sun as the Helioviewer API v2 does, on this "
                       "machine only. Prints its base address and runs until it is interrupted."));
    parser.addHelpOption();
    parser.addOptions({
        {QStringLiteral("port"), QStringLiteral("Port to listen on; a free one when left out."),
         QStringLiteral("N"), QStringLiteral("0")},
        {QStringLiteral("https"), QStringLiteral("Encrypt, with a certificate nobody has signed.")},
        {QStringLiteral("cache-mb"), QStringLiteral("Room for pictures kept in memory."),
         QStringLiteral("N"), QStringLiteral("256")},
    });
}

/// A number among the options; false with a word to the user when it is none.
bool readNumber(const QCommandLineParser &parser, const QString &option, int largest, int *number)
{
    bool ok = false;
    *number = parser.value(option).toInt(&ok);
    if (ok && *number >= 0 && *number <= largest)
        return true;
    QTextStream(stderr)
        << QStringLiteral("--%1 takes a number from 0 to %2.").arg(option, QString::number(largest))
        << Qt::endl;
    return false;
}

} // namespace

int main(int argc, char *argv[])
{
    const sigset_t stopSignals = holdStopSignals();
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    describeOptions(parser);
    parser.process(application);

    int port = 0;
    int cacheMb = 0;
    if (!readNumber(parser, QStringLiteral("port"), 65535, &port) ||
        !readNumber(parser, QStringLiteral("cache-mb"), 1 << 20, &cacheMb))
        return 2;

    Simulator::Server server(Simulator::Archive::sampleAt(QDateTime::currentDateTimeUtc()),
                             parser.isSet(QStringLiteral("https"))
                                 ? Simulator::Transport::HttpsSelfSigned
                                 : Simulator::Transport::Http);
    server.setCacheLimit(cacheMb * 1024LL * 1024LL);
    QString errorText;
    if (!server.start(&errorText, port)) {
        QTextStream(stderr) << errorText << Qt::endl;
        return 1;
    }
    QTextStream(stdout) << server.baseUrl() << Qt::endl;
    int signal = 0;
    sigwait(&stopSignals, &signal);
    server.stop();
    return 0;
}
