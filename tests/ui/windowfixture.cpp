#include "tests/ui/windowfixture.h"

#include "tests/support/testfolder.h"

#include <QAbstractButton>
#include <QApplication>
#include <QTextEdit>
#include <QToolBar>
#include <QTreeWidget>
#include <QtTest>

QSettings &WindowFixture::userSettings()
{
    static QSettings settings(QStringLiteral("Brannock Works"), QStringLiteral("Orvik"));
    settings.sync();
    return settings;
}

void WindowFixture::reset()
{
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope,
                       TestFolder::path(QStringLiteral("config")));
    userSettings().clear();
    userSettings().sync();
    TestFolder::clearKeys();
    QFile::remove(TestFolder::path(QStringLiteral("sys/helioviewer_sources.json")));
}

void WindowFixture::writeCatalog(const QByteArray &json)
{
    QDir().mkpath(TestFolder::path(QStringLiteral("sys")));
    QFile file(TestFolder::path(QStringLiteral("sys/helioviewer_sources.json")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(json);
}

void WindowFixture::clickToolButton(const MainWindow &window, const char *action)
{
    QWidget *button =
        part<QToolBar>(window, "mainToolBar")->widgetForAction(part<QAction>(window, action));
    QTest::mouseClick(button, Qt::LeftButton);
}

void WindowFixture::clickLeaf(const MainWindow &window, const QString &text)
{
    auto *tree = part<QTreeWidget>(window, "sourcesTree");
    QTreeWidgetItem *leaf = findLeaf(window, text);
    QVERIFY(leaf != nullptr);
    tree->scrollToItem(leaf);
    const QRect row = tree->visualItemRect(leaf);
    QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, row.center());
    QTest::mouseClick(tree->viewport(), Qt::LeftButton, {},
                      QPoint(row.left() + row.height() / 2, row.center().y()));
}

QTreeWidgetItem *WindowFixture::findLeaf(const MainWindow &window, const QString &text)
{
    return part<QTreeWidget>(window, "sourcesTree")
        ->findItems(text, Qt::MatchStartsWith | Qt::MatchRecursive)
        .value(0);
}

QString WindowFixture::logText(const MainWindow &window)
{
    return part<QTextEdit>(window, "log")->toPlainText();
}

WindowFixture::BoxCloser::BoxCloser()
{
    auto *timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, [this] {
        auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (box == nullptr)
            return;
        shown.append(box->windowTitle() + QStringLiteral(": ") + box->text());
        QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
    });
    timer->start(0);
}
