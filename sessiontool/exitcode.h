#pragma once

/// The exit codes of the program.
enum class ExitCode {
    Fine = 0,
    Findings = 1,   ///< something is wrong with the session, and was reported
    WrongUsage = 2, ///< nothing was done
    Unusable = 3,   ///< a file cannot be read, or cannot or must not be written
};
