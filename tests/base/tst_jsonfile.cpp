#include "base/jsonfile.h"

#include <QJsonObject>
#include <QtTest>

#include <csignal>
#include <sys/resource.h>

class TestJsonFile : public QObject
{
    Q_OBJECT

private slots:
    void init() { QCOMPARE(JsonFile::save(m_path, m_old), JsonFile::SaveResult::Saved); }

    void savedObjectReadsBack()
    {
        const QJsonObject object{{QStringLiteral("Sch\u00f6n"), 9007199254740991.0}};
        QCOMPARE(JsonFile::save(m_path, object), JsonFile::SaveResult::Saved);
        QVERIFY(JsonFile::load(m_path) == object);
    }

    void diskFullHalfWayKeepsTheOldFile_data()
    {
        QTest::addColumn<int>("length");

        QTest::newRow("seen when it is written") << 100'000;
        QTest::newRow("seen when the buffer is flushed") << 2'000;
    }

    void diskFullHalfWayKeepsTheOldFile()
    {
        QFETCH(int, length);

        const QJsonObject large{{QStringLiteral("text"), QString(length, QLatin1Char('x'))}};
        std::signal(SIGXFSZ, SIG_IGN);
        rlimit unlimited{};
        QCOMPARE(getrlimit(RLIMIT_FSIZE, &unlimited), 0);
        const rlimit small{1000, unlimited.rlim_max};
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &small), 0);
        const JsonFile::SaveResult result = JsonFile::save(m_path, large);
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &unlimited), 0);
        QCOMPARE(result, JsonFile::SaveResult::CannotCommit);
        QVERIFY(JsonFile::load(m_path) == m_old);
        QCOMPARE(QDir(m_folder.path()).entryList(QDir::Files).size(), 1); // no temporary file
    }

    void failureTellsItsReason()
    {
        QString errorText;
        QFile file(m_path);
        QVERIFY(file.resize(5)); // cut off
        QVERIFY(!JsonFile::load(m_path, &errorText));
        QCOMPARE(errorText, QStringLiteral("unterminated object"));

        const QString nowhere = m_folder.filePath(QStringLiteral("no folder/x.json"));
        QCOMPARE(JsonFile::save(nowhere, {}), JsonFile::SaveResult::CannotOpen);
        QVERIFY(!JsonFile::load(nowhere, &errorText));
        QCOMPARE(errorText, QStringLiteral("No such file or directory"));
        QVERIFY(!JsonFile::load(nowhere));
    }

private:
    QTemporaryDir m_folder;
    QString m_path = m_folder.filePath(QStringLiteral("session.json"));
    QJsonObject m_old{{QStringLiteral("key"), QStringLiteral("value")}};
};

QTEST_APPLESS_MAIN(TestJsonFile)
#include "tst_jsonfile.moc"
