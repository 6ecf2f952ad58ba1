#include "ui/windowkeys.h"

#include "ui_mainwindow.h"

void WindowKeys::set(QMainWindow *window, const Ui::MainWindow &form)
{
    form.actionOpenOutputFolder->setShortcuts(QKeySequence::Open);
    form.actionPlayLatestVideo->setShortcut(QStringLiteral("Ctrl+L"));
    form.actionPlaySelectedVideo->setShortcut(QStringLiteral("Ctrl+Shift+L"));
    form.actionCreateRoiVideo->setShortcut(QStringLiteral("Ctrl+I"));
    form.actionStartAcquisition->setShortcut(QStringLiteral("Ctrl+Return"));
    form.actionStopAcquisition->setShortcut(QStringLiteral("Ctrl+."));
    setExitKey(form, true);
    form.actionRefreshCatalog->setShortcuts(QKeySequence::Refresh);
    form.actionHelpOrvik->setShortcuts(QKeySequence::HelpContents);
    // In no menu: without this their keys would go with a tool bar that is hidden.
    window->addActions({form.actionStartAcquisition, form.actionStopAcquisition});

    // Buttons of a tool bar take no focus of themselves; these follow the log.
    QWidget *previous = form.log;
    for (QAction *action :
         {form.actionStartAcquisition, form.actionStopAcquisition, form.actionOpenOutputFolder}) {
        QWidget *button = form.mainToolBar->widgetForAction(action);
        button->setFocusPolicy(Qt::TabFocus);
        QWidget::setTabOrder(previous, button);
        previous = button;
    }
    form.sourcesTree->setFocus();
}

void WindowKeys::setExitKey(const Ui::MainWindow &form, bool idle)
{
    form.actionExit->setShortcuts(idle ? QKeySequence::keyBindings(QKeySequence::Quit)
                                       : QList<QKeySequence>());
}
