#pragma once

#include <QProcess>
#include <QString>

/// How often each of the three requests of a session was made.
struct RequestTally
{
    int probes = 0;
    int lookups = 0;
    int downloads = 0;

    /// Counts the request that a URL, or its path, is for.
    void add(const QString &url);
};

/// The sample archive in a process of its own, which reports each request as it arrives.
class WatchedService final : public QObject
{
    Q_OBJECT

public:
    /// Starts with @p arguments besides its own; port 0 picks a free one.
    bool start(const QStringList &arguments, int port = 0);
    /// Ends it; afterwards tally() is complete.
    void stop();

    QString baseUrl() const { return m_baseUrl; }
    const RequestTally &tally() const { return m_tally; }

signals:
    /// The service has got a request, and tally() counts it.
    void requested();

private:
    void readJournal();

    QProcess m_process;
    QString m_baseUrl;
    RequestTally m_tally;
};
