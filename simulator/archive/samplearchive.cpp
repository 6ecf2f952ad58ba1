#include "simulator/archive/archive.h"

#include "simulator/archive/cadence.h"
#include "simulator/archive/servicetime.h"

#include <QDateTime>

namespace Simulator {

namespace {

struct SampleSource
{
    const char *path;
    const char *nickname;
    int sourceId;
    int widthPx;
    int heightPx;
    double rsunPx; ///< at 1 au, unless the orbit is fixed
    double refPixelX;
    double refPixelY;
    const char *start; ///< null without any image
    const char *end;
    CadenceLaw law;
    int spacingSeconds;
    int jitterSeconds;
    Orbit orbit;
    int layeringOrder;
};

constexpr CadenceLaw regular = CadenceLaw::Regular;
constexpr CadenceLaw jittered = CadenceLaw::Jittered;
constexpr CadenceLaw gaps = CadenceLaw::Gaps;
constexpr CadenceLaw bursts = CadenceLaw::Bursts;
constexpr Orbit fixed = Orbit::Fixed;
constexpr Orbit earth = Orbit::Earth;
constexpr Orbit inner = Orbit::SunEarthL1;
constexpr Orbit solo = Orbit::SolarOrbiter;

constexpr const char *today = "2026-09-06 17:03:09";
constexpr qint64 sampledAt = 1788715680; // 2026-09-06 17:28:00, when the archive was looked at
constexpr qint64 newestLag = 86400;      // what was within a day of that was still growing

// clang-format off
constexpr SampleSource sampleSources[] = {
    {"SDO/AIA/94", "AIA 94", 8, 4096, 4096, 1599.407, 2048.5, 2048.5, "2010-06-02 00:05:38", today, gaps, 12, 0, earth, 1},
    {"SDO/AIA/131", "AIA 131", 9, 4096, 4096, 1599.407, 2048.5, 2048.5, "2010-06-02 00:05:45", today, gaps, 12, 0, earth, 1},
    {"SDO/AIA/171", "AIA 171", 10, 4096, 4096, 1599.407, 2048.5, 2048.5, "2010-06-02 00:05:36", today, regular, 12, 0, earth, 1},
    {"SDO/AIA/193", "AIA 193", 11, 4096, 4096, 1599.407, 2048.5, 2048.5, "2010-06-02 00:05:31", today, regular, 12, 0, earth, 1},
    {"SDO/AIA/211", "AIA 211", 12, 4096, 4096, 1599.407, 2048.5, 2048.5, "2010-06-02 00:05:37", today, regular, 12, 0, earth, 1},
    {"SDO/AIA/304", "AIA 304", 13, 4096, 4096, 1599.407, 2048.5, 2048.5, "2010-06-02 00:05:44", today, regular, 12, 0, earth, 1},
    {"SDO/AIA/335", "AIA 335", 14, 4096, 4096, 1599.407, 2048.5, 2048.5, "2010-06-02 00:05:39", today, gaps, 12, 0, earth, 1},
    {"SDO/AIA/1600", "AIA 1600", 15, 4096, 4096, 1599.407, 2048.5, 2048.5, "2010-06-02 00:05:53", today, jittered, 36, 6, earth, 1},
    {"SDO/AIA/1700", "AIA 1700", 16, 4096, 4096, 1599.407, 2048.5, 2048.5, "2010-06-02 00:05:43", today, jittered, 36, 6, earth, 1},
    {"SDO/AIA/4500", "AIA 4500", 17, 4096, 4096, 1599.407, 2048.5, 2048.5, "2010-06-02 00:00:08", today, regular, 3600, 0, earth, 1},
    {"SDO/HMI/continuum", "HMI Int", 18, 4096, 4096, 1599.2, 2048.5, 2048.5, "2010-12-06 06:53:41", "2026-09-06 14:28:26", regular, 45, 0, earth, 1},
    {"SDO/HMI/magnetogram", "HMI Mag", 19, 4096, 4096, 1599.2, 2048.5, 2048.5, "2010-12-06 06:53:41", "2026-09-06 14:28:26", regular, 45, 0, earth, 1},
    {"SOHO/EIT/171", "EIT 171", 0, 1024, 1024, 365.08, 512.74, 521.95, "1996-01-15 21:39:21", today, jittered, 21600, 40, inner, 1},
    {"SOHO/EIT/195", "EIT 195", 1, 1024, 1024, 365.1, 512.5, 521.0, "1996-01-15 20:51:33", today, jittered, 720, 20, inner, 1},
    {"SOHO/EIT/304", "EIT 304", 3, 1024, 1024, 364.9, 512.35, 520.99, "1996-01-15 22:00:11", today, jittered, 21600, 40, inner, 1},
    {"SOHO/LASCO/C2/white-light", "LASCO C2", 4, 1024, 1024, 80.64, 512.0, 506.0, "1995-12-08 01:33:16", "2026-09-06 03:48:05", gaps, 720, 33, fixed, 2},
    {"SOHO/LASCO/C3/white-light", "LASCO C3", 5, 1024, 1024, 17.14, 519.2, 533.5, "1996-01-15 03:57:30", "2026-09-06 03:42:05", gaps, 720, 33, fixed, 3},
    {"SOHO/MDI/magnetogram", "MDI Mag", 6, 1024, 1024, 484.6, 512.8, 512.0, "1996-04-21 00:30:04", "2011-01-11 22:39:00", gaps, 5760, 0, inner, 1},
    {"SOHO/MDI/continuum", "MDI Int", 7, 1024, 1024, 484.6, 512.85, 511.98, "1996-05-19 19:08:35", "2011-01-11 22:39:00", gaps, 21600, 0, inner, 1},
    {"STEREO_A/SECCHI/EUVI/171", "EUVI-A 171", 20, 2048, 2048, 625.0, 1024.5, 1024.5, "2006-12-04 05:00:16", "2026-09-03 23:54:00", gaps, 7200, 0, fixed, 1},
    {"STEREO_A/SECCHI/EUVI/195", "EUVI-A 195", 21, 2048, 2048, 625.0, 1024.5, 1024.5, "2006-12-04 05:00:30", "2026-09-03 23:54:00", gaps, 300, 0, fixed, 1},
    {"STEREO_A/SECCHI/COR1/white-light", "COR1-A", 28, 512, 512, 66.0, 256.5, 256.5, "2006-12-04 05:00:09", "2026-09-03 23:54:00", gaps, 300, 0, fixed, 2},
    {"STEREO_A/SECCHI/COR2/white-light", "COR2-A", 29, 2048, 2048, 68.0, 1024.5, 1024.5, "2006-12-04 05:07:30", "2026-09-03 23:54:00", gaps, 900, 0, fixed, 3},
    {"STEREO_B/SECCHI/EUVI/195", "EUVI-B 195", 25, 2048, 2048, 580.0, 1024.5, 1024.5, "2006-12-07 05:00:31", "2014-09-27 16:31:17", gaps, 300, 0, fixed, 1},
    {"PROBA2/SWAP/174", "SWAP 174", 32, 1024, 1024, 303.0, 512.5, 512.5, "2010-01-04 17:00:50", today, gaps, 107, 11, earth, 1},
    {"GOES/SUVI/94", "GOES-R SUVI 94", 2000, 1280, 1280, 387.0, 640.5, 640.5, "2023-05-05 00:00:11", today, regular, 240, 0, earth, 1},
    {"GOES/SUVI/195", "GOES-R SUVI 195", 2003, 1280, 1280, 387.0, 640.5, 640.5, "2023-05-05 00:00:41", today, regular, 240, 0, earth, 1},
    {"GOES/SUVI/304", "GOES-R SUVI 304", 2005, 1280, 1280, 387.0, 640.5, 640.5, "2023-05-05 00:01:01", today, regular, 240, 0, earth, 1},
    {"GOES/CCOR-1/CCOR-1/white-light", "GOES CCOR-1", 132, 2048, 1920, 50.0, 1024.5, 960.5, "2024-10-01 00:07:30", today, regular, 900, 0, fixed, 3},
    {"GONG/GONG/H-alpha/6562", "GONG H-alpha", 94, 2048, 2048, 900.0, 1024.5, 1024.5, "2010-08-01 00:00:14", today, gaps, 60, 8, fixed, 1},
    {"MLSO/COSMO/KCor/735", "COSMO KCor", 83, 1024, 1024, 170.0, 512.5, 512.5, "2013-09-30 18:57:54", "2026-09-05 22:14:40", jittered, 60, 25, fixed, 2},
    {"SOLO/EUI/FSI/174", "EUI FSI 174", 84, 3040, 3072, 216.0, 1520.5, 1536.5, "2020-11-20 00:00:16", "2025-01-09 22:20:16", gaps, 600, 120, solo, 1},
    {"SOLO/EUI/HRI/174", "EUI HRI 174", 86, 2048, 2048, 5617.86, 5988.29, -665.89, "2020-05-20 21:12:10", "2024-12-31 23:40:45", bursts, 10, 0, fixed, 1},
    {"IRIS/SJI/1330", "IRIS SJI 1330", 88, 176, 196, 2874.88, -1296.99, -1341.66, "2013-07-17 21:40:41", "2026-08-30 11:20:08", bursts, 20, 0, fixed, 1},
    {"Hinode/XRT/Al_poly/Open", "XRT Al_poly/Open", 48, 2048, 2048, 933.0, 1024.5, 1024.5, "2006-10-25 04:08:01", "2026-09-05 18:01:43", bursts, 20, 4, fixed, 1},
    {"Hinode/XRT/C_poly/Any", "XRT C_poly/Any", 10008, 2048, 2048, 933.0, 1024.5, 1024.5, nullptr, nullptr, bursts, 20, 4, fixed, 1},
    {"Hinode/XRT/Any/Any", "XRT Any/Any", 10001, 2048, 2048, 933.0, 1024.5, 1024.5, nullptr, nullptr, bursts, 20, 4, fixed, 1},
    {"TRACE/171", "TRACE 171", 75, 1024, 1024, 1919.0, 900.0, 300.0, "2008-09-18 00:00:54", "2008-10-06 22:55:32", bursts, 40, 5, fixed, 1},
    {"Yohkoh/SXT/AlMgMn", "SXT AlMgMn", 33, 1024, 1024, 390.0, 512.5, 512.5, "1991-09-11 21:15:48", "2001-12-14 20:58:32", gaps, 14400, 3000, fixed, 1},
    {"RHESSI/3-6keV/Back Projection", "RHESSI", 95, 101, 101, 629.25, 642.43, 279.29, "2002-02-13 12:29:40", "2018-04-05 06:46:40", bursts, 60, 0, fixed, 1},
    {"RHESSI/12-25keV/Back Projection", "RHESSI", 97, 101, 101, 629.25, 642.43, 279.29, "2002-02-13 12:29:40", "2018-04-05 06:46:40", bursts, 60, 0, fixed, 1},
    {"RHESSI/25-50keV/Back Projection", "RHESSI", 98, 101, 101, 629.25, 642.43, 279.29, "2002-02-13 12:29:40", "2018-04-05 06:46:40", bursts, 60, 0, fixed, 1},
    {"RHESSI/25-50keV/Clean", "RHESSI", 104, 101, 101, 629.25, 642.43, 279.29, "2002-02-13 12:29:40", "2018-04-05 06:46:40", bursts, 60, 0, fixed, 1},
    {"PUNCH/WFI+NFI/Total Brightness", "PUNCH", 131, 4096, 4096, 11.8, 2048.5, 2048.5, "2025-06-10 00:08:01", today, jittered, 1920, 20, fixed, 3},
    {"PUNCH/WFI+NFI/Polarized Brightness", "PUNCH", 134, 4096, 4096, 11.8, 2048.5, 2048.5, "2025-06-10 00:08:01", today, jittered, 1920, 20, fixed, 3},
};
// clang-format on

/// From a time on, the spacing of an observatory's pictures.
struct Period
{
    qint64 from;
    int spacingSeconds;
};

constexpr int outageSeconds = 50 * 86400;

constexpr Period aiaPeriods[] = {
    {1280620800, 36},            // 2010-08-01: the first weeks came unthinned
    {1640995200, 1800},          // 2022-01-01: for some weeks little was ingested
    {1648771200, 36},            // 2022-04-01
    {1732622400, outageSeconds}, // 2024-11-26: the data centre was flooded
    {1736942400, 36},            // 2025-01-15
};

ArchiveSource toSource(const SampleSource &sample)
{
    ArchiveSource source;
    source.path = QString::fromLatin1(sample.path);
    source.nickname = QString::fromLatin1(sample.nickname);
    source.sourceId = sample.sourceId;
    source.widthPx = sample.widthPx;
    source.heightPx = sample.heightPx;
    source.rsunPx = sample.rsunPx;
    source.refPixelX = sample.refPixelX;
    source.refPixelY = sample.refPixelY;
    source.start = QString::fromLatin1(sample.start);
    source.end = QString::fromLatin1(sample.end);
    source.law = sample.law;
    source.spacingSeconds = sample.spacingSeconds;
    source.jitterSeconds = sample.jitterSeconds;
    source.orbit = sample.orbit;
    source.layeringOrder = sample.layeringOrder;
    return source;
}

/// The innermost two levels of some telescopes have names of their own.
void nameLevels(ArchiveSource &source)
{
    const QString observatory = QStringLiteral("Observatory");
    const QString instrument = QStringLiteral("Instrument");
    if (source.path.startsWith(QLatin1String("Hinode/XRT/")))
        source.levelLabels = QStringList{observatory, instrument, QStringLiteral("Filter Wheel 1"),
                                         QStringLiteral("Filter Wheel 2")};
    else if (source.path.startsWith(QLatin1String("Yohkoh/")))
        source.levelLabels = QStringList{observatory, instrument, QStringLiteral("Filter")};
    else if (source.path.startsWith(QLatin1String("RHESSI/")))
        source.levelLabels = QStringList{observatory, QStringLiteral("Energy Band"),
                                         QStringLiteral("Reconstruction Method")};
}

/// What makes some datasources different from a row of the table.
void addHabits(ArchiveSource &source)
{
    if (source.path.startsWith(QLatin1String("SDO/AIA/")) && source.spacingSeconds == 12) {
        for (const Period &period : aiaPeriods) // each band has its own second in the cycle
            source.changes.append(
                {archiveTimeText(period.from + source.sourceId), period.spacingSeconds});
    } else if (source.path.startsWith(QLatin1String("SOHO/EIT/"))) {
        // Since mid-2010 two sets a day are left, about 01:13 and 13:06.
        source.changes = {{QStringLiteral("2010-08-04 01:13:11"), 43200}};
        source.oddShiftSeconds = -420;
    } else if (source.path.startsWith(QLatin1String("MLSO/"))) {
        source.dayStartHour = 17;
        source.dayEndHour = 2;
    } else if (source.path.startsWith(QLatin1String("PUNCH/"))) {
        source.alphaWhereDark = true;
    } else if (source.path.startsWith(QLatin1String("Hinode/XRT/"))) {
        source.framing = Framing::Binned;
        source.groupedSourceId = source.path.endsWith(QLatin1String("/Any/Any")) ? 48 : -1;
    } else if (source.law == CadenceLaw::Bursts && source.widthPx > 101) {
        source.framing = Framing::SubField;
    }
}

/// Moves the end of a datasource that is still growing by as much as time has gone on.
void growTo(qint64 presentTime, ArchiveSource &source)
{
    const std::optional<qint64> end = parseArchiveTime(source.end);
    if (end && *end > sampledAt - newestLag && presentTime > sampledAt)
        source.end = archiveTimeText(*end + presentTime - sampledAt);
}

/// The catalog's end is the time of the last picture.
void endAtLastPicture(ArchiveSource &source)
{
    const Cadence cadence(source);
    if (cadence.slotCount() > 0)
        source.end = archiveTimeText(cadence.timeOf(cadence.slotCount() - 1));
}

} // namespace

std::shared_ptr<const Archive> Archive::sample()
{
    return sampleAt(QDateTime::fromSecsSinceEpoch(sampledAt, Qt::UTC));
}

std::shared_ptr<const Archive> Archive::sampleAt(const QDateTime &presentUtc)
{
    QVector<ArchiveSource> sources;
    for (const SampleSource &sample : sampleSources) {
        ArchiveSource source = toSource(sample);
        nameLevels(source);
        addHabits(source);
        growTo(presentUtc.toSecsSinceEpoch(), source);
        endAtLastPicture(source);
        sources.append(source);
    }
    return std::make_shared<const Archive>(std::move(sources));
}

} // namespace Simulator
