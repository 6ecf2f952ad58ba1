#include "roi/roiprogressdialog.h"

#include "roi/roivideogenerator.h"
#include "roi/scalelookup.h"

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

RoiProgressDialog::RoiProgressDialog(const QString &text, int frames, QWidget *parent)
    : QProgressDialog(QString(), tr("Cancel"), 0, frames, parent)
{
    constexpr int widthPx = 420; // holds a line of the label
    setWindowTitle(tr("Orvik - ROI video"));
    setLabel(makePlainLabel(text));
    setMinimumWidth(widthPx);
    setWindowModality(Qt::WindowModal);
    setAutoReset(false); // the encoder still works after the last picture
}

RoiProgressDialog::RoiProgressDialog(RoiVideoGenerator &generator, int frames, QWidget *parent)
    : RoiProgressDialog(tr("Preparing ROI video frames..."), frames, parent)
{
    setMinimumDuration(0);
    connect(&generator, &RoiVideoGenerator::labelChanged, this, &QProgressDialog::setLabelText);
    connect(&generator, &RoiVideoGenerator::progressChanged, this, &QProgressDialog::setValue);
}

RoiProgressDialog::RoiProgressDialog(ScaleLookup &lookup, QWidget *parent)
    : RoiProgressDialog(QString(), 0, parent)
{
    connect(&lookup, &ScaleLookup::statusChanged, this, &RoiProgressDialog::showQuestion);
}

void RoiProgressDialog::showQuestion(const QString &text)
{
    setLabelText(text);
    show();
}
