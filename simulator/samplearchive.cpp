#include "simulator/archive.h"

#include "simulator/cadence.h"
#include "simulator/servicetime.h"

namespace Simulator {

namespace {

QString today()
{
    return QStringLiteral("2026-09-06 17:03:09");
}

ArchiveSource source(const char *path, const char *nickname, int sourceId, int widthPx,
                     double rsunPx)
{
    ArchiveSource made;
    made.path = QString::fromLatin1(path);
    made.nickname = QString::fromLatin1(nickname);
    made.sourceId = sourceId;
    made.widthPx = made.heightPx = widthPx;
    made.rsunPx = rsunPx;
    made.refPixelX = made.refPixelY = widthPx / 2.0 + 0.5;
    made.end = today();
    return made;
}

void setTimes(ArchiveSource &source, const char *start, const char *end = nullptr)
{
    source.start = QString::fromLatin1(start);
    if (end)
        source.end = QString::fromLatin1(end);
}

void setCadence(ArchiveSource &source, CadenceLaw law, int spacingSeconds, int jitterSeconds = 0)
{
    source.law = law;
    source.spacingSeconds = spacingSeconds;
    source.jitterSeconds = jitterSeconds;
}

void setReference(ArchiveSource &source, double refPixelX, double refPixelY)
{
    source.refPixelX = refPixelX;
    source.refPixelY = refPixelY;
}

/// Changes of the spacing of the observatory's pictures; each band has its own second in the cycle.
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

struct AiaBand
{
    const char *path;
    const char *nickname;
    int sourceId;
    CadenceLaw law;
    int spacingSeconds; ///< at the start
    int jitterSeconds;
};

constexpr AiaBand aiaBands[] = {
    {"SDO/AIA/94", "AIA 94", 8, CadenceLaw::Gaps, 12, 0},
    {"SDO/AIA/131", "AIA 131", 9, CadenceLaw::Gaps, 12, 0},
    {"SDO/AIA/171", "AIA 171", 10, CadenceLaw::Regular, 12, 0},
    {"SDO/AIA/193", "AIA 193", 11, CadenceLaw::Regular, 12, 0},
    {"SDO/AIA/211", "AIA 211", 12, CadenceLaw::Regular, 12, 0},
    {"SDO/AIA/304", "AIA 304", 13, CadenceLaw::Regular, 12, 0},
    {"SDO/AIA/335", "AIA 335", 14, CadenceLaw::Gaps, 12, 0},
    {"SDO/AIA/1600", "AIA 1600", 15, CadenceLaw::Jittered, 36, 6},
    {"SDO/AIA/1700", "AIA 1700", 16, CadenceLaw::Jittered, 36, 6},
    {"SDO/AIA/4500", "AIA 4500", 17, CadenceLaw::Regular, 3600, 0},
};

void addAia(QVector<ArchiveSource> &sources)
{
    for (const AiaBand &band : aiaBands) {
        ArchiveSource made = source(band.path, band.nickname, band.sourceId, 4096, 1599.407);
        setTimes(made, "2010-06-02 00:05:36");
        setCadence(made, band.law, band.spacingSeconds, band.jitterSeconds);
        made.orbit = Orbit::Earth;
        if (band.spacingSeconds == 12)
            for (const Period &period : aiaPeriods)
                made.changes.append(
                    {archiveTimeText(period.from + band.sourceId), period.spacingSeconds});
        sources.append(made);
    }
}

void addHmi(QVector<ArchiveSource> &sources)
{
    for (ArchiveSource made : {source("SDO/HMI/continuum", "HMI Int", 18, 4096, 1599.2),
                               source("SDO/HMI/magnetogram", "HMI Mag", 19, 4096, 1599.2)}) {
        setTimes(made, "2010-12-06 06:53:41", "2026-09-06 14:28:26"); // three hours behind
        setCadence(made, CadenceLaw::Regular, 45);
        made.orbit = Orbit::Earth;
        sources.append(made);
    }
}

ArchiveSource eit(const char *path, const char *nickname, int sourceId, double rsunPx)
{
    ArchiveSource made = source(path, nickname, sourceId, 1024, rsunPx);
    setTimes(made, "1996-01-15 21:39:21");
    setCadence(made, CadenceLaw::Jittered, 21600, 40);
    // Since mid-2010 two sets a day are left, about 01:13 and 13:06.
    made.changes = {{QStringLiteral("2010-08-04 01:13:11"), 43200}};
    made.oddShiftSeconds = -420;
    made.orbit = Orbit::SunEarthL1;
    return made;
}

void addEit(QVector<ArchiveSource> &sources)
{
    ArchiveSource eit171 = eit("SOHO/EIT/171", "EIT 171", 0, 365.08);
    setReference(eit171, 512.74, 521.95);
    ArchiveSource eit195 = eit("SOHO/EIT/195", "EIT 195", 1, 365.1);
    setReference(eit195, 512.5, 521.0);
    eit195.spacingSeconds = 720;
    ArchiveSource eit304 = eit("SOHO/EIT/304", "EIT 304", 3, 364.9);
    setReference(eit304, 512.35, 520.99);
    sources.append({eit171, eit195, eit304});
}

void addLascoAndMdi(QVector<ArchiveSource> &sources)
{
    ArchiveSource c2 = source("SOHO/LASCO/C2/white-light", "LASCO C2", 4, 1024, 80.64);
    setTimes(c2, "1995-12-08 01:33:16", "2026-09-06 03:48:05"); // 13 hours behind
    setReference(c2, 512.0, 506.0);
    c2.layeringOrder = 2;
    ArchiveSource c3 = source("SOHO/LASCO/C3/white-light", "LASCO C3", 5, 1024, 17.14);
    setTimes(c3, "1996-01-15 03:57:30", "2026-09-06 03:42:05");
    setReference(c3, 519.2, 533.5);
    c3.layeringOrder = 3;
    for (ArchiveSource made : {c2, c3}) {
        setCadence(made, CadenceLaw::Gaps, 720, 33);
        sources.append(made);
    }
    ArchiveSource magnetogram = source("SOHO/MDI/magnetogram", "MDI Mag", 6, 1024, 484.6);
    setTimes(magnetogram, "1996-04-21 00:30:04", "2011-01-11 22:39:00");
    setCadence(magnetogram, CadenceLaw::Gaps, 5760);
    setReference(magnetogram, 512.8, 512.0);
    ArchiveSource continuum = source("SOHO/MDI/continuum", "MDI Int", 7, 1024, 484.6);
    setTimes(continuum, "1996-05-19 19:08:35", "2011-01-11 22:39:00");
    setCadence(continuum, CadenceLaw::Gaps, 21600);
    setReference(continuum, 512.85, 511.98);
    for (ArchiveSource made : {magnetogram, continuum}) {
        made.orbit = Orbit::SunEarthL1;
        sources.append(made);
    }
}

void addStereo(QVector<ArchiveSource> &sources)
{
    ArchiveSource a171 = source("STEREO_A/SECCHI/EUVI/171", "EUVI-A 171", 20, 2048, 625.0);
    setCadence(a171, CadenceLaw::Gaps, 7200);
    ArchiveSource a195 = source("STEREO_A/SECCHI/EUVI/195", "EUVI-A 195", 21, 2048, 625.0);
    setCadence(a195, CadenceLaw::Gaps, 300);
    ArchiveSource cor1 = source("STEREO_A/SECCHI/COR1/white-light", "COR1-A", 28, 512, 66.0);
    setCadence(cor1, CadenceLaw::Gaps, 300);
    cor1.layeringOrder = 2;
    ArchiveSource cor2 = source("STEREO_A/SECCHI/COR2/white-light", "COR2-A", 29, 2048, 68.0);
    setCadence(cor2, CadenceLaw::Gaps, 900);
    cor2.layeringOrder = 3;
    for (ArchiveSource made : {a171, a195, cor1, cor2}) {
        setTimes(made, "2006-12-04 05:00:16", "2026-09-03 23:54:00");
        sources.append(made);
    }
    ArchiveSource b195 = source("STEREO_B/SECCHI/EUVI/195", "EUVI-B 195", 25, 2048, 580.0);
    setCadence(b195, CadenceLaw::Gaps, 300);
    setTimes(b195, "2006-12-07 05:00:31", "2014-09-27 16:31:17"); // contact was lost then
    sources.append(b195);
}

void addSwapAndGoes(QVector<ArchiveSource> &sources)
{
    ArchiveSource swap = source("PROBA2/SWAP/174", "SWAP 174", 32, 1024, 303.0);
    setTimes(swap, "2010-01-04 17:00:50");
    setCadence(swap, CadenceLaw::Gaps, 107, 11);
    swap.orbit = Orbit::Earth;
    sources.append(swap);
    struct Band
    {
        const char *path;
        const char *nickname;
        int sourceId;
    };
    for (const Band &band : {Band{"GOES/SUVI/94", "GOES-R SUVI 94", 2000},
                             Band{"GOES/SUVI/195", "GOES-R SUVI 195", 2003},
                             Band{"GOES/SUVI/304", "GOES-R SUVI 304", 2005}}) {
        ArchiveSource made = source(band.path, band.nickname, band.sourceId, 1280, 384.0);
        setTimes(made, "2023-05-05 00:00:11");
        setCadence(made, CadenceLaw::Regular, 240);
        made.start = archiveTimeText(*parseArchiveTime(made.start) + 10LL * (band.sourceId - 2000));
        made.orbit = Orbit::Earth;
        sources.append(made);
    }
    ArchiveSource ccor = source("GOES/CCOR-1/CCOR-1/white-light", "GOES CCOR-1", 132, 2048, 50.0);
    ccor.heightPx = 1920;
    setReference(ccor, 1024.5, 960.5);
    setTimes(ccor, "2024-10-01 00:07:30");
    setCadence(ccor, CadenceLaw::Regular, 900);
    ccor.layeringOrder = 3;
    sources.append(ccor);
}

void addGround(QVector<ArchiveSource> &sources)
{
    ArchiveSource gong = source("GONG/GONG/H-alpha/6562", "GONG H-alpha", 94, 2048, 900.0);
    setTimes(gong, "2010-08-01 00:00:14");
    setCadence(gong, CadenceLaw::Gaps, 60, 8); // the sites of the network take turns
    sources.append(gong);
    ArchiveSource kcor = source("MLSO/COSMO/KCor/735", "COSMO KCor", 83, 1024, 170.0);
    setTimes(kcor, "2013-09-30 18:57:54", "2026-09-05 22:14:40");
    setCadence(kcor, CadenceLaw::Jittered, 60, 25);
    kcor.dayStartHour = 17;
    kcor.dayEndHour = 2;
    kcor.layeringOrder = 2;
    sources.append(kcor);
}

void addSubFields(QVector<ArchiveSource> &sources)
{
    ArchiveSource fsi = source("SOLO/EUI/FSI/174", "EUI FSI 174", 84, 3040, 216.0);
    fsi.heightPx = 3072;
    setReference(fsi, 1520.5, 1536.5);
    setTimes(fsi, "2020-11-20 00:00:16", "2025-01-09 22:20:16");
    setCadence(fsi, CadenceLaw::Gaps, 600, 120);
    fsi.orbit = Orbit::SolarOrbiter;
    ArchiveSource hri = source("SOLO/EUI/HRI/174", "EUI HRI 174", 86, 2048, 5617.86);
    setReference(hri, 5988.29, -665.89);
    setTimes(hri, "2020-05-20 21:12:10", "2024-12-31 23:40:45");
    setCadence(hri, CadenceLaw::Bursts, 10);
    hri.framing = Framing::SubField;
    ArchiveSource iris = source("IRIS/SJI/1330", "IRIS SJI 1330", 88, 176, 2874.88);
    iris.heightPx = 196;
    setReference(iris, -1296.99, -1341.66);
    setTimes(iris, "2013-07-17 21:40:41", "2026-08-30 11:20:08");
    setCadence(iris, CadenceLaw::Bursts, 20);
    iris.framing = Framing::SubField;
    ArchiveSource trace = source("TRACE/171", "TRACE 171", 75, 1024, 1919.0);
    setReference(trace, 900.0, 300.0);
    setTimes(trace, "2008-09-18 00:00:54", "2008-10-06 22:55:32");
    setCadence(trace, CadenceLaw::Bursts, 40, 5);
    trace.framing = Framing::SubField;
    sources.append({fsi, hri, iris, trace});
}

void addXrt(QVector<ArchiveSource> &sources)
{
    ArchiveSource open = source("Hinode/XRT/Al_poly/Open", "XRT Al_poly/Open", 48, 2048, 933.0);
    setTimes(open, "2006-10-25 04:08:01", "2026-09-05 18:01:43");
    setCadence(open, CadenceLaw::Bursts, 20, 4);
    open.framing = Framing::Binned;
    open.levelLabels =
        QStringList{QStringLiteral("Observatory"), QStringLiteral("Instrument"),
                    QStringLiteral("Filter Wheel 1"), QStringLiteral("Filter Wheel 2")};
    ArchiveSource empty = open;
    empty.path = QStringLiteral("Hinode/XRT/C_poly/Any");
    empty.nickname = QStringLiteral("XRT C_poly/Any");
    empty.sourceId = 10008;
    empty.start.clear();
    empty.end.clear();
    ArchiveSource any = empty;
    any.path = QStringLiteral("Hinode/XRT/Any/Any");
    any.nickname = QStringLiteral("XRT Any/Any");
    any.sourceId = 10001;
    any.groupedSourceId = open.sourceId;
    sources.append({open, any, empty});
}

void addFlareAndOldMissions(QVector<ArchiveSource> &sources)
{
    ArchiveSource sxt = source("Yohkoh/SXT/AlMgMn", "SXT AlMgMn", 33, 1024, 390.0);
    setTimes(sxt, "1991-09-11 21:15:48", "2001-12-14 20:58:32");
    setCadence(sxt, CadenceLaw::Gaps, 14400, 3000);
    sxt.levelLabels = QStringList{QStringLiteral("Observatory"), QStringLiteral("Instrument"),
                                  QStringLiteral("Filter")};
    sources.append(sxt);
    struct Energy
    {
        const char *path;
        int sourceId;
    };
    for (const Energy &energy :
         {Energy{"RHESSI/3-6keV/Back Projection", 95},
          Energy{"RHESSI/12-25keV/Back Projection", 97},
          Energy{"RHESSI/25-50keV/Back Projection", 98}, Energy{"RHESSI/25-50keV/Clean", 104}}) {
        ArchiveSource made = source(energy.path, "RHESSI", energy.sourceId, 101, 629.25);
        setReference(made, 642.43, 279.29);
        setTimes(made, "2002-02-13 12:29:40", "2018-04-05 06:46:40");
        setCadence(made, CadenceLaw::Bursts, 60);
        made.levelLabels = QStringList{QStringLiteral("Observatory"), QStringLiteral("Energy Band"),
                                       QStringLiteral("Reconstruction Method")};
        sources.append(made);
    }
}

void addPunch(QVector<ArchiveSource> &sources)
{
    for (ArchiveSource made :
         {source("PUNCH/WFI+NFI/Total Brightness", "PUNCH", 131, 4096, 11.8),
          source("PUNCH/WFI+NFI/Polarized Brightness", "PUNCH", 134, 4096, 11.8)}) {
        setTimes(made, "2025-06-10 00:08:01");
        setCadence(made, CadenceLaw::Jittered, 1920, 20);
        made.layeringOrder = 3;
        made.alphaWhereDark = true;
        sources.append(made);
    }
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
    QVector<ArchiveSource> sources;
    addAia(sources);
    addHmi(sources);
    addEit(sources);
    addLascoAndMdi(sources);
    addStereo(sources);
    addSwapAndGoes(sources);
    addGround(sources);
    addSubFields(sources);
    addXrt(sources);
    addFlareAndOldMissions(sources);
    addPunch(sources);
    for (ArchiveSource &made : sources)
        endAtLastPicture(made);
    return std::make_shared<const Archive>(std::move(sources));
}

} // namespace Simulator
