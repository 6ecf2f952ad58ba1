#pragma once

#include <QMessageBox>

class QString;

/**
 * Message boxes that show their text literally: names and paths in it might look like HTML.
 *
 * Text taller than half the screen scrolls, so that the buttons stay visible: the output of an
 * encoder runs to a hundred lines.
 */
namespace PlainMessageBox {

/// Shows @p text and waits for OK.
void show(QWidget *parent, QMessageBox::Icon icon, const QString &title, const QString &text);

/// Asks the question @p text; returns the button pressed, or the escape button for Esc.
QMessageBox::StandardButton ask(QWidget *parent, const QString &title, const QString &text,
                                QMessageBox::StandardButtons buttons,
                                QMessageBox::StandardButton defaultButton);

} // namespace PlainMessageBox
