#pragma once

#include <QString>
#include <QStringList>

#include <optional>

/// What the program is asked to do.
struct ToolOrder
{
    enum class Command { Report, Verify, Recover, Encode };

    Command command = Command::Report;
    QString directory; ///< of the session
    // report
    bool json = false;
    bool frames = false;
    // verify
    bool decode = false;
    // encode
    std::optional<int> fps;
    std::optional<int> crf;
    bool replaceBroken = false;
};

/// What the command line says.
struct ToolRequest
{
    std::optional<ToolOrder> order; ///< nothing for help or version, or after a mistake
    QString text;                   ///< help or version
    QString mistake;                ///< a sentence; empty when there is none
};

namespace ToolOrders {

/// Whether frames per second, or an x264 rate factor, are allowed; limits as in the windows.
bool isFps(int fps);
bool isCrf(int crf);

/// Reads a command line; @p arguments begins with the program's own name.
ToolRequest parse(const QStringList &arguments);

} // namespace ToolOrders
