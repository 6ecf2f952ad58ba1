#include "bench/soak/watchedservice.h"

void RequestTally::add(const QString &url)
{
    if (url.contains(QLatin1String("/getJPX/")))
        ++probes;
    else if (url.contains(QLatin1String("/getClosestImage/")))
        ++lookups;
    else if (url.contains(QLatin1String("/downloadImage/")))
        ++downloads;
}

bool WatchedService::start(const QStringList &arguments, int port)
{
    constexpr int longestStartMs = 20'000;
    m_tally = {};
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start(
        QStringLiteral(ORVIK_SIMULATOR),
        QStringList{QStringLiteral("--journal"), QStringLiteral("--port"), QString::number(port)} +
            arguments);
    while (!m_process.canReadLine() && m_process.waitForReadyRead(longestStartMs)) {
    }
    m_baseUrl = QString::fromLatin1(m_process.readLine()).trimmed();
    connect(&m_process, &QProcess::readyReadStandardOutput, this, &WatchedService::readJournal,
            Qt::UniqueConnection);
    return m_baseUrl.startsWith(QLatin1String("http"));
}

void WatchedService::stop()
{
    m_process.terminate();
    m_process.waitForFinished();
    readJournal();
}

void WatchedService::readJournal()
{
    while (m_process.canReadLine()) {
        m_tally.add(QString::fromLatin1(m_process.readLine()));
        emit requested();
    }
}
