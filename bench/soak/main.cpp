// orvik-soak [--requests N] [--stops N] --out DIR
//
// A long acquisition under fire: thousands of requests over six datasources, one answer in fifty
// spoilt, stopped and started again many times. After each session the service's journal, the log,
// the manifest, the descriptor and the files must tell the same numbers, and the program must be as
// large as before. Prints a table; the exit code is 1 when anything disagrees.

#include "acquisition/acquisitioncontroller.h"
#include "base/runtimeconfig.h"
#include "base/utctext.h"
#include "bench/measures.h"
#include "bench/soak/leg.h"

#include <QCommandLineParser>
#include <QGuiApplication>
#include <QSettings>
#include <QTextStream>

#include <algorithm>
#include <array>

namespace {

constexpr int cadenceSeconds = 30;
/// Of all six datasources at that cadence: AIA at once, HMI and SUVI in their own rhythm.
constexpr int requestsPerHour = 4 * 120 + 80 + 15;

AcquisitionSettings settingsFor(int requests)
{
    AcquisitionSettings settings;
    settings.startUtc = QDateTime({2024, 5, 1}, {0, 0}, Qt::UTC);
    settings.endUtc =
        settings.startUtc.addSecs(static_cast<qint64>(requests) * 3672 / requestsPerHour + 1800);
    settings.cadenceSeconds = cadenceSeconds;
    settings.imageWidth = 64;
    settings.scaleOverlay = true;
    settings.sources = {{10, QStringLiteral("AIA 171"), QStringLiteral("SDO/AIA/171")},
                        {13, QStringLiteral("AIA 304"), QStringLiteral("SDO/AIA/304")},
                        {8, QStringLiteral("AIA 94"), QStringLiteral("SDO/AIA/94")},
                        {14, QStringLiteral("AIA 335"), QStringLiteral("SDO/AIA/335")},
                        {18, QStringLiteral("HMI Int"), QStringLiteral("SDO/HMI/continuum")},
                        {2003, QStringLiteral("GOES-R SUVI 195"), QStringLiteral("GOES/SUVI/195")}};
    return settings;
}

/// A number that is not to be spoilt by the schedule, which takes each fiftieth from the 25th on.
int unspoilt(int number)
{
    return std::max(number - number % 50 + 10, 10);
}

/// The stops take turns, and the last session is let go to its end.
LegOrder orderFor(int leg, int stops, int requests, const AcquisitionSettings &settings)
{
    const int share = requests / (stops + 1);
    LegOrder order;
    order.settings = settings;
    order.faultyUpTo = requests;
    if (leg < stops) {
        order.stopAt = std::array{StopAt::Frame, StopAt::Lookup, StopAt::Download}.at(
            static_cast<std::size_t>(leg) % 3);
        // Three of four lookups bring a picture.
        order.stopNumber = unspoilt(order.stopAt == StopAt::Download ? share * 3 / 4 : share);
    }
    return order;
}

/// What must not grow from one session to the next.
struct Footprint
{
    double heapKb = 0.0; ///< in use
    double residentKb = 0.0;
    int handles = 0;
    QString children;

    static Footprint now()
    {
        return {Measures::heapKb(), Measures::residentKb(), Measures::openHandles(),
                Measures::children()};
    }
};

class Soak final
{
public:
    bool run(int requests, int stops);

private:
    void printHeading();
    void conclude(int leg, const LegOrder &order, const LegResult &result);
    void checkFootprint(const Footprint &now);
    void complain(const QString &sentence);

    QTextStream m_out{stdout};
    Footprint m_settled; // after the second session, when all caches are filled
    int m_rows = 0;
    int m_faults = 0;
};

void Soak::complain(const QString &sentence)
{
    ++m_faults;
    m_out << "    DISAGREES " << sentence << Qt::endl;
}

void Soak::printHeading()
{
    m_out << "                        service          log                                      "
             "            heap resident\n"
             "session  stopped in  lookups pictures lookups pictures  rows    OK  dupl reject "
             "failed files   kB       MB handles"
          << Qt::endl;
}

void Soak::conclude(int leg, const LegOrder &order, const LegResult &result)
{
    const char *const places[] = {"-", "frame", "lookup", "download"};
    const StatusTally &rows = result.files.manifest;
    const Footprint footprint = Footprint::now();
    m_out << QString::asprintf("%7d  %-10s %8d %8d %7d %8d %5d %5d %5d %6d %6d %5d %6.0f %7.1f %7d",
                               leg + 1, places[static_cast<int>(order.stopAt)],
                               result.service.lookups, result.service.downloads, result.log.lookups,
                               result.log.downloads, rows.rows, rows.accepted, rows.duplicates,
                               rows.rejected, rows.lookupErrors + rows.downloadErrors,
                               result.files.pictures, footprint.heapKb, footprint.residentKb / 1024,
                               footprint.handles)
          << Qt::endl;
    for (const QString &fault : result.faults)
        complain(fault);
    if (leg == 1)
        m_settled = footprint;
    if (leg > 1)
        checkFootprint(footprint);
    if (!footprint.children.isEmpty())
        complain(QStringLiteral("children are left: %1").arg(footprint.children));
    m_rows += rows.rows;
}

void Soak::checkFootprint(const Footprint &now)
{
    constexpr double heapSlackKb = 256;      // of thousands of requests
    constexpr double residentSlackKb = 8192; // pages that the heap has not given back
    if (now.heapKb > m_settled.heapKb + heapSlackKb)
        complain(QStringLiteral("the heap has grown"));
    if (now.residentKb > m_settled.residentKb + residentSlackKb)
        complain(QStringLiteral("the program has grown"));
    if (now.handles != m_settled.handles)
        complain(QStringLiteral("handles are left open"));
}

bool Soak::run(int requests, int stops)
{
    AcquisitionController controller;
    AcquisitionSettings settings = settingsFor(requests);
    printHeading();
    for (int leg = 0; leg <= stops; ++leg) {
        const LegOrder order = orderFor(leg, stops, requests, settings);
        const LegResult result = LegResult::run(controller, order);
        conclude(leg, order, result);
        const QDateTime last = UtcText::fromText(result.files.lastRequestedUtc);
        if (!last.isValid())
            return false;
        settings.startUtc = last.addSecs(cadenceSeconds);
    }
    if (m_rows < requests)
        complain(QStringLiteral("there were %1 requests only").arg(m_rows));
    m_out << m_rows << " requests, " << m_faults << " disagreements" << Qt::endl;
    return m_faults == 0;
}

void writeConfiguration(const QString &outputDirectory)
{
    RuntimeConfig::ensureRuntimeConfig();
    QSettings config(RuntimeConfig::configFilePath(), QSettings::IniFormat);
    config.setIniCodec("UTF-8");
    config.setValue(QStringLiteral("paths/output"), outputDirectory);
}

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    QCommandLineParser parser;
    parser.addOptions(
        {{QStringLiteral("requests"), {}, QStringLiteral("N"), QStringLiteral("20000")},
         {QStringLiteral("stops"), {}, QStringLiteral("N"), QStringLiteral("10")},
         {QStringLiteral("out"), {}, QStringLiteral("DIR")}});
    parser.process(application);
    const int requests = parser.value(QStringLiteral("requests")).toInt();
    const int stops = parser.value(QStringLiteral("stops")).toInt();
    if (requests < 100 || stops < 1 || !parser.isSet(QStringLiteral("out")))
        parser.showHelp(2);
    writeConfiguration(parser.value(QStringLiteral("out")));
    return Soak().run(requests, stops) ? 0 : 1;
}
