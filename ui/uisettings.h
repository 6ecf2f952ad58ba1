#pragma once

#include "ui/catalogtree.h"

#include <QString>

class QMainWindow;

namespace Ui {
class MainWindow;
}

/**
 * What the user chose, kept in the platform's per-user store between runs.
 *
 * For some fields sys/orvik.ini may hold presets; they apply until the user has saved a value. A
 * stored value of the wrong type is not an error: a number reads as 0, which its field clamps; a
 * box is ticked; a time is ignored.
 */
namespace UiSettings {

/// Sets the fields of the settings tabs: the user's value, else the preset, else the default.
void loadFields(const Ui::MainWindow &form);

/// Restores geometry, docks, splitter and tree header, as far as they were stored.
void restoreLayout(QMainWindow *window, const Ui::MainWindow &form);

/// The datasources that were ticked and current; texts that are not numbers are skipped.
CatalogTree::Selection loadSelection();

/// Stores fields, layout, ticks and current datasource of the window.
void save(const QMainWindow &window, const Ui::MainWindow &form);

/// Folder of the video that was chosen last; empty before the first.
QString lastVideoFolder();
void saveLastVideoFolder(const QString &folder);

} // namespace UiSettings
