#include "acquisition/sessionlayout.h"

#include "acquisition/acquisitionlog.h"
#include "base/errortext.h"
#include "base/filenames.h"
#include "base/runtimeconfig.h"
#include "base/utctext.h"
#include "output/sessionfiles.h"
#include "session/acquisitionsettings.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QSet>

namespace {

/// A link that leads nowhere does not exist, yet its name is taken.
bool isTaken(const QString &path)
{
    const QFileInfo info(path);
    return info.exists() || info.isSymLink();
}

} // namespace

std::optional<SessionFolders> SessionLayout::create(const QString &outputRoot,
                                                    const AcquisitionSettings &settings,
                                                    QString *errorText)
{
    if (!QDir().mkpath(outputRoot))
        return ErrorText::nothing(errorText, AcquisitionLog::cannotCreateOutputRoot());
    const std::optional<QString> directory =
        createSessionDirectory(outputRoot, settings.startUtc, settings.endUtc);
    if (!directory)
        return ErrorText::nothing(errorText, AcquisitionLog::cannotCreateSessionDirectory());

    const QHash<int, SourceFolder> sources =
        sourceFolders(*directory, settings.sources, settings.startUtc);
    for (const SourceFolder &folder : sources)
        QDir().mkpath(folder.videoFramesDirectory);
    return SessionFolders{*directory, sources};
}

std::optional<QString> SessionLayout::createSessionDirectory(const QString &outputRoot,
                                                             const QDateTime &startUtc,
                                                             const QDateTime &endUtc)
{
    const QDir root(outputRoot);
    const QString name = QStringLiteral("%1__%2").arg(UtcText::toFolderText(startUtc),
                                                      UtcText::toFolderText(endUtc));
    QString candidate = name;
    for (int number = 2; !root.mkdir(candidate); ++number) {
        if (!isTaken(root.absoluteFilePath(candidate)))
            return std::nullopt; // not for its name
        candidate = QStringLiteral("%1_%2").arg(name, QString::number(number));
    }
    return root.absoluteFilePath(candidate);
}

QHash<int, SourceFolder> SessionLayout::sourceFolders(const QString &sessionDirectory,
                                                      const QVector<DataSource> &sources,
                                                      const QDateTime &startUtc)
{
    const QDir session(sessionDirectory);
    QHash<int, SourceFolder> folders;
    QSet<QString> taken;
    for (const DataSource &source : sources) {
        if (folders.contains(source.sourceId))
            continue; // listed twice, it is still one datasource
        QString name = FileNames::datasourceFolder(source.nickname, startUtc);
        if (taken.contains(name.toLower())) // some disks do not tell "Rhessi" from "RHESSI"
            name = FileNames::datasourceFolder(source.nickname, startUtc,
                                               QLatin1Char('_') + QString::number(source.sourceId));
        taken.insert(name.toLower());
        const QString directory = session.absoluteFilePath(name);
        folders.insert(
            source.sourceId,
            {name, directory, QDir(directory).filePath(SessionFiles::videoFramesFolder())});
    }
    return folders;
}

QString SessionLayout::framePattern()
{
    return SessionFiles::videoFramesFolder() + QLatin1Char('/') + SessionFiles::framePattern();
}

FilmOrder SessionLayout::filmOrder(const SourceFolder &folder, int pictures,
                                   const AcquisitionSettings &settings)
{
    FilmOrder order;
    order.program = RuntimeConfig::ffmpegPath();
    order.folder = folder.directory;
    order.inputPattern = framePattern();
    order.film = QDir(folder.directory).filePath(SessionFiles::film(folder.name));
    order.fps = settings.videoFps;
    order.crf = settings.videoCrf;
    order.pictures = pictures;
    return order;
}
