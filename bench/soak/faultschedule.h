#pragma once

#include <QStringList>
#include <QVector>

/// What a spoilt answer, or one that never comes, makes of its request.
enum class Effect {
    LookupError,   ///< the request ends as LOOKUP_ERROR
    RejectedTime,  ///< the request ends as REJECTED_TIME
    DownloadError, ///< the request ends as DOWNLOAD_ERROR
    DecodeRetry,   ///< the engine downloads again
    CurlRetry,     ///< curl asks again, of which the engine knows nothing
};

/**
 * Which requests of one run of the service go wrong, and what must become of each.
 *
 * One in fifty does, both of the lookups and of the downloads, in turn by each way that there is.
 */
class FaultSchedule final
{
public:
    /// @p requests: up to which number of either kind.
    explicit FaultSchedule(int requests);

    /// Never answers one more, on which the session is to be stopped; @p request is
    /// "GetClosestImage" or "DownloadImage".
    void hang(const char *request, int number, Effect effect);

    /// As orvik-simulator takes them.
    QStringList arguments() const;
    /// How many of the first @p requests, numbers 1 to that, have this effect.
    int count(const char *request, Effect effect, int requests) const;

private:
    struct Fault
    {
        QString request;
        int number; // counted from 1
        QString kind;
        Effect effect;
    };

    QVector<Fault> m_faults;
};
