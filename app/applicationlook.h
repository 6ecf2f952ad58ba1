#pragma once

class QApplication;

/// Gives the whole application its dark look: style, palette and tool tips.
void applyApplicationLook(QApplication &application);
