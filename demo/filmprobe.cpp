#include "demo/filmprobe.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

namespace {

constexpr int decodeWaitMs = 60000; // a film of the demo takes below a second

Film filmOf(const QJsonObject &answer)
{
    const QJsonObject stream = answer[QStringLiteral("streams")].toArray().first().toObject();
    const QJsonObject format = answer[QStringLiteral("format")].toObject();
    Film film;
    film.frames = stream[QStringLiteral("nb_read_frames")].toString().toInt();
    film.seconds = format[QStringLiteral("duration")].toString().toDouble();
    film.size = {stream[QStringLiteral("width")].toInt(), stream[QStringLiteral("height")].toInt()};
    return film;
}

} // namespace

std::optional<Film> FilmProbe::read(const QString &file, QString *errorText)
{
    QProcess ffprobe;
    ffprobe.start(QStringLiteral("ffprobe"),
                  {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-count_frames"),
                   QStringLiteral("-select_streams"), QStringLiteral("v:0"),
                   QStringLiteral("-show_entries"),
                   QStringLiteral("stream=nb_read_frames,width,height:format=duration"),
                   QStringLiteral("-of"), QStringLiteral("json"), file});
    const bool ended = ffprobe.waitForFinished(decodeWaitMs);
    // A damaged frame does not change the exit code; only the words on standard error tell.
    const QString complaint = QString::fromLocal8Bit(ffprobe.readAllStandardError()).trimmed();
    if (ended && ffprobe.exitCode() == 0 && complaint.isEmpty())
        return filmOf(QJsonDocument::fromJson(ffprobe.readAllStandardOutput()).object());
    if (errorText)
        *errorText = complaint.isEmpty() ? ffprobe.errorString() : complaint;
    return std::nullopt;
}
