#pragma once

#include "session/acquisitionsettings.h"
#include "ui/sourcedetails.h"

namespace Ui {
class MainWindow;
}

/// The widgets in which the user says what to acquire, taken together.
namespace AcquisitionForm {

/// What the widgets say; an edit that shows no time gives an invalid one.
AcquisitionSettings settings(const Ui::MainWindow &form);

/// Interval and cadence as they stand.
RequestedSampling sampling(const Ui::MainWindow &form);

/// Lets the user change all of it, or nothing.
void setEnabled(const Ui::MainWindow &form, bool enabled);

} // namespace AcquisitionForm
