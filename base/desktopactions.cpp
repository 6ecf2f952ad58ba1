#include "base/desktopactions.h"

#include "base/plainmessagebox.h"
#include "base/runtimeconfig.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QUrl>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("DesktopActions", text);
}

bool open(const QString &path)
{
    return QDesktopServices::openUrl(QUrl::fromLocalFile(path));
}

} // namespace

void DesktopActions::warn(QWidget *parent, const QString &title, const QString &text)
{
    PlainMessageBox::show(parent, QMessageBox::Warning, title, text);
}

bool DesktopActions::playVideo(QWidget *parent, const QString &path)
{
    const QFileInfo file(path);
    const QString shown = QDir::toNativeSeparators(path);
    if (!file.isFile()) {
        warn(parent, tr("Play video"), tr("Video file not found:\n%1").arg(shown));
        return false;
    }
    if (!open(file.absoluteFilePath())) {
        warn(parent, tr("Play video"),
             tr("The system video player could not open:\n%1").arg(shown));
        return false;
    }
    return true;
}

QString DesktopActions::chooseVideo(QWidget *parent, const QString &startFolder)
{
    return QFileDialog::getOpenFileName(parent, tr("Select video"), startFolder,
                                        tr("MP4 video (*.mp4);;All files (*.*)"));
}

bool DesktopActions::offerToChooseVideo(QWidget *parent, const QString &outputRoot)
{
    const QString text = tr("No MP4 video was found under:\n%1\n\nSelect a video manually?")
                             .arg(QDir::toNativeSeparators(outputRoot));
    return PlainMessageBox::ask(parent, tr("Play latest video"), text,
                                QMessageBox::Yes | QMessageBox::No,
                                QMessageBox::Yes) == QMessageBox::Yes;
}

void DesktopActions::openFolder(const QString &path)
{
    open(path);
}

void DesktopActions::showHelp(QWidget *parent)
{
    const QString page = RuntimeConfig::resolveAppPath(QStringLiteral("doc/help.html"));
    const QString shown = QDir::toNativeSeparators(page);
    if (!QFileInfo::exists(page))
        warn(parent, tr("Orvik help"), tr("Help file not found:\n%1").arg(shown));
    else if (!open(page))
        warn(parent, tr("Orvik help"), tr("The system browser could not open:\n%1").arg(shown));
}
