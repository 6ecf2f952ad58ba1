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
    process.start(program, words.replaceInStrings(u"FILE"_s, file));
    if (!process.waitForFinished())
        qFatal("%s does not run", qPrintable(program));
    return process.readAllStandardOutput();
}

} // namespace

TestSession::TestSession()
{
    write(u"manifest.csv"_s, "SourceId,Source,ActualUTC,File,Status,SourceWidth,RSun\n" +
                                 addFrames("10,AIA 171", u"AIA_171"_s, QSize(256, 192)) +
                                 addFrames("18,HMI", u"HMI"_s, QSize(128, 96)));
    write(u"session.json"_s,
          R"({"startUtc": "2024-05-01T12:00:00Z", "videoFps": 5, "videoCrf": 0, "sources": [
              {"sourceId": 10, "nickname": "AIA 171", "archiveName": "AIA_171"},
              {"sourceId": 18, "nickname": "HMI", "archiveName": "HMI"}]})");
}

void TestSession::write(const QString &name, const QByteArray &content) const
{
    QFile file(filePath(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write %s", qPrintable(file.fileName()));
}

QByteArray TestSession::read(const QString &name) const
{
    QFile file(filePath(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void TestSession::editDescriptor(const QByteArray &before, const QByteArray &after) const
{
    write(u"session.json"_s, read(u"session.json"_s).replace(before, after));
}

QMap<QString, QByteArray> TestSession::contents() const
{
    QMap<QString, QByteArray> contents;
    QDirIterator files(path(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString name = QDir(path()).relativeFilePath(files.next());
        if (!name.endsWith(u".mp4"_s) && name != u"rois.json"_s)
            contents.insert(name, read(name));
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
QByteArray TestSession::addFrames(const QByteArray &source, const QString &folder,
                                  const QSize &size) const
{
    QByteArray rows;
    QDir(path()).mkdir(folder);
    for (const char *const minute : {"0", "1", "2"}) {
        const QString file = folder + u"/frame_"_s + QLatin1String(minute) + u".png"_s;
        frame(size).save(filePath(file));
        rows += source + ",2024-05-01T12:0" + minute + ":00Z," + file.toUtf8() + ",OK,4096,1600\n";
    }
    return rows;
}

QString filmShape(const QString &path)
{
    return QString::fromLatin1(outputOf(u"ffprobe -v error -count_frames -of csv=p=0 -show_entries "
                                        "stream=width,height,r_frame_rate,nb_read_frames FILE"_s,
                                        path)
                                   .trimmed());
}

QImage filmFrame(const QString &path, int index)
{
    return QImage::fromData(outputOf(u"ffmpeg -v error -i FILE -vf select=eq(n\\,%1) -frames:v 1 "
                                     "-f image2pipe -c:v png -"_s.arg(index),
                                     path));
}
