#pragma once

class QMainWindow;

namespace Ui {
class MainWindow;
}

/// The main window without a mouse.
namespace WindowKeys {

/// Gives the actions their keys, and the buttons of the tool bar a place in the order of Tab.
void set(QMainWindow *window, const Ui::MainWindow &form);

/// The key of Exit lies beside that of closing a tab: it must not end an hours-long run unasked.
void setExitKey(const Ui::MainWindow &form, bool idle);

} // namespace WindowKeys
