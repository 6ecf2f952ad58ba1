#include "simulator/archive/archive.h"
#include "simulator/service/server.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDateTime>
#include <QMetaEnum>
#include <QTextStream>

#include <csignal>
#include <cstdio>

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

template<typename Enum>
QString namesOf()
{
    QStringList names;
    const QMetaEnum words = QMetaEnum::fromType<Enum>();
    for (int index = 0; index < words.keyCount(); ++index)
        names.append(QString::fromLatin1(words.key(index)));
    return names.join(QStringLiteral(", "));
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
        {QStringLiteral("fault"),
         QStringLiteral(
             "What is to go wrong, as REQUEST:KIND[:VALUE[:FIRST[:COUNT]]]; may be given "
             "several times. \"GetClosestImage:Status:503:2:1\" answers the second "
             "request for a closest image with status 503. Requests: %1. Kinds: %2. "
             "VALUE is a status, the milliseconds of Delay, the seconds of StaleDate, or a "
             "variant: 0 and 1 of ResetInBody, 0 to 3 of WrongId.")
             .arg(namesOf<Simulator::Operation>(), namesOf<Simulator::FaultKind>()),
         QStringLiteral("FAULT")},
        {QStringLiteral("journal"),
         QStringLiteral("Prints the path and query of each request as it comes.")},
    });
}

/// At once: whoever started this program waits for it.
void print(const QByteArray &line)
{
    std::puts(line.constData());
    std::fflush(stdout);
}

int fail(const QString &text, int exitCode)
{
    QTextStream(stderr) << text << Qt::endl;
    return exitCode;
}

/// The first text that names no fault; null when all have been added.
QString addFaults(const QStringList &texts, Simulator::Server &server)
{
    for (const QString &text : texts) {
        const std::optional<Simulator::Fault> fault = Simulator::faultFromText(text);
        if (!fault)
            return text;
        server.addFault(*fault);
    }
    return {};
}

} // namespace

int main(int argc, char *argv[])
{
    const sigset_t stopSignals = holdStopSignals();
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    describeOptions(parser);
    parser.process(application);

    bool isPort = false;
    const int port = parser.value(QStringLiteral("port")).toUShort(&isPort);
    if (!isPort)
        return fail(QStringLiteral("--port takes a number from 0 to 65535."), 2);
    Simulator::Server server(Simulator::Archive::sampleAt(QDateTime::currentDateTimeUtc()));
    const QString noFault = addFaults(parser.values(QStringLiteral("fault")), server);
    if (!noFault.isNull())
        return fail(QStringLiteral("\"%1\" is no fault; --help lists them.").arg(noFault), 2);
    if (parser.isSet(QStringLiteral("journal")))
        server.setJournal([](const QByteArray &request) { print(request); });
    QString errorText;
    if (!server.start(&errorText, port))
        return fail(errorText, 1);

    print(server.baseUrl().toLatin1());
    int signal = 0;
    sigwait(&stopSignals, &signal);
    server.stop();
    return 0;
}
