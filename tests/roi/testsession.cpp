#include "tests/roi/testsession.h"

#include "tests/support/testfolder.h"

#include <QDir>
#include <QDirIterator>
#include <QPainter>
#include <QProcess>
#include <QVariant>

namespace {

/// What the program that is named first prints.
QByteArray outputOf(QStringList words)
{
    QProcess process;
    process.start(words.takeFirst(), words);
    if (!process.waitForFinished())
        qFatal("%s does not run", qPrintable(process.program()));
    return process.readAllStandardOutput();
}

} // namespace

TestSession::TestSession()
{
    QByteArray rows = "SourceId,Source,ActualUTC,File,Status,SourceWidth,RSun\n";
    for (const char *const source : {"10,AIA 171", "18,HMI"}) {
        const QByteArray folder = QByteArray(source).mid(3).replace(' ', '_');
        QDir(path()).mkdir(QString::fromLatin1(folder));
        for (const char *const minute : {"0", "1", "2"}) {
            const QByteArray file = folder + "/frame_" + minute + ".png";
            frame(folder == "HMI" ? QSize(128, 96) : QSize(256, 192)).save(filePath(file));
            rows += source + QByteArray(",2024-05-01T12:0") + minute + ":00Z," + file +
                    ",OK,4096,1600\n";
        }
    }
    write("manifest.csv", rows);
    write("session.json",
          R"({"startUtc": "2024-05-01T12:00:00Z", "videoFps": 5, "videoCrf": 0, "sources": [
              {"sourceId": 10, "nickname": "AIA 171", "archiveName": "AIA_171"},
              {"sourceId": 18, "nickname": "HMI", "archiveName": "HMI"}]})");
}

void TestSession::write(const QByteArray &name, const QByteArray &content) const
{
    QFile file(filePath(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write %s", qPrintable(file.fileName()));
}

QByteArray TestSession::read(const QByteArray &name) const
{
    QFile file(filePath(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
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

QString useStandIn(const QString &program, const FakeProgram::Reply &reply)
{
    const QString path = FakeProgram::install(QStringLiteral("bin/fake-") + program);
    FakeProgram::setScript(path, {reply});
    TestFolder::setKey(QStringLiteral("paths/") + program, path);
    return path;
}

QString filmShape(const QString &path)
{
    const QString entries =
        QStringLiteral("ffprobe -v error -count_frames -of csv=p=0 -show_entries "
                       "stream=width,height,r_frame_rate,nb_read_frames");
    return QString::fromLatin1(outputOf(entries.split(QLatin1Char(' ')) << path).trimmed());
}

QImage filmFrame(const QString &path, int index)
{
    const QString filter = QStringLiteral("-vf select=eq(n\\,%1) -frames:v 1 -f image2pipe -c:v "
                                          "png -")
                               .arg(index);
    QStringList words{QStringLiteral("ffmpeg"), QStringLiteral("-i"), path};
    QImage image = QImage::fromData(outputOf(words += filter.split(QLatin1Char(' '))));
    image = image.convertToFormat(QImage::Format_RGB32);
    for (int channel = 0; channel < image.sizeInBytes(); ++channel)
        image.bits()[channel] = image.constBits()[channel] > 127 ? 255 : 0;
    return image;
}
