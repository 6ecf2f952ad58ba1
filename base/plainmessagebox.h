#pragma once

#include <QMessageBox>

class QString;

/**
 * Boxes whose text is never guessed to be HTML: names and paths in it may hold any character.
 *
 * Text taller than half the screen scrolls: an encoder's last words run to a hundred lines, and
 * the buttons must stay in sight.
 */
namespace PlainMessageBox {

/// Shows @p text and waits for OK.
void show(QWidget *parent, QMessageBox::Icon icon, const QString &title, const QString &text);

/// Asks the question @p text; returns the button that was pressed, for Esc the one that means no.
QMessageBox::StandardButton ask(QWidget *parent, const QString &title, const QString &text,
                                QMessageBox::StandardButtons buttons,
                                QMessageBox::StandardButton defaultButton);

} // namespace PlainMessageBox
