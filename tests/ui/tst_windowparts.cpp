#include "ui/logview.h"
#include "ui/outputsearch.h"
#include "ui/sourcedetails.h"

#include <QDockWidget>
#include <QJsonDocument>
#include <QTextEdit>
#include <QtTest>

namespace {

CatalogSource source(const QByteArray &entry)
{
    return {{10, QStringLiteral("<b>%2</b>"), QStringLiteral("SDO/A&A")},
            QJsonDocument::fromJson(entry).object(),
            std::nullopt};
}

QString page(const CatalogSource &described)
{
    const QDateTime start(QDate(2024, 5, 1), QTime(10, 0), Qt::UTC);
    return SourceDetails::page(described, {start, start.addSecs(3600), 60});
}

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

/// Log, details and the search for finished work.
class TestWindowParts : public QObject
{
    Q_OBJECT

private slots:
    void titleCountsUntilCleared()
    {
        m_log.clear();
        for (const char *text : {"warning: x failed", "ERROR x", "plain", "ERROR y"})
            m_log.append(QString::fromLatin1(text));
        QCOMPARE(m_dock.windowTitle(), QStringLiteral("Log  -  ERR 2 / WARN 1"));
        m_log.clear();
        QCOMPARE(m_dock.windowTitle(), QStringLiteral("Log  -  ERR 0 / WARN 0"));
        QVERIFY(m_edit.document()->isEmpty());
    }

    void anyTextIsOneEntry()
    {
        m_edit.show();
        for (const QString &text :
             {QString(), QStringLiteral("a\nb\n\nc"), QStringLiteral("<b>x</b> &amp; %1"),
              QStringLiteral("太陽 الشمس ☀"), QString(1'000'000, QLatin1Char('x'))}) {
            m_log.clear();
            m_log.append(text);
            m_log.append(QStringLiteral("next"));
            const QString shown = m_edit.toPlainText();
            QCOMPARE(shown.mid(11, text.size()), text);
            QCOMPARE(shown.mid(11 + text.size(), 2), QStringLiteral("\n["));
            QVERIFY(shown.endsWith(QStringLiteral("] next\n")));
            QVERIFY(m_edit.textCursor().atEnd());
            QVERIFY(!m_edit.document()->isUndoAvailable());
        }
    }

    void optimisationFromMoreThanOneAndAHalfSteps()
    {
        const QString note = QStringLiteral("optimization:</b> requested sampling is 1 min, but");
        CatalogSource analysed = source("{}");
        analysed.analysis = SourceCadence{40, 90, 80, 100};
        QVERIFY(!page(analysed).contains(note));
        analysed.analysis->medianSeconds = 91;
        QVERIFY(page(analysed).contains(note));
    }

    void namesStayText()
    {
        const QString described = page(source(
            "{\"uiLabels\": [{\"label\": \"Observatory\", \"name\": \"S<D>O\"}, \"text\"]}"));
        QVERIFY(described.startsWith(QStringLiteral("<h2>&lt;b&gt;%2&lt;/b&gt;</h2><p><b>Catalog "
                                                    "path:</b> SDO/A&amp;A<br>")));
        QVERIFY(described.contains(QStringLiteral(
            "</p><table cellspacing='2' cellpadding='2'><tr><td><b>Observatory</b></td>"
            "<td>S&lt;D&gt;O</td></tr><tr><td><b></b></td><td></td></tr></table><hr>")));
    }

    void newestFilesAtAnyDepth()
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

private:
    QTextEdit m_edit;
    QDockWidget m_dock{QStringLiteral("Log")};
    LogView m_log{&m_edit, &m_dock};
};

QTEST_MAIN(TestWindowParts)
#include "tst_windowparts.moc"
