#include "tools/pictures/album.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QPixmap>
#include <QTextStream>
#include <QTimer>
#include <QWidget>

namespace {

constexpr int photographQuality = 82; // no block is seen at the size that the page shows
constexpr int pollMs = 20;

} // namespace

Album::Album(const QString &folder) : m_folder(folder)
{
    m_complete = QDir().mkpath(folder);
}

void Album::addWidget(const QString &name, QWidget *widget)
{
    QCoreApplication::processEvents(); // what is still to be laid out
    addDrawing(name, widget->grab().toImage());
}

void Album::addDrawing(const QString &name, const QImage &image)
{
    const QString file = path(name + QStringLiteral(".png"));
    keep(image.save(file), file);
}

void Album::addPhotograph(const QString &name, const QImage &image)
{
    const QString file = path(name + QStringLiteral(".jpg"));
    keep(image.save(file, nullptr, photographQuality), file);
}

void Album::addText(const QString &name, const QString &file)
{
    const QString copy = path(name + QStringLiteral(".txt"));
    QFile::remove(copy);
    keep(QFile::copy(file, copy), copy);
}

void Album::keep(bool written, const QString &path)
{
    QTextStream(written ? stdout : stderr)
        << (written ? QStringLiteral("picture ") : QStringLiteral("cannot write ")) << path
        << Qt::endl;
    m_complete = m_complete && written;
}

QString Album::path(const QString &fileName) const
{
    return QDir(m_folder).absoluteFilePath(fileName);
}

bool waitUntil(const std::function<bool()> &isTrue, int limitMs)
{
    QElapsedTimer since;
    since.start();
    QEventLoop loop;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &loop, &QEventLoop::quit);
    poll.start(pollMs);
    while (!isTrue() && since.elapsed() < limitMs)
        loop.exec();
    return isTrue();
}
