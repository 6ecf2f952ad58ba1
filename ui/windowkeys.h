#pragma once

class QMainWindow;

namespace Ui {
class MainWindow;
}

/// Keyboard control of the main window.
namespace WindowKeys {

/// Sets the shortcuts of the actions and puts the buttons of the tool bar into the tab order.
void set(QMainWindow *window, const Ui::MainWindow &form);

/// Exit has its shortcut only while idle: Ctrl+Q is next to Ctrl+W and must not end a long run.
void setExitKey(const Ui::MainWindow &form, bool idle);

} // namespace WindowKeys
