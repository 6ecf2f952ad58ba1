#include "ui/acquisitionform.h"

#include "ui/catalogtree.h"
#include "ui_mainwindow.h"

namespace {

QDateTime utcOf(const UtcEdit *edit)
{
    return edit->showsTime() ? edit->dateTime().toUTC() : QDateTime();
}

} // namespace

AcquisitionSettings AcquisitionForm::settings(const Ui::MainWindow &form)
{
    AcquisitionSettings settings;
    settings.startUtc = utcOf(form.startEdit);
    settings.endUtc = utcOf(form.endEdit);
    settings.cadenceSeconds = form.cadenceSpin->value();
    settings.maxTimeErrorSeconds = form.timeErrorSpin->value();
    settings.useSourceTimingProfiles = form.sourceTimingProfilesCheck->isChecked();
    settings.imageWidth = form.widthSpin->value();
    settings.videoFps = form.fpsSpin->value();
    settings.videoCrf = form.crfSpin->value();
    settings.keepFrames = form.keepFramesCheck->isChecked();
    settings.sourceOverlay = form.sourceOverlayCheck->isChecked();
    settings.scaleOverlay = form.scaleOverlayCheck->isChecked();
    settings.createVideos = form.createVideosCheck->isChecked();
    settings.sources = CatalogTree::tickedSources(form.sourcesTree);
    return settings;
}

RequestedSampling AcquisitionForm::sampling(const Ui::MainWindow &form)
{
    return {form.startEdit->dateTime().toUTC(), form.endEdit->dateTime().toUTC(),
            form.cadenceSpin->value()};
}

void AcquisitionForm::setEnabled(const Ui::MainWindow &form, bool enabled)
{
    const std::initializer_list<QWidget *> choices = {form.sourcesTree,
                                                      form.aiaButton,
                                                      form.clearButton,
                                                      form.startEdit,
                                                      form.endEdit,
                                                      form.cadenceSpin,
                                                      form.timeErrorSpin,
                                                      form.sourceTimingProfilesCheck,
                                                      form.widthSpin,
                                                      form.fpsSpin,
                                                      form.crfSpin,
                                                      form.keepFramesCheck,
                                                      form.sourceOverlayCheck,
                                                      form.scaleOverlayCheck,
                                                      form.createVideosCheck};
    for (QWidget *choice : choices)
        choice->setEnabled(enabled);
}
