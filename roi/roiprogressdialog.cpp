#include "roi/roiprogressdialog.h"

#include "roi/roivideogenerator.h"

#include <QLabel>

namespace {

/// Names of regions and datasources are shown as they stand, whatever markup they hold.
QLabel *makePlainLabel(const QString &text)
{
    auto *label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setAlignment(Qt::AlignCenter);
    label->setWordWrap(true);
    return label;
}

} // namespace

RoiProgressDialog::RoiProgressDialog(RoiVideoGenerator &generator, int frames, QWidget *parent)
    : QProgressDialog(QString(), tr("Cancel"), 0, frames, parent)
{
    constexpr int widthPx = 420; // holds a line of the label
    setWindowTitle(tr("Orvik - ROI video"));
    setLabel(makePlainLabel(tr("Preparing ROI video frames...")));
    setMinimumWidth(widthPx);
    setWindowModality(Qt::WindowModal);
    setMinimumDuration(0);
    setAutoReset(false); // the encoder still works after the last picture
    setAutoClose(false);
    connect(&generator, &RoiVideoGenerator::labelChanged, this, &QProgressDialog::setLabelText);
    connect(&generator, &RoiVideoGenerator::progressChanged, this, &QProgressDialog::setValue);
    connect(this, &QProgressDialog::canceled, &generator, &RoiVideoGenerator::cancel);
}
