#pragma once

#include "ui/mainwindow.h"

#include <QMessageBox>
#include <QSettings>
#include <QStringList>
#include <QTimer>

/// What the tests of the whole window share.
namespace WindowFixture {

/// Empties user settings, runtime configuration and catalog cache; the user settings are not those
/// of whoever runs the tests.
void reset();
void writeCatalog(const QByteArray &json);
QSettings &userSettings();

/// A part of the window; the test fails at once when it is missing.
template<typename Widget>
Widget *part(const QWidget &window, const char *objectName)
{
    auto *found = window.findChild<Widget *>(QLatin1String(objectName));
    if (!found)
        qFatal("no %s", objectName);
    return found;
}

/// A real click on the tool bar.
void clickToolButton(const MainWindow &window, const char *action);
/// Real clicks on a leaf, which becomes current, and on its box.
void clickLeaf(const MainWindow &window, const QString &text);
/// The leaf whose text begins with @p text.
QTreeWidgetItem *findLeaf(const MainWindow &window, const QString &text);
QString logText(const MainWindow &window);

/// Answers message boxes and file dialogs as they come up and remembers what they said.
class BoxCloser final : public QObject
{
public:
    BoxCloser();

    QStringList shown; ///< "title: text", of a file dialog "title: folder"
    QString chosen;    ///< the file; without one the answers are Cancel and No
};

} // namespace WindowFixture
