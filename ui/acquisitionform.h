#pragma once

#include "session/acquisitionsettings.h"
#include "ui/sourcedetails.h"

namespace Ui {
class MainWindow;
}

/// The widgets of the acquisition settings, as a group.
namespace AcquisitionForm {

/// The values of the widgets; a time field that does not show a time gives an invalid one.
AcquisitionSettings settings(const Ui::MainWindow &form);

/// The interval and the cadence shown.
RequestedSampling sampling(const Ui::MainWindow &form);

/// Enables or disables all of them.
void setEnabled(const Ui::MainWindow &form, bool enabled);

} // namespace AcquisitionForm
