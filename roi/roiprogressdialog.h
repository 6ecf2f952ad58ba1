#pragma once

#include <QProgressDialog>

class RoiVideoGenerator;

/**
 * Shows the progress of a run and lets the user cancel it.
 *
 * Canceling hides the dialog at once; the run may take a second longer to end.
 */
class RoiProgressDialog final : public QProgressDialog
{
    Q_OBJECT

public:
    /// @p frames is the number of pictures to be made.
    RoiProgressDialog(RoiVideoGenerator &generator, int frames, QWidget *parent);
};
