#include "tests/roi/testsession.h"

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QJsonArray>
#include <QJsonDocument>
#include <QPainter>
#include <QProcess>

namespace {

QByteArray outputOf(const QString &commandLine, const QString &lastArgument)
{
    QStringList words = commandLine.split(QLatin1Char(' '));
    QProcess process;
    const QString program = words.takeFirst();
    process.start(program, words.replaceInStrings(u"FILE"_s, lastArgument));
    if (!process.waitForFinished())
        qFatal("%s does not run", qPrintable(program));
    return process.readAllStandardOutput();
}

} // namespace

TestSession::TestSession()
    : m_manifest("SourceId,Source,ActualUTC,File,Status,SourceWidth,RSun\n")
    , m_descriptor({{u"startUtc"_s, u"2024-05-01T12:00:00Z"_s},
                    {u"videoFps"_s, 5},
                    {u"videoCrf"_s, 0},
                    {u"sources"_s, QJsonArray()}})
{
    addSource(10, u"AIA 171"_s, QSize(256, 192));
    addSource(18, u"HMI"_s, QSize(128, 96));
    write(u"manifest.csv"_s, m_manifest);
    changeDescriptor({});
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

void TestSession::changeDescriptor(const QJsonObject &members) const
{
    QJsonObject descriptor = m_descriptor;
    for (auto member = members.begin(); member != members.end(); ++member)
        descriptor.insert(member.key(), member.value());
    write(u"session.json"_s, QJsonDocument(descriptor).toJson());
}

void TestSession::renameFirstFolder(const QString &archiveName) const
{
    QJsonArray sources = m_descriptor.value(u"sources"_s).toArray();
    QJsonObject first = sources.first().toObject();
    first.insert(u"archiveName"_s, archiveName);
    sources.replace(0, first);
    changeDescriptor({{u"sources"_s, sources}});
}

QMap<QString, QByteArray> TestSession::checksums() const
{
    QMap<QString, QByteArray> sums;
    QDirIterator files(path(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString name = QDir(path()).relativeFilePath(files.next());
        if (!name.endsWith(u".mp4"_s) && name != u"rois.json"_s)
            sums.insert(name, QCryptographicHash::hash(read(name), QCryptographicHash::Sha256));
    }
    return sums;
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

void TestSession::addSource(int sourceId, const QString &nickname, const QSize &size)
{
    const QString folder = QString(nickname).replace(QLatin1Char(' '), QLatin1Char('_'));
    QDir(path()).mkpath(folder);
    for (const char *minute : {"0", "1", "2"}) {
        const QString file = u"%1/frame_%2.png"_s.arg(folder, QLatin1String(minute));
        frame(size).save(filePath(file));
        m_manifest += u"%1,\"%2\",\"2024-05-01T12:0%3:00Z\",\"%4\",OK,4096,1600\n"_s
                          .arg(QString::number(sourceId), nickname, QLatin1String(minute), file)
                          .toUtf8();
    }
    QJsonArray sources = m_descriptor.value(u"sources"_s).toArray();
    sources.append(QJsonObject{
        {u"sourceId"_s, sourceId}, {u"nickname"_s, nickname}, {u"archiveName"_s, folder}});
    m_descriptor.insert(u"sources"_s, sources);
}

Film Film::probe(const QString &path)
{
    const QByteArrayList fields =
        outputOf(u"ffprobe -v error -count_frames -of csv=p=0 -show_entries "
                 "stream=width,height,r_frame_rate,nb_read_frames FILE"_s,
                 path)
            .trimmed()
            .split(',');
    if (fields.size() != 4)
        return {};
    return {fields.at(3).toInt(), QSize(fields.at(0).toInt(), fields.at(1).toInt()),
            QString::fromLatin1(fields.at(2))};
}

QImage Film::frame(const QString &path, int index)
{
    return QImage::fromData(outputOf(u"ffmpeg -v error -i FILE -vf select=eq(n\\,%1) -frames:v 1 "
                                     "-f image2pipe -c:v png -"_s.arg(index),
                                     path));
}
