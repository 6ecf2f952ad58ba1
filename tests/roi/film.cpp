#include "tests/roi/film.h"

#include <QProcess>
#include <QStringList>

namespace {

QByteArray outputOf(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished())
        qFatal("%s does not run", qPrintable(program));
    return process.readAllStandardOutput();
}

} // namespace

Film Film::probe(const QString &path)
{
    const QStringList fields =
        QString::fromLatin1(
            outputOf(QStringLiteral("ffprobe"),
                     {QStringLiteral("-v"), QStringLiteral("error"),
                      QStringLiteral("-count_frames"), QStringLiteral("-show_entries"),
                      QStringLiteral("stream=width,height,r_frame_rate,nb_read_frames"),
                      QStringLiteral("-of"), QStringLiteral("csv=p=0"), path}))
            .trimmed()
            .split(QLatin1Char(','));
    if (fields.size() != 4)
        return {};
    return {fields.at(3).toInt(), QSize(fields.at(0).toInt(), fields.at(1).toInt()), fields.at(2)};
}

QImage Film::frame(const QString &path, int index)
{
    return QImage::fromData(
        outputOf(QStringLiteral("ffmpeg"),
                 {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-i"), path,
                  QStringLiteral("-vf"), QStringLiteral("select=eq(n\\,%1)").arg(index),
                  QStringLiteral("-frames:v"), QStringLiteral("1"), QStringLiteral("-f"),
                  QStringLiteral("image2pipe"), QStringLiteral("-c:v"), QStringLiteral("png"),
                  QStringLiteral("-")}));
}
