#include "roi/roiencoder.h"

#include "base/childprocess.h"
#include "base/errortext.h"
#include "output/ffmpegcommand.h"
#include "output/filmfile.h"
#include "output/sessionfiles.h"
#include "roi/earlierfilm.h"

#include <QEventLoop>
#include <QFileInfo>

namespace {

constexpr int startLimitMs = 5000;
constexpr int shownCharacters = 4000;
constexpr int keptBytes = 16 * shownCharacters; // an encoder that talks for hours stays small

} // namespace

bool RoiEncoder::isPresent(const QString &program, QString *errorText)
{
    return QFileInfo::exists(program) ||
           ErrorText::fail(errorText, QStringLiteral("ffmpeg not found: %1").arg(program));
}

bool RoiEncoder::run(const QString &program, const QString &framesFolder, const QString &outputFile,
                     int fps, int crf, QString *errorText)
{
    if (!isPresent(program, errorText))
        return false;
    EarlierFilm earlier(outputFile);
    if (!earlier.isOutOfTheWay()) {
        return ErrorText::fail(
            errorText, QStringLiteral("Cannot set the earlier film aside: %1").arg(outputFile));
    }

    QProcess process;
    m_output.clear();
    process.setWorkingDirectory(framesFolder);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.setStandardInputFile(QProcess::nullDevice()); // ffmpeg takes keys from its input
    connect(&process, &QProcess::readyRead, this, &RoiEncoder::collectOutput);
    m_process = &process;
    process.start(program,
                  FfmpegCommand::arguments(fps, SessionFiles::framePattern(), crf, outputFile));
    const bool succeeded = process.waitForStarted(startLimitMs) && waitForEnd(process);
    ChildProcess::killAndWait(process); // a slow start, a quitting program, a torn pipe
    process.disconnect(this);
    m_process = nullptr;
    if (succeeded && !FilmFile::isCutOff(outputFile)) {
        earlier.supersede();
        return true;
    }
    return ErrorText::fail(errorText, failureText(process));
}

void RoiEncoder::cancel()
{
    if (m_process)
        m_process->kill();
}

bool RoiEncoder::waitForEnd(QProcess &process)
{
    QEventLoop wait;
    connect(&process, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), &wait,
            &QEventLoop::quit);
    connect(&process, &QProcess::errorOccurred, &wait, &QEventLoop::quit);
    if (process.state() != QProcess::NotRunning)
        wait.exec();
    return process.state() == QProcess::NotRunning &&
           process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}

void RoiEncoder::collectOutput()
{
    m_output.append(m_process->readAll());
    if (m_output.size() > 2 * keptBytes)
        m_output.remove(0, m_output.size() - keptBytes);
}

QString RoiEncoder::failureText(const QProcess &process) const
{
    const QString written = QString::fromLocal8Bit(m_output).trimmed();
    return written.isEmpty() ? process.errorString() : written.right(shownCharacters);
}
