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
    double rsunPx;
    double refPixelX;
    double refPixelY;
    const char *start; ///< empty for a group
    const char *end;
    CadenceLaw law;
    int spacingSeconds;
    int jitterSeconds;
    bool staysWithEarth = false;
    double rollDegrees = 0.0;
    int layeringOrder = 1;
    int groupedSourceId = -1;
};

constexpr CadenceLaw steady = CadenceLaw::Steady;
constexpr CadenceLaw gaps = CadenceLaw::Gaps;
constexpr CadenceLaw bursts = CadenceLaw::Bursts;
constexpr bool earth = true; // the telescope is near it
constexpr bool away = false;

constexpr const char *today = "2026-09-06 17:03:09";
constexpr qint64 sampledAt = 1788715680; // 2026-09-06 17:28:00, when the archive was looked at
constexpr qint64 newestLag = 86400;      // what was within a day of that was still growing

// clang-format off
constexpr SampleSource sampleSources[] = {
    {"SDO/AIA/94", "AIA 94", 8, 4096, 4096, 1599.407, 2048.5, 2048.5, "2010-06-02 00:05:38", today, gaps, 36, 0, earth},
    {"SDO/AIA/131", "AIA 131", 9, 4096, 4096, 1599.407, 2048.5, 2048.5, "2010-06-02 00:05:45", today, gaps, 36, 0, earth},
    {"SDO/AIA/171", "AIA 171", 10, 4096, 4096, 1599.407, 2048.5, 2048.5, "2010-06-02 00:05:36", today, steady, 36, 0, earth},
    {"SDO/AIA/193", "AIA 193", 11, 4096, 4096, 1599.407, 2048.5, 2048.5, "2010-06-02 00:05:31", today, steady, 36, 0, earth},
    {"SDO/AIA/211", "AIA 211", 12, 4096, 4096, 1599.407, 2048.5, 2048.5, "2010-06-02 00:05:37", today, steady, 36, 0, earth},
    {"SDO/AIA/304", "AIA 304", 13, 4096, 4096, 1599.407, 2048.5, 2048.5, "2010-06-02 00:05:44", today, steady, 36, 0, earth},
    {"SDO/AIA/335", "AIA 335", 14, 4096, 4096, 1599.407, 2048.5, 2048.5, "2010-06-02 00:05:39", today, gaps, 36, 0, earth},
    {"SDO/AIA/1600", "AIA 1600", 15, 4096, 4096, 1599.407, 2048.5, 2048.5, "2010-06-02 00:05:53", today, steady, 36, 6, earth},
    {"SDO/AIA/1700", "AIA 1700", 16, 4096, 4096, 1599.407, 2048.5, 2048.5, "2010-06-02 00:05:43", today, steady, 36, 6, earth},
    {"SDO/AIA/4500", "AIA 4500", 17, 4096, 4096, 1599.407, 2048.5, 2048.5, "2010-06-02 00:00:08", today, steady, 3600, 0, earth},
    {"SDO/HMI/continuum", "HMI Int", 18, 4096, 4096, 1599.2, 2048.5, 2048.5, "2010-12-06 06:53:41", "2026-09-06 14:28:26", steady, 45, 0, earth},
    {"SDO/HMI/magnetogram", "HMI Mag", 19, 4096, 4096, 1599.2, 2048.5, 2048.5, "2010-12-06 06:53:41", "2026-09-06 14:28:26", steady, 45, 0, earth},
    {"SOHO/EIT/171", "EIT 171", 0, 1024, 1024, 368.8, 512.74, 521.95, "1996-01-16 01:06:20", today, steady, 43200, 40, earth},
    {"SOHO/EIT/195", "EIT 195", 1, 1024, 1024, 368.8, 512.5, 521.0, "1996-01-16 01:13:42", today, steady, 43200, 40, earth},
    {"SOHO/EIT/304", "EIT 304", 3, 1024, 1024, 368.6, 512.35, 520.99, "1996-01-16 01:19:11", today, steady, 43200, 40, earth},
    {"SOHO/LASCO/C2/white-light", "LASCO C2", 4, 1024, 1024, 80.64, 512.0, 506.0, "1995-12-08 01:33:16", "2026-09-06 03:48:05", gaps, 720, 33, away, 0.0, 2},
    {"SOHO/LASCO/C3/white-light", "LASCO C3", 5, 1024, 1024, 17.14, 519.2, 533.5, "1996-01-15 03:57:30", "2026-09-06 03:42:05", gaps, 720, 33, away, 0.45, 3},
    {"SOHO/MDI/magnetogram", "MDI Mag", 6, 1024, 1024, 489.5, 512.8, 512.0, "1996-04-21 00:30:04", "2011-01-11 22:39:00", gaps, 5760, 0, earth},
    {"SOHO/MDI/continuum", "MDI Int", 7, 1024, 1024, 489.5, 512.85, 511.98, "1996-05-19 19:08:35", "2011-01-11 22:39:00", gaps, 21600, 0, earth},
    {"STEREO_A/SECCHI/EUVI/171", "EUVI-A 171", 20, 2048, 2048, 625.0, 1024.5, 1024.5, "2006-12-04 05:00:16", "2026-09-03 23:54:00", gaps, 7200, 0},
    {"STEREO_A/SECCHI/EUVI/195", "EUVI-A 195", 21, 2048, 2048, 625.0, 1024.5, 1024.5, "2006-12-04 05:00:30", "2026-09-03 23:54:00", gaps, 300, 0},
    {"STEREO_A/SECCHI/COR1/white-light", "COR1-A", 28, 512, 512, 66.0, 256.5, 256.5, "2006-12-04 05:00:09", "2026-09-03 23:54:00", gaps, 300, 0, away, 0.0, 2},
    {"STEREO_A/SECCHI/COR2/white-light", "COR2-A", 29, 2048, 2048, 68.0, 1024.5, 1024.5, "2006-12-04 05:07:30", "2026-09-03 23:54:00", gaps, 900, 0, away, 0.0, 3},
    {"STEREO_B/SECCHI/EUVI/195", "EUVI-B 195", 25, 2048, 2048, 580.0, 1024.5, 1024.5, "2006-12-07 05:00:31", "2014-09-27 16:31:17", gaps, 300, 0},
    {"PROBA2/SWAP/174", "SWAP 174", 32, 1024, 1024, 303.0, 512.5, 512.5, "2010-01-04 17:00:50", today, gaps, 107, 11, earth},
    {"GOES/SUVI/94", "GOES-R SUVI 94", 2000, 1280, 1280, 387.0, 640.5, 640.5, "2023-05-05 00:00:11", today, steady, 240, 0, earth},
    {"GOES/SUVI/195", "GOES-R SUVI 195", 2003, 1280, 1280, 387.0, 640.5, 640.5, "2023-05-05 00:00:41", today, steady, 240, 0, earth},
    {"GOES/SUVI/304", "GOES-R SUVI 304", 2005, 1280, 1280, 387.0, 640.5, 640.5, "2023-05-05 00:01:01", today, steady, 240, 0, earth},
    {"GOES/CCOR-1/CCOR-1/white-light", "GOES CCOR-1", 132, 2048, 1920, 50.0, 1024.5, 960.5, "2024-10-01 00:07:30", today, steady, 900, 0},
    {"GONG/GONG/H-alpha/6562", "GONG H-alpha", 94, 2048, 2048, 900.0, 1024.5, 1024.5, "2010-08-01 00:00:14", today, gaps, 60, 8},
    {"MLSO/COSMO/KCor/735", "COSMO KCor", 83, 1024, 1024, 170.0, 512.5, 512.5, "2013-09-30 18:57:54", "2026-09-05 22:14:40", bursts, 60, 25},
    {"SOLO/EUI/FSI/174", "EUI FSI 174", 84, 3040, 3072, 350.0, 1528.3, 1519.6, "2020-11-20 00:00:16", "2025-01-09 22:20:16", gaps, 600, 120, away, 2.87},
    {"SOLO/EUI/HRI/174", "EUI HRI 174", 86, 2048, 2048, 5617.86, 5988.29, -665.89, "2020-05-20 21:12:10", "2024-12-31 23:40:45", bursts, 10, 0, away, 2.87},
    {"IRIS/SJI/1330", "IRIS SJI 1330", 88, 176, 196, 2874.88, -1296.99, -1341.66, "2013-07-17 21:40:41", "2026-08-30 11:20:08", bursts, 20, 0, away, 0.06},
    {"Hinode/XRT/Al_poly/Open", "XRT Al_poly/Open", 48, 2048, 2048, 933.0, 1012.3, 1041.8, "2006-10-25 04:08:01", "2026-09-05 18:01:43", bursts, 20, 4, away, 0.29},
    {"Hinode/XRT/C_poly/Any", "XRT C_poly/Any", 10012, 2048, 2048, 933.0, 1012.3, 1041.8, "", "", bursts, 20, 4, away, 0.29, 1, 49},
    {"Hinode/XRT/Any/Any", "XRT Any/Any", 10001, 2048, 2048, 933.0, 1012.3, 1041.8, "", "", bursts, 20, 4, away, 0.29, 1, 48},
    {"TRACE/171", "TRACE 171", 75, 1024, 1024, 1919.0, 900.0, 300.0, "2008-09-18 00:00:54", "2008-10-06 22:55:32", bursts, 40, 5},
    {"Yohkoh/SXT/AlMgMn", "SXT AlMgMn", 33, 1024, 1024, 390.0, 512.5, 512.5, "1991-09-11 21:15:48", "2001-12-14 20:58:32", gaps, 14400, 3000},
    {"RHESSI/3-6keV/Back Projection", "RHESSI", 95, 101, 101, 629.25, 642.43, 279.29, "2002-02-13 12:29:40", "2018-04-05 06:46:40", bursts, 60, 0},
    {"RHESSI/12-25keV/Back Projection", "RHESSI", 97, 101, 101, 629.25, 642.43, 279.29, "2002-02-13 12:29:40", "2018-04-05 06:46:40", bursts, 60, 0},
    {"RHESSI/25-50keV/Back Projection", "RHESSI", 98, 101, 101, 629.25, 642.43, 279.29, "2002-02-13 12:29:40", "2018-04-05 06:46:40", bursts, 60, 0},
    {"RHESSI/25-50keV/Clean", "RHESSI", 104, 101, 101, 629.25, 642.43, 279.29, "2002-02-13 12:29:40", "2018-04-05 06:46:40", bursts, 60, 0},
    {"PUNCH/WFI+NFI/Total Brightness", "PUNCH", 131, 4096, 4096, 11.8, 2048.5, 2048.5, "2025-06-10 00:08:01", today, steady, 1920, 20},
    {"PUNCH/WFI+NFI/Polarized Brightness", "PUNCH", 134, 4096, 4096, 11.8, 2048.5, 2048.5, "2025-06-10 00:08:01", today, steady, 1920, 20},
};
// clang-format on

ArchiveSource toSource(const SampleSource &sample)
{
    return {QString::fromLatin1(sample.path),
            QString::fromLatin1(sample.nickname),
            sample.sourceId,
            sample.widthPx,
            sample.heightPx,
            sample.rsunPx,
            sample.refPixelX,
            sample.refPixelY,
            QString::fromLatin1(sample.start),
            QString::fromLatin1(sample.end),
            sample.law,
            sample.spacingSeconds,
            sample.jitterSeconds,
            sample.staysWithEarth,
            sample.rollDegrees,
            sample.layeringOrder,
            sample.groupedSourceId};
}

/// Moves the end of a datasource that is still growing by as much as time has gone on, and back to
/// the last picture, whose time it is.
void growTo(qint64 presentTime, ArchiveSource &source)
{
    const std::optional<qint64> end = parseArchiveTime(source.end);
    if (!end)
        return;
    if (*end > sampledAt - newestLag && presentTime > sampledAt)
        source.end = archiveTimeText(*end + presentTime - sampledAt);
    const Cadence cadence(source);
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
        growTo(presentUtc.toSecsSinceEpoch(), source);
        sources.append(source);
    }
    return std::make_shared<const Archive>(std::move(sources));
}

} // namespace Simulator
