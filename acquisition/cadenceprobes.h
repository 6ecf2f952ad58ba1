#pragma once

#include "acquisition/probequeue.h"

#include <QObject>
#include <QTimer>

#include <optional>

class HelioviewerClient;

/**
 * The cadence probes of one session: short frame indexes of the archive, several at a time.
 *
 * Slots connected to the signals may call cancel() and start() at any time. The destructor kills
 * running probes without sending a signal.
 */
class CadenceProbes final : public QObject
{
    Q_OBJECT

public:
    explicit CadenceProbes(QObject *parent = nullptr);

    /// Starts over with @p windows; if there are none, done() is sent before this returns.
    void start(const QVector<ProbeWindow> &windows, int cadenceSeconds);
    /// Kills the running probes; no signal follows.
    void cancel();

    /// The frame times received for a datasource: ascending, unique seconds since the epoch.
    QVector<qint64> frameSeconds(int sourceId) const { return m_queue.frameSeconds(sourceId); }

signals:
    /// A line for the log.
    void logMessage(const QString &text);
    /// For every probe, as it is sent.
    void stateChanged(const QString &text);
    /// The frame times of a datasource have arrived.
    void answered(int sourceId, int uniqueFrames);
    /// A datasource has no usable answer; its log line follows.
    void failed(int sourceId);
    /// After every probe.
    void progressChanged(int completed, int count);
    /// After the last one, once per start().
    void done();

private slots:
    void onFrameIndex(int sourceId, const QDateTime &startUtc, const QDateTime &endUtc,
                      const QVector<QDateTime> &framesUtc, const QString &note);
    void onPreflightError(const QString &operation, const QString &message);

private:
    void schedule();
    void growPool(int workers);
    bool startProbe(int worker);
    std::optional<ProbeWindow> release();
    void fail(int sourceId, const QString &line);
    void close();
    bool report(const QString &line);

    QVector<HelioviewerClient *> m_clients; // children of this object, kept for all sessions
    ProbeQueue m_queue;                     // workers are indices of the clients
    QTimer m_nextStep;
    int m_cadenceSeconds = 0;
    int m_run = 0; // changes at each start and cancel
    bool m_active = false;
};
