#include "ui/outputsearch.h"

#include <QTemporaryDir>
#include <QtTest>

class TestOutputSearch : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void newestVideoWinsAtAnyDepth();
    void mixedCaseIsNoVideo();
    void nothingInAFolderThatIsNotThere();
    void newestSessionIsAFolder();
    void startFolderOfTheChooser();

private:
    QString create(const QString &name, int ageSeconds);
    QString path(const QString &name) const { return m_folder->filePath(name); }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void TestOutputSearch::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
}

QString TestOutputSearch::create(const QString &name, int ageSeconds)
{
    QDir().mkpath(QFileInfo(path(name)).path());
    QFile file(path(name));
    if (!file.open(QIODevice::WriteOnly) || file.write("x") != 1 || !file.flush())
        qFatal("cannot create a file");
    file.setFileTime(QDateTime::currentDateTime().addSecs(-ageSeconds),
                     QFileDevice::FileModificationTime);
    return path(name);
}

void TestOutputSearch::newestVideoWinsAtAnyDepth()
{
    create(QStringLiteral("shallow.mp4"), 11);
    const QString newest = create(QStringLiteral("session/AIA/roi.MP4"), 10);
    create(QStringLiteral("session/AIA/frame.png"), 0);
    QCOMPARE(OutputSearch::newestVideo(m_folder->path()), newest);
}

void TestOutputSearch::mixedCaseIsNoVideo()
{
    create(QStringLiteral("clip.Mp4"), 0);
    QCOMPARE(OutputSearch::newestVideo(m_folder->path()), QString());
}

void TestOutputSearch::nothingInAFolderThatIsNotThere()
{
    QCOMPARE(OutputSearch::newestVideo(path(QStringLiteral("gone"))), QString());
    QCOMPARE(OutputSearch::newestSession(path(QStringLiteral("gone"))), QString());
}

void TestOutputSearch::newestSessionIsAFolder()
{
    create(QStringLiteral("a/session.json"), 20);
    create(QStringLiteral("b/session.json"), 10);
    create(QStringLiteral("c/Session.json"), 0);
    QCOMPARE(OutputSearch::newestSession(m_folder->path()), path(QStringLiteral("b")));
}

void TestOutputSearch::startFolderOfTheChooser()
{
    const QString root = m_folder->path();
    const QString gone = path(QStringLiteral("gone"));
    QCOMPARE(OutputSearch::videoStartFolder(root, gone), root);
    create(QStringLiteral("session/film.mp4"), 0);
    QCOMPARE(OutputSearch::videoStartFolder(root, gone), path(QStringLiteral("session")));
    QCOMPARE(OutputSearch::videoStartFolder(root, QString()), path(QStringLiteral("session")));
    QCOMPARE(OutputSearch::videoStartFolder(root, QDir::tempPath()), QDir::tempPath());
}

QTEST_GUILESS_MAIN(TestOutputSearch)
#include "tst_outputsearch.moc"
