#include "roi/roisession.h"

#include "base/errortext.h"
#include "base/jsonfile.h"
#include "base/regularfile.h"
#include "base/utctext.h"
#include "output/manifestreader.h"
#include "output/sessionfiles.h"
#include "output/sessionkeys.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QSet>

#include <algorithm>

namespace {

/// Tells whether files exist by listing each folder once; a million calls to the file system take
/// many times longer.
class FileInventory final
{
public:
    bool contains(const QString &cleanPath)
    {
        const int slash = cleanPath.lastIndexOf(QLatin1Char('/'));
        const QString folder = cleanPath.left(slash + 1);
        auto names = m_names.find(folder);
        if (names == m_names.end())
            names = m_names.insert(folder, listing(folder));
        return names->contains(cleanPath.mid(slash + 1));
    }

private:
    static QSet<QString> listing(const QString &folder)
    {
        const QStringList names =
            QDir(folder).entryList(QDir::Files | QDir::Hidden, QDir::Unsorted);
        return {names.cbegin(), names.cend()};
    }

    QHash<QString, QSet<QString>> m_names; // by folder
};

QVector<RoiSourceFrame> framesFromManifest(const QVector<ManifestFrame> &rows, const QDir &session)
{
    FileInventory inventory;
    QVector<RoiSourceFrame> frames;
    for (const ManifestFrame &row : rows) {
        const QString file = QDir::cleanPath(session.absoluteFilePath(row.file));
        if (inventory.contains(file))
            frames.append({file, row.actualUtc, row.metadata});
    }
    return frames;
}

QVector<RoiSourceFrame> framesFromFolder(const QDir &folder)
{
    const QStringList names =
        folder.entryList({SessionFiles::frameFilter()}, QDir::Files, QDir::Name);
    QVector<RoiSourceFrame> frames;
    for (const QString &name : names)
        frames.append({QDir::cleanPath(folder.absoluteFilePath(name)), {}, {}});
    return frames;
}

QVector<RoiSource> sourcesFromJson(const QJsonArray &elements, const QDir &session,
                                   const ManifestFrames &manifest)
{
    QVector<RoiSource> sources;
    for (const QJsonValue &element : elements) {
        const QJsonObject object = element.toObject();
        RoiSource source;
        source.sourceId = object.value(SessionKeys::sourceId).toInt(source.sourceId);
        source.nickname = object.value(SessionKeys::nickname).toString();
        source.archiveName = object.value(SessionKeys::archiveName).toString();
        if (source.sourceId < 0 || source.archiveName.isEmpty())
            continue;
        source.folder = QDir::cleanPath(session.absoluteFilePath(source.archiveName));
        source.frames = framesFromManifest(manifest.bySource.value(source.sourceId), session);
        if (source.frames.isEmpty())
            source.frames = framesFromFolder(QDir(source.folder));
        sources.append(source);
    }
    return sources;
}

StoredSession sessionFromJson(const QJsonObject &descriptor, const QDir &directory)
{
    StoredSession session;
    session.directory = directory.absolutePath();
    session.startUtc = UtcText::fromText(descriptor.value(SessionKeys::startUtc).toString());
    session.videoFps = descriptor.value(SessionKeys::videoFps).toInt(session.videoFps);
    session.videoCrf = descriptor.value(SessionKeys::videoCrf).toInt(session.videoCrf);
    session.sourceOverlay =
        descriptor.value(SessionKeys::sourceOverlay).toBool(session.sourceOverlay);
    session.scaleOverlay = descriptor.value(SessionKeys::scaleOverlay).toBool(session.scaleOverlay);
    return session;
}

bool hasFrames(const RoiSource &source)
{
    return !source.frames.isEmpty();
}

/// The nearest existing folder at or above @p path, with all links followed; empty for a dangling
/// link.
QString canonicalAncestor(QString path)
{
    while (!QFileInfo::exists(path) && !QFileInfo(path).isSymLink() &&
           path != QFileInfo(path).path())
        path = QFileInfo(path).path();
    return QFileInfo(path).canonicalFilePath();
}

bool liesBelow(const RoiSource &source, const QString &sessionDirectory)
{
    if (QDir::isAbsolutePath(source.archiveName) ||
        source.archiveName.split(QLatin1Char('/')).contains(QStringLiteral("..")))
        return false;
    const QDir session(QFileInfo(sessionDirectory).canonicalFilePath());
    const QString written = QDir::cleanPath(session.absoluteFilePath(source.archiveName));
    if (written == session.path())
        return false;
    const QString reached = canonicalAncestor(written);
    const bool exists = QFileInfo::exists(written);
    return reached.startsWith(session.path() + QLatin1Char('/')) ||
           (!exists && reached == session.path());
}

} // namespace

int StoredSession::sourcesWithFrames() const
{
    return static_cast<int>(std::count_if(sources.cbegin(), sources.cend(), hasFrames));
}

int StoredSession::firstWithFrames() const
{
    const auto first = std::find_if(sources.cbegin(), sources.cend(), hasFrames);
    return first == sources.cend() ? 0 : static_cast<int>(first - sources.cbegin());
}

std::optional<StoredSession> RoiSession::load(const QString &directory, QString *errorText)
{
    const auto fail = [errorText](const QString &text) {
        return ErrorText::nothing(errorText, text);
    };
    const QDir session(QFileInfo(directory).absoluteFilePath());
    const QString descriptorPath = session.filePath(SessionFiles::descriptor());
    QFile descriptorFile(descriptorPath);
    if (!RegularFile::open(descriptorFile))
        return fail(
            QStringLiteral("The selected directory does not contain a readable session.json."));
    QString reason;
    const std::optional<QJsonObject> descriptor = JsonFile::load(descriptorPath, &reason);
    if (!descriptor)
        return fail(QStringLiteral("Invalid session.json: %1").arg(reason));

    // A missing manifest is no error: the folders are scanned for frames instead.
    const ManifestFrames manifest =
        ManifestReader::read(session.filePath(SessionFiles::manifest())).value_or(ManifestFrames());
    StoredSession loaded = sessionFromJson(*descriptor, session);
    if (!manifest.remark.isEmpty())
        loaded.remarks.append(QStringLiteral("WARNING ") + manifest.remark);
    loaded.sources =
        sourcesFromJson(descriptor->value(SessionKeys::sources).toArray(), session, manifest);
    if (loaded.sources.isEmpty())
        return fail(QStringLiteral("No datasource folders were found in this session."));
    return loaded;
}

bool RoiSession::mayWriteTo(const RoiSource &source, const QString &sessionDirectory,
                            QString *errorText)
{
    return liesBelow(source, sessionDirectory) ||
           ErrorText::fail(errorText,
                           QStringLiteral("The folder \"%1\" of %2 does not lie inside the session "
                                          "directory. Nothing is written there.")
                               .arg(source.archiveName, source.nickname));
}
