#pragma once

#include <QJsonObject>

struct SessionReport;

namespace ReportJson {

/// The whole report; its keys are described in doc/orvik-session.1 and must not change.
QJsonObject toJson(const SessionReport &report);

} // namespace ReportJson
