#pragma once

#include <QStringList>
#include <QVector>

/// What a faulty or missing answer does to its request.
enum class Effect {
    LookupError,   ///< the request ends as LOOKUP_ERROR
    RejectedTime,  ///< the request ends as REJECTED_TIME
    DownloadError, ///< the request ends as DOWNLOAD_ERROR
    DecodeRetry,   ///< the engine downloads again
    CurlRetry,     ///< curl asks again, of which the engine knows nothing
};

/**
 * Which requests of one run of the service fail, and the effect that each must have.
 *
 * One in fifty lookups and one in fifty downloads fail, taking the kinds of fault in turn.
 */
class FaultSchedule final
{
public:
    /// @p requests: up to which number of either kind.
    explicit FaultSchedule(int requests);

    /// Leaves one more unanswered, so that the session is stopped during it; @p request is
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
