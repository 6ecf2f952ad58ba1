#pragma once

#include <QMessageBox>

class QString;

/// The boxes that the region tool shows over its dialog.
namespace RoiMessageBox {

/**
 * Shows @p text, as plain text, in a box titled "ROI video" and waits for OK.
 *
 * Text taller than half the screen scrolls: an encoder's last words run to a hundred lines, and
 * the button must stay in sight.
 */
void show(QMessageBox::Icon icon, const QString &text, QWidget *parent);

/// Asks the question @p text, as plain text; returns Save, Discard or, also for Esc, Cancel.
QMessageBox::StandardButton askToSave(const QString &text, QWidget *parent);

} // namespace RoiMessageBox
