#pragma once

#include <QString>

class QWidget;

/// Hands files and folders to the desktop's own programs. When that fails, a warning box says so.
namespace DesktopActions {

/// Opens an MP4 in the system's video player; false after a warning that says why not.
bool playVideo(QWidget *parent, const QString &path);

/// Asks for an MP4, starting in @p startFolder; empty when the user cancelled.
QString chooseVideo(QWidget *parent, const QString &startFolder);

/// Whether the user, told that @p outputRoot holds no video, wants to choose one by hand.
bool offerToChooseVideo(QWidget *parent, const QString &outputRoot);

/// Opens a folder in the file manager; nothing happens when there is none.
void openFolder(const QString &path);

/// Opens the help page beside the program in the system's browser.
void showHelp(QWidget *parent);

/// A modal warning that shows @p text literally, even if a service put markup into it.
void warn(QWidget *parent, const QString &title, const QString &text);

} // namespace DesktopActions
