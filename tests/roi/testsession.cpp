#include "tests/roi/testsession.h"

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QPainter>

namespace {

constexpr int framesPerSource = 3;

} // namespace

TestSession::TestSession()
    : m_manifest("SourceId,Source,RequestIndex,RequestedUTC,ActualUTC,DeltaSeconds,"
                 "ToleranceSeconds,ImageId,File,VideoFrame,Status,Scale,ScaleCorrection,"
                 "SourceWidth,SourceHeight,RSun,RefPixelX,RefPixelY\n")
    , m_descriptor({{QStringLiteral("startUtc"), QStringLiteral("2024-05-01T12:00:00Z")},
                    {QStringLiteral("videoFps"), 5},
                    {QStringLiteral("videoCrf"), 0},
                    {QStringLiteral("sources"), QJsonArray()}})
{
    addSource(10, QStringLiteral("AIA 171"), QSize(256, 192));
    addSource(18, QStringLiteral("HMI"), QSize(128, 96));
    write(QStringLiteral("manifest.csv"), m_manifest);
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
    write(QStringLiteral("session.json"), QJsonDocument(descriptor).toJson());
}

void TestSession::renameFirstFolder(const QString &archiveName) const
{
    QJsonArray sources = m_descriptor.value(QStringLiteral("sources")).toArray();
    QJsonObject first = sources.first().toObject();
    first.insert(QStringLiteral("archiveName"), archiveName);
    sources.replace(0, first);
    changeDescriptor({{QStringLiteral("sources"), sources}});
}

QMap<QString, QByteArray> TestSession::checksums() const
{
    QMap<QString, QByteArray> sums;
    QDirIterator files(path(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString name = QDir(path()).relativeFilePath(files.next());
        if (!name.endsWith(QLatin1String(".mp4")) && name != QLatin1String("rois.json"))
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
    for (int minute = 0; minute < framesPerSource; ++minute) {
        const QString file = QStringLiteral("%1/frame_%2.png").arg(folder).arg(minute);
        frame(size).save(filePath(file));
        m_manifest += QStringLiteral("%1,\"%2\",%3,\"\",\"2024-05-01T12:0%3:00Z\",0,30,5,\"%4\","
                                     "\"\",OK,,,4096,3072,1600,0,0\n")
                          .arg(QString::number(sourceId), nickname, QString::number(minute), file)
                          .toUtf8();
    }
    QJsonArray sources = m_descriptor.value(QStringLiteral("sources")).toArray();
    sources.append(QJsonObject{{QStringLiteral("sourceId"), sourceId},
                               {QStringLiteral("nickname"), nickname},
                               {QStringLiteral("archiveName"), folder}});
    m_descriptor.insert(QStringLiteral("sources"), sources);
}
