#pragma once

#include <QProgressDialog>

class RoiVideoGenerator;

/**
 * Shows how far a run has come, and lets the user cancel it.
 *
 * Canceling hides it at once, while the run may still take a second to end.
 */
class RoiProgressDialog final : public QProgressDialog
{
    Q_OBJECT

public:
    /// @p frames is the number of pictures to be made.
    RoiProgressDialog(RoiVideoGenerator &generator, int frames, QWidget *parent);
};
