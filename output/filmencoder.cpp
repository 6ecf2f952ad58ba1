#include "output/filmencoder.h"

#include "base/childprocess.h"
#include "output/ffmpegcommand.h"
#include "output/filmfile.h"

#include <QFile>

#include <utility>

namespace {

constexpr int keptBytes = 64 * 1024; // ffmpeg may write for hours

} // namespace

FilmEncoder::FilmEncoder(QObject *parent) : QObject(parent)
{
    m_startLimit.setSingleShot(true);
    connect(&m_startLimit, &QTimer::timeout, this, &FilmEncoder::onStartLimit);
}

FilmEncoder::~FilmEncoder()
{
    blockSignals(true);
    cancel();
}

QString FilmEncoder::lastOutput(int maxCharacters) const
{
    return QString::fromLocal8Bit(m_output).trimmed().right(maxCharacters);
}

void FilmEncoder::start(const FilmOrder &order)
{
    cancel();
    m_order = order;
    m_output.clear();
    m_process = new QProcess(this);
    m_process->setWorkingDirectory(order.folder);
    m_process->setProcessChannelMode(QProcess::MergedChannels);
    m_process->setStandardInputFile(QProcess::nullDevice()); // ffmpeg would read keys from it
    connect(m_process, &QProcess::started, &m_startLimit, &QTimer::stop);
    connect(m_process, &QProcess::readyRead, this, &FilmEncoder::onReadyRead);
    connect(m_process, &QProcess::errorOccurred, this, &FilmEncoder::onProcessError);
    connect(m_process, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this,
            &FilmEncoder::onProcessFinished);
    if (order.startLimitMs > 0)
        m_startLimit.start(order.startLimitMs);
    // This comes last: a program that cannot be started may end the run inside this call.
    m_process->start(order.program, FfmpegCommand::arguments(order.fps, order.inputPattern,
                                                             order.crf, order.film));
}

void FilmEncoder::cancel()
{
    if (m_process)
        ChildProcess::killAndWait(*m_process); // delivers its last signals
    if (m_process)
        conclude({FilmOutcome::End::Failed, 0, m_process->errorString()});
}

void FilmEncoder::onProcessFinished(int exitCode, QProcess::ExitStatus exitStatus)
{
    if (exitStatus != QProcess::NormalExit || exitCode != 0) {
        conclude({FilmOutcome::End::Failed, exitCode, m_process->errorString()});
        return;
    }
    const QString flaw = FilmFile::flaw(m_order.film, m_order.pictures);
    if (flaw.isEmpty())
        conclude({});
    else
        conclude({FilmOutcome::End::NotWhole, 0,
                  QStringLiteral("ffmpeg ended without an error, but ") + flaw});
}

/// After any other error finished() follows.
void FilmEncoder::onProcessError(QProcess::ProcessError error)
{
    if (error == QProcess::FailedToStart)
        conclude({FilmOutcome::End::NotStarted, 0, m_process->errorString()});
}

void FilmEncoder::onReadyRead()
{
    const QByteArray chunk = m_process->readAll();
    m_output.append(chunk);
    if (m_output.size() > 2 * keptBytes)
        m_output.remove(0, m_output.size() - keptBytes);
    const QString text = QString::fromLocal8Bit(chunk).trimmed();
    if (!text.isEmpty())
        emit outputRead(text);
}

void FilmEncoder::onStartLimit()
{
    const bool started = m_process->waitForStarted(0);
    if (started || !isRunning())
        return; // it has just started, or failed to start
    const QString reason = m_process->errorString();
    m_process->disconnect(this);
    ChildProcess::killAndWait(*m_process);
    conclude({FilmOutcome::End::NotStarted, 0, reason});
}

void FilmEncoder::conclude(const FilmOutcome &outcome)
{
    m_outcome = outcome;
    m_startLimit.stop();
    m_process->disconnect(this);
    ChildProcess::letGo(std::exchange(m_process, nullptr));
    const bool hasWritten = outcome.end != FilmOutcome::End::NotStarted;
    if (hasWritten && FilmFile::isCutOff(m_order.film))
        QFile::remove(m_order.film);
    emit finished(outcome);
}
