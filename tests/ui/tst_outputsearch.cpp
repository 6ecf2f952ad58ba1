#include "ui/outputsearch.h"

#include <QTemporaryDir>
#include <QtTest>

class TestOutputSearch : public QObject
{
    Q_OBJECT

private slots:
    void newestFilesAtAnyDepth();
};

namespace {

QString create(const QTemporaryDir &folder, const char *name, int ageSeconds)
{
    QString path = folder.filePath(QLatin1String(name));
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) ||
        !file.setFileTime(QDateTime::currentDateTime().addSecs(-ageSeconds),
                          QFileDevice::FileModificationTime))
        qFatal("cannot create a file");
    return path;
}

} // namespace

void TestOutputSearch::newestFilesAtAnyDepth()
{
    const QTemporaryDir folder;
    create(folder, "shallow.mp4", 11);
    const QString film = create(folder, "b/AIA/roi.MP4", 10);
    create(folder, "mixed case.Mp4", 0);
    create(folder, "a/session.json", 11);
    const QString session = create(folder, "b/session.json", 10);
    create(folder, "c/Session.json", 0);
    QCOMPARE(OutputSearch::newestVideo(folder.path()), film);
    QCOMPARE(OutputSearch::newestSession(folder.path()), QFileInfo(session).path());
    QCOMPARE(OutputSearch::newestSession(folder.filePath(QStringLiteral("gone"))), QString());
}

QTEST_GUILESS_MAIN(TestOutputSearch)
#include "tst_outputsearch.moc"
