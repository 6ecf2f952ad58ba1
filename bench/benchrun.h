#pragma once

#include "session/acquisitionsettings.h"

#include <QString>
#include <QStringList>

#include <optional>

/// The arguments of two of the programs: --base URL --out DIR --frames N --width W.
struct BenchRun
{
    QString baseUrl;
    QString outputDirectory;
    int frames = 0;
    int widthPx = 0;
    QStringList switches; ///< any other argument, as it stands

    /// Nothing, and a message on standard error, when one of the four is missing or not a number.
    static std::optional<BenchRun> fromArguments(const QStringList &arguments);

    /// One session of AIA 171 at a minute's cadence with all annotations and without a film.
    AcquisitionSettings settings() const;

    /// Points the program's own sys/orvik.ini at the service and the output directory.
    void writeConfiguration() const;
};
