#include "fuzz/scratch.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <cstdio>

namespace {

const QTemporaryDir &folder()
{
    static const QString memory = QStringLiteral("/dev/shm");
    static const QTemporaryDir made(QDir(QFileInfo::exists(memory) ? memory : QDir::tempPath())
                                        .filePath(QStringLiteral("fuzz")));
    return made;
}

/// Readers may warn as they like, a million times.
void printFatal(QtMsgType type, const QMessageLogContext & /*context*/, const QString &text)
{
    if (type == QtFatalMsg)
        std::fprintf(stderr, "%s\n", qPrintable(text));
}

} // namespace

/// Called by libFuzzer before the first input.
extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    qInstallMessageHandler(&printFatal);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static const QApplication application(*argc, *argv);
    Scratch::require(folder().isValid(), "a folder to write to");
    return 0;
}

QByteArray Scratch::bytes(const uint8_t *data, std::size_t size)
{
    return {reinterpret_cast<const char *>(data), static_cast<int>(size)};
}

QString Scratch::path(const QString &name)
{
    return folder().filePath(name);
}

QString Scratch::write(const QString &name, const QByteArray &content)
{
    QFile file(path(name));
    require(QDir().mkpath(QFileInfo(file).path()) && file.open(QIODevice::WriteOnly) &&
                file.write(content) == content.size(),
            "room for a file");
    return file.fileName();
}

void Scratch::require(bool holds, const char *what)
{
    if (!holds)
        qFatal("not so: %s", what);
}
