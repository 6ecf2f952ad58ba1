#include "client/helioviewerclient.h"

#include "base/childprocess.h"
#include "base/runtimeconfig.h"
#include "client/curlcommand.h"
#include "client/helioviewerrequests.h"
#include "client/helioviewerresponses.h"
#include "client/operationnames.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QScopedValueRollback>

#include <utility>

namespace {

constexpr qint64 maxAnswerBytes = 64 << 20; // the catalog, the largest of all, has a quarter MB
constexpr qint64 maxDownloadBytes = 1 << 30;
constexpr int downloadWatchMs = 500;

/// 0 when there is no such file.
qint64 sizeOf(const QString &file)
{
    return QFileInfo(file).size();
}

QString oversizedAnswer()
{
    return QStringLiteral("The answer is larger than 64 MB. Check network/apiBase.");
}

QString oversizedDownload()
{
    return QStringLiteral("The download is larger than 1 GB. Check network/apiBase.");
}

} // namespace

HelioviewerClient::HelioviewerClient(QObject *parent)
    : QObject(parent), m_process(new QProcess(this))
{
    qRegisterMetaType<QVector<QDateTime>>();
    connect(m_process, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), &m_downloadWatch,
            &QTimer::stop);
    connect(m_process, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this,
            &HelioviewerClient::onFinished);
    connect(m_process, &QProcess::errorOccurred, this, &HelioviewerClient::onProcessError);
    connect(m_process, &QProcess::readyReadStandardOutput, this,
            &HelioviewerClient::endOversizedAnswer);
    connect(m_process, &QProcess::started, &m_downloadWatch,
            [this] { m_downloadWatch.start(downloadWatchMs); });
    connect(&m_downloadWatch, &QTimer::timeout, this, &HelioviewerClient::endOversizedDownload);
}

HelioviewerClient::~HelioviewerClient()
{
    m_process->disconnect(this);
    ChildProcess::killAndWait(*m_process);
    removePartialDownload();
}

bool HelioviewerClient::isBusy() const
{
    return m_canceling || m_operation != Operation::None ||
           m_process->state() != QProcess::NotRunning;
}

void HelioviewerClient::getDataSources()
{
    start(Operation::GetDataSources, {},
          CurlCommand::commonArguments()
              << HelioviewerRequests::dataSourcesUrl(RuntimeConfig::apiBase()));
}

void HelioviewerClient::getJPX(int sourceId, const QDateTime &startUtc, const QDateTime &endUtc,
                               int cadenceSeconds)
{
    Request request;
    request.sourceId = sourceId;
    request.startUtc = startUtc.toUTC();
    request.endUtc = endUtc.toUTC();
    start(Operation::GetJPX, request,
          CurlCommand::commonArguments() << HelioviewerRequests::jpxUrl(
              RuntimeConfig::apiBase(), sourceId, startUtc, endUtc, cadenceSeconds));
}

void HelioviewerClient::getClosestImage(int sourceId, const QDateTime &requestedUtc)
{
    Request request;
    request.sourceId = sourceId;
    request.requestedUtc = requestedUtc.toUTC();
    start(Operation::GetClosestImage, request,
          CurlCommand::commonArguments() << HelioviewerRequests::closestImageUrl(
              RuntimeConfig::apiBase(), sourceId, requestedUtc));
}

void HelioviewerClient::downloadImage(qint64 imageId, int sourceId, const QDateTime &requestedUtc,
                                      const QDateTime &actualUtc, const QString &outputFile,
                                      int width)
{
    Request request;
    request.sourceId = sourceId;
    request.imageId = imageId;
    request.requestedUtc = requestedUtc.toUTC();
    request.actualUtc = actualUtc.toUTC();
    request.outputFile = outputFile;
    start(Operation::DownloadImage, request,
          CurlCommand::commonArguments()
              << QStringLiteral("-o") << outputFile
              << HelioviewerRequests::renderedImageUrl(RuntimeConfig::apiBase(), imageId, width));
}

void HelioviewerClient::cancel()
{
    if (m_canceling)
        return; // a listener cancels again what is being cancelled
    const QScopedValueRollback<bool> canceling(m_canceling, true);
    ChildProcess::killAndWait(*m_process);
    reportProcessError();
    removePartialDownload();
    m_operation = Operation::None;
}

void HelioviewerClient::onFinished(int exitCode, QProcess::ExitStatus exitStatus)
{
    readOutput();
    if (m_operation == Operation::None || m_errorReported)
        return; // cancelled, or a crash that onProcessError has noted
    if (!m_endReason.isEmpty()) {
        fail(std::exchange(m_endReason, {}));
        return;
    }

    if (exitStatus == QProcess::NormalExit) {
        if (exitCode == 0) {
            handleAnswer();
            return;
        }
        if (retryInsecurely(exitCode))
            return;
    }
    const QString message = errorOutput();
    fail(message.isEmpty()
             ? QStringLiteral("curl failed with exit code %1").arg(QString::number(exitCode))
             : message);
}

void HelioviewerClient::onProcessError(QProcess::ProcessError error)
{
    Q_UNUSED(error)
    readOutput();
    if (m_operation == Operation::None || m_errorReported || !m_endReason.isEmpty())
        return;
    m_errorReported = true;
    const QString message = errorOutput();
    m_processError = message.isEmpty() ? m_process->errorString() : message;
    // A process that is started from within its own error signal hangs or claims to be running
    // still, and a listener may well make the next request at once: so it is told a moment later.
    QMetaObject::invokeMethod(this, &HelioviewerClient::reportProcessError, Qt::QueuedConnection);
}

QString HelioviewerClient::operationName(Operation operation)
{
    switch (operation) {
    case Operation::None:
        break;
    case Operation::GetDataSources:
        return OperationNames::getDataSources();
    case Operation::GetJPX:
        return OperationNames::getJpx();
    case Operation::GetClosestImage:
        return OperationNames::getClosestImage();
    case Operation::DownloadImage:
        return OperationNames::downloadImage();
    }
    return QStringLiteral("curl");
}

void HelioviewerClient::start(Operation operation, const Request &request,
                              const QStringList &arguments)
{
    if (isBusy()) {
        emit requestError(operationName(operation),
                          QStringLiteral("HelioviewerClient is already busy."));
        return;
    }
    const QString program = RuntimeConfig::curlPath();
    if (!QFileInfo(program).isFile()) {
        emit requestError(
            operationName(operation),
            QStringLiteral("curl.exe not found: %1").arg(QDir::toNativeSeparators(program)));
        return;
    }
    m_operation = operation;
    m_stdoutBuffer.clear();
    m_stderrBuffer.clear();
    m_errorReported = false;
    m_endReason.clear();
    m_insecureRetried = false;
    m_lastArguments = arguments;
    m_request = request;
    emit logMessage(QStringLiteral("curl: %1").arg(arguments.last())); // the URL
    launch(program, arguments);
}

/// Starts the child, unless a listener of the log line before it has cancelled the request.
void HelioviewerClient::launch(const QString &program, const QStringList &arguments)
{
    if (m_operation == Operation::None || m_process->state() != QProcess::NotRunning)
        return;
    m_process->start(program, arguments, QIODevice::ReadWrite);
}

/// True when the request was restarted without certificate check; it is then still in flight.
bool HelioviewerClient::retryInsecurely(int exitCode)
{
    // While cancel() waits for a child that has already ended, nothing would stop its successor.
    if (exitCode != CurlCommand::certificateFailureExitCode || m_insecureRetried || m_canceling ||
        !RuntimeConfig::allowInsecureFallback())
        return false;

    m_insecureRetried = true;
    CurlCommand::activateInsecureMode();
    removePartialDownload();
    m_stdoutBuffer.clear();
    m_stderrBuffer.clear();
    if (CurlCommand::claimInsecureWarning())
        emit logMessage(
            QStringLiteral("WARNING: curl SSL certificate validation failed (error 60). Insecure "
                           "HTTPS fallback enabled for this Orvik session."));
    launch(RuntimeConfig::curlPath(), CurlCommand::withoutCertificateCheck(m_lastArguments));
    return true;
}

void HelioviewerClient::readOutput()
{
    m_stdoutBuffer += m_process->readAllStandardOutput();
    m_stderrBuffer += m_process->readAllStandardError();
}

/// Reads curl's output as it arrives: QProcess would buffer all of it until curl ends.
void HelioviewerClient::endOversizedAnswer()
{
    if (!m_endReason.isEmpty()) {
        m_process->readAllStandardOutput(); // still in the pipe when the child was killed
        return;
    }
    readOutput();
    if (m_stdoutBuffer.size() <= maxAnswerBytes)
        return;
    m_stdoutBuffer = QByteArray();
    endRequest(oversizedAnswer());
}

void HelioviewerClient::endOversizedDownload()
{
    if (sizeOf(m_request.outputFile) > maxDownloadBytes)
        endRequest(oversizedDownload());
}

/// Kills the child; the request ends with @p reason once it is gone.
void HelioviewerClient::endRequest(const QString &reason)
{
    m_endReason = reason;
    m_process->kill();
}

QString HelioviewerClient::errorOutput() const
{
    return QString::fromLocal8Bit(m_stderrBuffer).trimmed();
}

/// A partial file must not be mistaken for a complete one by whoever lists the folder later.
void HelioviewerClient::removePartialDownload() const
{
    if (m_operation == Operation::DownloadImage && !m_request.outputFile.isEmpty())
        QFile::remove(m_request.outputFile);
}

/// Reports what onProcessError noted; nothing if that was already reported or cancelled.
void HelioviewerClient::reportProcessError()
{
    if (m_operation != Operation::None && m_errorReported)
        fail(std::exchange(m_processError, {}));
}

/// Ends the request in flight. Nothing may follow the signal: a listener may start the next one.
void HelioviewerClient::fail(const QString &message)
{
    removePartialDownload();
    emit requestError(operationName(std::exchange(m_operation, Operation::None)), message);
}

/// Ends the request in flight with what curl brought. As in fail(), the signal comes last.
void HelioviewerClient::handleAnswer()
{
    const Operation operation = std::exchange(m_operation, Operation::None);
    const Request request = m_request; // the next request overwrites it while listeners read
    if (operation == Operation::DownloadImage) {
        answerDownload(request);
        return;
    }
    QString errorText;
    const auto answer = HelioviewerResponses::parseObject(m_stdoutBuffer, &errorText);
    if (!answer)
        emit requestError(operationName(operation), errorText);
    else if (operation == Operation::GetDataSources)
        emit catalogReceived(*answer);
    else if (operation == Operation::GetJPX)
        answerFrameIndex(request, *answer);
    else
        answerClosestImage(request, *answer);
}

void HelioviewerClient::answerFrameIndex(const Request &request, const QJsonObject &answer)
{
    const auto index = HelioviewerResponses::frameIndex(answer);
    emit frameIndexReceived(request.sourceId, request.startUtc, request.endUtc, index.framesUtc,
                            index.message);
}

void HelioviewerClient::answerClosestImage(const Request &request, const QJsonObject &answer)
{
    QString errorText;
    const auto image = HelioviewerResponses::closestImage(answer, &errorText);
    if (image)
        emit closestImageReceived(request.sourceId, request.requestedUtc, image->imageId,
                                  image->actualUtc, answer);
    else
        emit requestError(operationName(Operation::GetClosestImage), errorText);
}

void HelioviewerClient::answerDownload(const Request &request)
{
    const qint64 bytes = sizeOf(request.outputFile);
    if (bytes > 0 && bytes <= maxDownloadBytes) {
        emit renderedImageDownloaded(request.sourceId, request.requestedUtc, request.actualUtc,
                                     request.imageId, request.outputFile);
        return;
    }
    QFile::remove(request.outputFile);
    emit requestError(operationName(Operation::DownloadImage),
                      bytes > 0 ? oversizedDownload()
                                : QStringLiteral("Downloaded file is missing or empty."));
}
