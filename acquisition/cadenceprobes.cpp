#include "acquisition/cadenceprobes.h"

#include "acquisition/acquisitionlog.h"
#include "base/runtimeconfig.h"
#include "client/helioviewerclient.h"
#include "client/operationnames.h"

#include <algorithm>
#include <utility>

CadenceProbes::CadenceProbes(QObject *parent) : QObject(parent)
{
    m_nextStep.setSingleShot(true);
    connect(&m_nextStep, &QTimer::timeout, this, &CadenceProbes::schedule);
}

void CadenceProbes::start(const QVector<ProbeWindow> &windows, int cadenceSeconds)
{
    ++m_run;
    m_active = true;
    m_queue = ProbeQueue(windows);
    m_cadenceSeconds = cadenceSeconds;
    schedule();
}

void CadenceProbes::cancel()
{
    ++m_run;
    m_active = false;
    m_nextStep.stop();
    for (HelioviewerClient *client : std::as_const(m_clients))
        client->cancel();
}

/// Gives every idle client of the pool a window.
void CadenceProbes::schedule()
{
    if (m_queue.isDone()) {
        emit done();
        return;
    }
    const int workers = std::min(RuntimeConfig::preflightParallelRequests(), m_queue.size());
    growPool(workers);
    for (int worker = 0; worker < workers && m_queue.hasNext(); ++worker) {
        if (!m_queue.isBusy(worker) && !startProbe(worker))
            return;
    }
}

void CadenceProbes::growPool(int workers)
{
    while (m_clients.size() < workers) {
        auto *client = new HelioviewerClient(this);
        connect(client, &HelioviewerClient::logMessage, this, &CadenceProbes::logMessage);
        connect(client, &HelioviewerClient::frameIndexReceived, this, &CadenceProbes::onFrameIndex);
        connect(client, &HelioviewerClient::requestError, this, &CadenceProbes::onPreflightError);
        m_clients.append(client);
    }
}

/// Returns false when a connected slot ended the run; the caller then returns.
bool CadenceProbes::startProbe(int worker)
{
    const int run = m_run;
    const ProbeWindow window = m_queue.take(worker);
    emit stateChanged(AcquisitionLog::analyzingState(window, m_queue.taken(), m_queue.size()));
    if (run != m_run)
        return false;
    m_clients.at(worker)->getJPX(window.source.sourceId, window.startUtc, window.endUtc,
                                 m_cadenceSeconds);
    return run == m_run;
}

void CadenceProbes::onFrameIndex(int sourceId, const QDateTime &startUtc, const QDateTime &endUtc,
                                 const QVector<QDateTime> &framesUtc, const QString &note)
{
    const std::optional<ProbeWindow> window = release();
    if (!window)
        return;
    if (!window->matches(sourceId, startUtc, endUtc)) {
        fail(window->source.sourceId, AcquisitionLog::probeMismatch(window->source));
        return;
    }
    if (!note.trimmed().isEmpty() && !report(AcquisitionLog::probeNote(window->source, note)))
        return;
    m_queue.addFrames(sourceId, framesUtc);
    emit answered(sourceId, m_queue.frameSeconds(sourceId).size());
    close();
}

void CadenceProbes::onPreflightError(const QString &operation, const QString &message)
{
    if (operation != OperationNames::getJpx())
        return;
    if (const std::optional<ProbeWindow> window = release())
        fail(window->source.sourceId, AcquisitionLog::probeFailed(window->source, message));
}

/// The window of the client whose signal is being handled; nothing when it no longer matters.
std::optional<ProbeWindow> CadenceProbes::release()
{
    if (!m_active)
        return std::nullopt;
    return m_queue.release(m_clients.indexOf(qobject_cast<HelioviewerClient *>(sender())));
}

void CadenceProbes::fail(int sourceId, const QString &line)
{
    emit failed(sourceId);
    if (report(line))
        close();
}

void CadenceProbes::close()
{
    const int run = m_run;
    m_queue.complete();
    emit progressChanged(m_queue.completed(), m_queue.size());
    if (run == m_run)
        m_nextStep.start();
}

/// Returns false when a connected slot ended the run; the caller then returns.
bool CadenceProbes::report(const QString &line)
{
    const int run = m_run;
    emit logMessage(line);
    return run == m_run;
}
