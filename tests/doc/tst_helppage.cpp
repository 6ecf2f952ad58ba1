#include "base/runtimeconfig.h"

#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QSet>
#include <QSettings>
#include <QTest>
#include <QTextDocumentFragment>

namespace {

QString readText(const QString &name)
{
    QFile file(QStringLiteral(ORVIK_SOURCE_FOLDER "/") + name);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

/// What stands in group 1 wherever @p pattern matches.
QStringList captured(const QString &pattern, const QString &text)
{
    const QRegularExpression expression(pattern, QRegularExpression::DotMatchesEverythingOption);
    QStringList found;
    for (auto it = expression.globalMatch(text); it.hasNext();)
        found.append(it.next().captured(1));
    return found;
}

QString withoutMarkup(const QString &html)
{
    return QTextDocumentFragment::fromHtml(html).toPlainText().simplified();
}

/// Every text literal of the program: in its forms, less what only a screen reader says, and in its
/// sources with neighbours joined.
QStringList programTexts()
{
    QStringList texts;
    for (const char *room : {"base", "client", "acquisition", "imaging", "output", "roi", "ui"}) {
        const QString folder = QLatin1String(room) + QLatin1Char('/');
        QDirIterator files(QStringLiteral(ORVIK_SOURCE_FOLDER "/") + folder,
                           {QStringLiteral("*.cpp"), QStringLiteral("*.ui")}, QDir::Files);
        while (files.hasNext()) {
            files.next();
            const QString code =
                readText(folder + files.fileName())
                    .remove(QRegularExpression(QStringLiteral(
                        "\"\\s+\"|name=\"accessible\\w+\">\\s*<string>[^<]*</string>")));
            const QString pattern = files.fileName().endsWith(QLatin1String(".ui"))
                                        ? QStringLiteral("<string>(.*?)</string>")
                                        : QStringLiteral("\"((?:[^\"\\\\\n]|\\\\.)*)\"");
            texts += captured(pattern, code);
        }
    }
    return texts;
}

/// Whether the parts of @p message between its dots stand in @p text, in their order.
bool holds(const QString &text, const QString &message)
{
    int position = 0;
    const QStringList parts = message.split(QChar(0x2026), Qt::SkipEmptyParts);
    for (const QString &part : parts) {
        const int found = text.indexOf(part.trimmed(), position);
        if (found < 0)
            return false;
        position = found + part.trimmed().size();
    }
    return true;
}

} // namespace

/// The help page says what the program says, and is whole in itself.
class TestHelpPage : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void labelsAreTheProgramsOwn();
    void messagesAreTheProgramsOwn();
    void keysAndDefaultsAreTheProgramsOwn();
    void shippedConfigurationHoldsTheDefaults();
    void nothingIsLoadedFromElsewhere();
    void linksLeadSomewhere();
    void structureServesScreenReaders();

private:
    QString m_page;
    QStringList m_texts;
};

void TestHelpPage::initTestCase()
{
    m_page = readText(QStringLiteral("doc/help.html"));
    m_texts = programTexts();
    QVERIFY(!m_page.isEmpty());
    QVERIFY(m_texts.size() > 300);
}

void TestHelpPage::labelsAreTheProgramsOwn()
{
    const QStringList labels = captured(QStringLiteral("<b class=\"ui\">(.*?)</b>"), m_page);
    QVERIFY(labels.size() > 50);
    for (const QString &html : labels) {
        const QString label = withoutMarkup(html);
        const bool known = m_texts.contains(label) ||
                           !m_texts.filter(QLatin1Char('>') + label + QLatin1Char('<')).isEmpty();
        QVERIFY2(known, qPrintable(label));
    }
}

void TestHelpPage::messagesAreTheProgramsOwn()
{
    const QStringList messages =
        captured(QStringLiteral("<code class=\"msg\">(.*?)</code>"), m_page);
    QVERIFY(messages.size() > 30);
    for (const QString &html : messages) {
        const QString message = withoutMarkup(html);
        const bool known = std::any_of(m_texts.cbegin(), m_texts.cend(),
                                       [&](const QString &text) { return holds(text, message); });
        QVERIFY2(known, qPrintable(message));
    }
}

void TestHelpPage::keysAndDefaultsAreTheProgramsOwn()
{
    RuntimeConfig::ensureRuntimeConfig();
    const QSettings file(RuntimeConfig::configFilePath(), QSettings::IniFormat);
    const QStringList rows =
        captured(QStringLiteral("(<th scope=\"row\"><code class=\"key\">.*?</code></td>)"), m_page);
    QSet<QString> described;
    for (const QString &row : rows) {
        const QString key = captured(QStringLiteral("\"key\">(.*?)</code>"), row).value(0);
        const QString value = captured(QStringLiteral("<td><code>(.*?)</code>"), row).value(0);
        QVERIFY2(m_texts.contains(key), qPrintable(key));
        if (file.contains(key))
            QCOMPARE(value, file.value(key).toString());
        described.insert(key);
    }
    const QStringList keys = file.allKeys();
    QVERIFY(described.contains(QSet<QString>(keys.cbegin(), keys.cend())));
    QCOMPARE(described.size(), keys.size() + 8); // and the presets of the windows
}

void TestHelpPage::shippedConfigurationHoldsTheDefaults()
{
    RuntimeConfig::ensureRuntimeConfig();
    const QSettings file(RuntimeConfig::configFilePath(), QSettings::IniFormat);
    const QSettings shipped(QStringLiteral(ORVIK_SOURCE_FOLDER "/packaging/orvik.ini"),
                            QSettings::IniFormat);
    QCOMPARE(shipped.allKeys(), file.allKeys()); // none missing: the comments survive a start
    const QStringList keys = shipped.allKeys();
    for (const QString &key : keys)
        QCOMPARE(shipped.value(key).toString(), file.value(key).toString());
}

void TestHelpPage::nothingIsLoadedFromElsewhere()
{
    QVERIFY(!m_page.contains(QLatin1String("<script")));
    QVERIFY(!m_page.contains(QLatin1String("url(")));
    QVERIFY(!m_page.contains(QLatin1String("<link")));
    const QStringList sources = captured(QStringLiteral(" src=\"([^\"]{0,20})"), m_page);
    for (const QString &source : sources)
        QVERIFY2(source.startsWith(QLatin1String("data:image/")), qPrintable(source));
}

void TestHelpPage::linksLeadSomewhere()
{
    const QStringList ids = captured(QStringLiteral(" id=\"([^\"]*)\""), m_page);
    QCOMPARE(QSet<QString>(ids.cbegin(), ids.cend()).size(), ids.size());
    const QStringList targets = captured(QStringLiteral(" href=\"([^\"]*)\""), m_page);
    for (const QString &target : targets)
        QVERIFY2(target.startsWith(QLatin1Char('#')) && ids.contains(target.mid(1)),
                 qPrintable(target));
}

void TestHelpPage::structureServesScreenReaders()
{
    int last = 0;
    const QStringList levels = captured(QStringLiteral("<h([1-6])[ >]"), m_page);
    for (const QString &digit : levels) {
        QVERIFY2(digit.toInt() <= last + 1, "a heading skips a level");
        last = digit.toInt();
    }
    QCOMPARE(captured(QStringLiteral("<img[^>]*? alt=\"([^\"]+)\""), m_page).size(),
             m_page.count(QLatin1String("<img")));
    QCOMPARE(m_page.count(QLatin1String("<caption")), m_page.count(QLatin1String("<table>")));
    QVERIFY(!m_page.contains(QLatin1String("<th>")));
}

QTEST_GUILESS_MAIN(TestHelpPage)

#include "tst_helppage.moc"
