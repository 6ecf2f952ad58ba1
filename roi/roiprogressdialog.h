#pragma once

#include <QProgressDialog>

class RoiVideoGenerator;
class ScaleLookup;

/**
 * Shows the progress of a run and lets the user cancel it.
 *
 * Canceling hides the dialog at once; the run may take a second longer to end.
 */
class RoiProgressDialog final : public QProgressDialog
{
    Q_OBJECT

public:
    /// For the films themselves; @p frames is the number of pictures to be made.
    RoiProgressDialog(RoiVideoGenerator &generator, int frames, QWidget *parent);
    /// For lookups at the service; shown when the first one begins.
    RoiProgressDialog(ScaleLookup &lookup, QWidget *parent);

private:
    RoiProgressDialog(const QString &text, int frames, QWidget *parent);
    void showQuestion(const QString &text);
};
