#include "tests/roi/testsession.h"

#include <QDir>
#include <QDirIterator>
#include <QPainter>
#include <QProcess>

namespace {

QByteArray outputOf(const QString &commandLine, const QString &file)
{
    QStringList words = commandLine.split(QLatin1Char(' '));
    QProcess process;
    const QString program = words.takeFirst();
    process.start(program, words.replaceInStrings(QStringLiteral("FILE"), file));
    if (!process.waitForFinished())
        qFatal("%s does not run", qPrintable(program));
    return process.readAllStandardOutput();
}

} // namespace

TestSession::TestSession()
{
    write("manifest.csv", "SourceId,Source,ActualUTC,File,Status,SourceWidth,RSun\n" +
                              addFrames("10,AIA 171", "AIA_171", QSize(256, 192)) +
                              addFrames("18,HMI", "HMI", QSize(128, 96)));
    write("session.json",
          R"({"startUtc": "2024-05-01T12:00:00Z", "videoFps": 5, "videoCrf": 0, "sources": [
              {"sourceId": 10, "nickname": "AIA 171", "archiveName": "AIA_171"},
              {"sourceId": 18, "nickname": "HMI", "archiveName": "HMI"}]})");
}

void TestSession::write(const char *name, const QByteArray &content) const
{
    QFile file(filePath(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write %s", qPrintable(file.fileName()));
}

QByteArray TestSession::read(const char *name) const
{
    QFile file(filePath(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void TestSession::editDescriptor(const QByteArray &before, const QByteArray &after) const
{
    write("session.json", read("session.json").replace(before, after));
}

QMap<QString, QByteArray> TestSession::contents() const
{
    QMap<QString, QByteArray> contents;
    QDirIterator files(path(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        if (files.fileName() != QLatin1String("rois.json") &&
            !files.fileName().endsWith(QLatin1String(".mp4")) && file.open(QIODevice::ReadOnly))
            contents.insert(file.fileName(), file.readAll());
    }
    return contents;
}

QImage TestSession::frame(const QSize &size)
{
    QImage image(size, QImage::Format_RGB32);
    const int x = size.width() / 2;
    const int y = size.height() / 2;
    QPainter painter(&image);
    painter.fillRect(0, 0, x, y, Qt::red);
    painter.fillRect(x, 0, x, y, Qt::green);
    painter.fillRect(0, y, x, y, Qt::blue);
    painter.fillRect(x, y, x, y, Qt::white);
    return image;
}

/// The rows of the manifest.
QByteArray TestSession::addFrames(const char *source, const char *folder, const QSize &size) const
{
    QByteArray rows;
    QDir(path()).mkdir(QLatin1String(folder));
    for (const char *const minute : {"0", "1", "2"}) {
        const QByteArray file = QByteArray(folder) + "/frame_" + minute + ".png";
        frame(size).save(filePath(file));
        rows +=
            QByteArray(source) + ",2024-05-01T12:0" + minute + ":00Z," + file + ",OK,4096,1600\n";
    }
    return rows;
}

QString filmShape(const QString &path)
{
    return QString::fromLatin1(
        outputOf(QStringLiteral("ffprobe -v error -count_frames -of csv=p=0 -show_entries "
                                "stream=width,height,r_frame_rate,nb_read_frames FILE"),
                 path)
            .trimmed());
}

QImage filmFrame(const QString &path, int index)
{
    return QImage::fromData(
        outputOf(QStringLiteral("ffmpeg -v error -i FILE -vf select=eq(n\\,%1) -frames:v 1 "
                                "-f image2pipe -c:v png -")
                     .arg(index),
                 path));
}
