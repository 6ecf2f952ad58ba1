#pragma once

class ToolConsole;
struct SessionReport;

namespace ReportText {

/// Prints @p report for people, at most 100 columns wide; with all frames or the first and last.
void print(const SessionReport &report, bool listsFrames, ToolConsole &console);

} // namespace ReportText
