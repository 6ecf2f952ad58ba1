#include "sessiontool/sessionfilms.h"

#include "acquisition/sessionlayout.h"
#include "base/runtimeconfig.h"
#include "imaging/framedecoder.h"
#include "output/framesequence.h"
#include "output/sessionfiles.h"
#include "roi/roisession.h"
#include "sessiontool/filmverdict.h"
#include "sessiontool/linkedframes.h"
#include "sessiontool/toolconsole.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <QSize>

#include <algorithm>

namespace {

/// How many of these frames are whole and of a size that can be decoded.
int countUsable(const QDir &videoFrames, const QVector<int> &numbers)
{
    return static_cast<int>(std::count_if(numbers.cbegin(), numbers.cend(), [&](int number) {
        const QString frame = videoFrames.filePath(SessionFiles::frame(number));
        return FrameSequence::isWhole(frame) && !FrameDecoder::size(frame).isEmpty();
    }));
}

/// The last number of a picture in what ffmpeg writes of its progress; -1 when there is none.
int pictureIn(const QString &output)
{
    static const QRegularExpression pattern(QStringLiteral("frame= *([0-9]+)"));
    int picture = -1;
    for (auto match = pattern.globalMatch(output); match.hasNext();)
        picture = match.next().captured(1).toInt();
    return picture;
}

} // namespace

SessionFilms::SessionFilms(const QDir &session, const SessionLedger &ledger,
                           const FilmWishes &wishes, ToolConsole &console)
    : m_session(session), m_ledger(ledger), m_wishes(wishes), m_console(console)
{
    connect(&m_encoder, &RoiEncoder::outputRead, this, &SessionFilms::showProgress);
}

ExitCode SessionFilms::make(const QVector<DescribedSource> &sources)
{
    for (const DescribedSource &source : sources) {
        QCoreApplication::processEvents(); // an interruption may be waiting
        if (m_interruption != 0)
            break;
        makeFilm(source);
    }
    return m_exitCode;
}

void SessionFilms::interrupt(int signalNumber)
{
    m_interruption = signalNumber;
    m_encoder.cancel();
}

void SessionFilms::makeFilm(const DescribedSource &source)
{
    using Kind = FilmVerdict::Kind;
    const QVector<int> numbers = m_ledger.source(source.sourceId).frameNumbers();
    if (numbers.isEmpty()) {
        m_console.printNow(
            QStringLiteral("%1: no frame was accepted; no film").arg(source.nickname));
        return;
    }
    if (!StoredDescriptors::isFolderName(source.archiveName)) {
        fail(source,
             QStringLiteral("\"%1\" is no folder inside the session").arg(source.archiveName));
        return;
    }
    const QString film = QDir(m_session.filePath(source.archiveName))
                             .absoluteFilePath(SessionFiles::film(source.archiveName));
    const FilmVerdict verdict = FilmVerdicts::judge(film, numbers.size());
    if (verdict.kind == Kind::Whole)
        m_console.printNow(
            QStringLiteral("%1: whole, %2; left alone")
                .arg(source.nickname, ToolConsole::counted(numbers.size(), "picture")));
    else if (verdict.kind == Kind::Other)
        fail(source, QStringLiteral("%1 %2; left alone").arg(film, verdict.flaw));
    else if (verdict.kind == Kind::Broken && !m_wishes.replaceBroken)
        fail(source,
             QStringLiteral("%1 %2; --replace-broken makes it anew").arg(film, verdict.flaw));
    else
        encode(source, film, numbers);
}

/// Whether films may be written to the folder of @p source, which may be a link.
bool SessionFilms::mayWriteTo(const DescribedSource &source, QString *errorText) const
{
    RoiSource folder;
    folder.nickname = source.nickname;
    folder.archiveName = source.archiveName;
    return RoiSession::mayWriteTo(folder, m_session.absolutePath(), errorText);
}

void SessionFilms::encode(const DescribedSource &source, const QString &film,
                          const QVector<int> &numbers)
{
    QString reason;
    if (!mayWriteTo(source, &reason)) {
        fail(source, reason);
        return;
    }
    const QDir folder(m_session.filePath(source.archiveName));
    const QString videoFrames = folder.absoluteFilePath(SessionFiles::videoFramesFolder());
    const int usable = countUsable(QDir(videoFrames), numbers);
    if (usable < numbers.size()) {
        fail(source, QStringLiteral("%1 of its %2 annotated frames are there and whole; no film")
                         .arg(QString::number(usable), QString::number(numbers.size())));
        return;
    }
    std::optional<LinkedFrames> links;
    if (LinkedFrames::areNeeded(videoFrames, numbers) &&
        !links.emplace().create(videoFrames, numbers, &reason)) {
        fail(source, reason);
        return;
    }
    FilmOrder order;
    order.program = RuntimeConfig::ffmpegPath();
    order.folder = links ? links->path() : folder.absolutePath();
    order.inputPattern = SessionLayout::framePattern();
    order.film = film;
    order.fps = m_wishes.fps;
    order.crf = m_wishes.crf;
    order.pictures = numbers.size();
    run(source, order);
}

void SessionFilms::run(const DescribedSource &source, const FilmOrder &order)
{
    m_nickname = source.nickname;
    m_frames = order.pictures;
    m_console.printNow(QStringLiteral("%1: encoding %2, %3 per second, CRF %4")
                           .arg(source.nickname, ToolConsole::counted(order.pictures, "picture"),
                                QString::number(order.fps), QString::number(order.crf)));
    QString reason;
    const bool isMade = m_encoder.run(order, &reason);
    QCoreApplication::processEvents(); // Ctrl+C ends ffmpeg, too, and maybe before it is told here
    if (isMade)
        m_console.printNow(QStringLiteral("%1: made %2").arg(source.nickname, order.film));
    else if (m_interruption != 0)
        fail(source, QStringLiteral("interrupted; no film"));
    else
        fail(source, QStringLiteral("no film. ffmpeg says:\n%1").arg(reason));
}

void SessionFilms::fail(const DescribedSource &source, const QString &reason)
{
    m_exitCode = ExitCode::Findings;
    const QStringList lines =
        (source.nickname + QStringLiteral(": ") + reason).split(QLatin1Char('\n'));
    for (const QString &line : lines)
        m_console.printNow(line);
}

void SessionFilms::showProgress(const QString &output)
{
    const int picture = pictureIn(output);
    if (picture >= 0)
        m_console.setProgress(
            QStringLiteral("%1: picture %2 of %3")
                .arg(m_nickname, QString::number(picture), QString::number(m_frames)));
}
