#include "tests/ui/windowfixture.h"

#include "tests/support/literals.h"
#include "tests/support/testfolder.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QTextEdit>
#include <QToolBar>
#include <QTreeWidget>
#include <QtTest>

QSettings &WindowFixture::userSettings()
{
    static QSettings settings("Brannock Works"_s, "Orvik"_s);
    settings.sync();
    return settings;
}

void WindowFixture::reset()
{
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, TestFolder::path("config"_s));
    userSettings().clear();
    userSettings().sync();
    TestFolder::clearKeys();
    QFile::remove(TestFolder::path("sys/helioviewer_sources.json"_s));
}

void WindowFixture::writeCatalog(const QByteArray &json)
{
    QDir().mkpath(TestFolder::path("sys"_s));
    QFile file(TestFolder::path("sys/helioviewer_sources.json"_s));
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
        QWidget *modal = QApplication::activeModalWidget();
        if (auto *chooser = qobject_cast<QFileDialog *>(modal)) {
            shown.append(chooser->windowTitle() + ": "_s + chooser->directory().path());
            chooser->findChild<QLineEdit *>()->setText(chosen);
            static_cast<QDialog *>(chooser)->done(chosen.isEmpty() ? 0 : 1);
        }
        auto *box = qobject_cast<QMessageBox *>(modal);
        if (!box)
            return;
        QCOMPARE(box->textFormat(), Qt::PlainText); // a path or an answer may look like markup
        shown.append(box->windowTitle() + ": "_s + box->text());
        const QList<QAbstractButton *> buttons = box->buttons();
        QTest::mouseClick(chosen.isEmpty() ? buttons.last() : buttons.first(), Qt::LeftButton);
    });
    timer->start(0);
}
