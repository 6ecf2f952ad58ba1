#include "roi/roiencoder.h"

#include "base/errortext.h"
#include "roi/earlierfilm.h"

#include <QEventLoop>
#include <QFileInfo>

namespace {

constexpr int startLimitMs = 5000;
constexpr int shownCharacters = 4000;

} // namespace

RoiEncoder::RoiEncoder(QObject *parent) : QObject(parent)
{
    connect(&m_encoder, &FilmEncoder::outputRead, this, &RoiEncoder::outputRead);
}

bool RoiEncoder::isPresent(const QString &program, QString *errorText)
{
    return QFileInfo::exists(program) ||
           ErrorText::fail(errorText, QStringLiteral("ffmpeg not found: %1").arg(program));
}

bool RoiEncoder::run(FilmOrder order, QString *errorText)
{
    if (!isPresent(order.program, errorText))
        return false;
    EarlierFilm earlier(order.film);
    if (!earlier.isOutOfTheWay()) {
        return ErrorText::fail(
            errorText, QStringLiteral("Cannot set the earlier film aside: %1").arg(order.film));
    }
    order.startLimitMs = startLimitMs;
    const FilmOutcome outcome = runToEnd(order);
    if (outcome.end != FilmOutcome::End::Completed)
        return ErrorText::fail(errorText, failureText(outcome));
    earlier.supersede();
    return true;
}

FilmOutcome RoiEncoder::runToEnd(const FilmOrder &order)
{
    QEventLoop wait;
    connect(&m_encoder, &FilmEncoder::finished, &wait, &QEventLoop::quit);
    m_encoder.start(order);
    if (m_encoder.isRunning())
        wait.exec();
    m_encoder.cancel(); // when the application quits, the loop ends first
    return m_encoder.outcome();
}

QString RoiEncoder::failureText(const FilmOutcome &outcome) const
{
    const QString written = m_encoder.lastOutput(shownCharacters);
    if (written.isEmpty())
        return outcome.reason;
    return outcome.end == FilmOutcome::End::NotWhole
               ? QStringLiteral("%1\n\n%2").arg(outcome.reason, written)
               : written;
}
