#include "sessiontool/reporttext.h"

#include "base/texttable.h"
#include "base/utctext.h"
#include "sessiontool/sessionreport.h"
#include "sessiontool/toolconsole.h"

#include <QDir>

#include <array>

namespace {

constexpr int maxNameCharacters = 20;

/// "AIA 171 [10]", as the catalog of the window has it.
QString labelOf(const SourceLedger &source)
{
    QString name = ToolConsole::printable(source.nickname);
    if (name.size() > maxNameCharacters)
        name = name.left(maxNameCharacters - 1) + QChar(0x2026);
    return QStringLiteral("%1 [%2]").arg(name, QString::number(source.sourceId));
}

QString stateText(SessionReport::State state)
{
    switch (state) {
    case SessionReport::State::Completed:
        return QStringLiteral("completed");
    case SessionReport::State::Canceled:
        return QStringLiteral("stopped before its end");
    case SessionReport::State::Recovered:
        return QStringLiteral("closed or killed before its end; session.json recovered");
    case SessionReport::State::NoDescriptor:
        break;
    }
    return QStringLiteral("not known without a session.json");
}

/// The two largest units of a duration, as "12 min 2 s".
QString durationText(qint64 seconds)
{
    struct Unit
    {
        qint64 seconds;
        const char *name;
    };
    constexpr std::array<Unit, 4> units = {{{86400, "d"}, {3600, "h"}, {60, "min"}, {1, "s"}}};
    std::size_t first = 0;
    while (first + 1 < units.size() && seconds < units[first].seconds)
        ++first;
    QString text;
    for (std::size_t unit = first; unit < units.size() && unit < first + 2; ++unit) {
        const qint64 count = seconds / units[unit].seconds;
        seconds %= units[unit].seconds;
        if (count > 0 || unit == first)
            text += QStringLiteral("%1 %2 ").arg(QString::number(count),
                                                 QLatin1String(units[unit].name));
    }
    return text.trimmed();
}

QString spanText(const QDateTime &fromUtc, const QDateTime &toUtc)
{
    return QStringLiteral("%1 to %2")
        .arg(UtcText::toDisplayText(fromUtc), UtcText::toDisplayText(toUtc));
}

void printHead(const SessionReport &report, ToolConsole &console)
{
    console.print(QStringLiteral("Session    %1").arg(QDir::toNativeSeparators(report.directory)));
    if (report.interval)
        console.print(QStringLiteral("Interval   %1 UTC")
                          .arg(spanText(report.interval->startUtc, report.interval->endUtc)));
    console.print(QStringLiteral("State      %1").arg(stateText(report.state)));
    for (const QString &finding : report.findings)
        console.print(QStringLiteral("Finding    %1").arg(finding));
}

QStringList countsRow(const ReportedSource &source)
{
    QStringList row{labelOf(source.ledger), QString::number(source.ledger.requests())};
    for (const FrameStatus status :
         {FrameStatus::Ok, FrameStatus::Duplicate, FrameStatus::RejectedTime,
          FrameStatus::CorruptImage, FrameStatus::DownloadError, FrameStatus::LookupError})
        row += QString::number(source.ledger.count(status));
    row += source.stepSeconds > 0 ? QStringLiteral("%1 s").arg(source.stepSeconds)
                                  : QStringLiteral("-");
    return row;
}

void printCounts(const SessionReport &report, ToolConsole &console)
{
    QVector<QStringList> rows{
        {QStringLiteral("Datasource"), QStringLiteral("requested"), QStringLiteral("accepted"),
         QStringLiteral("duplicate"), QStringLiteral("rejected"), QStringLiteral("corrupt"),
         QStringLiteral("download"), QStringLiteral("lookup"), QStringLiteral("step")}};
    for (const ReportedSource &source : report.sources)
        rows.append(countsRow(source));
    console.printRaw(QLatin1Char('\n') + TextTable::format(rows));
    console.print(QStringLiteral("rejected: too far from the time asked for; corrupt, download, "
                                 "lookup: the request failed"));
}

QString placeOf(const SessionGap &gap)
{
    if (gap.lastFrame < 0 && gap.nextFrame < 0)
        return QStringLiteral("no frame");
    if (gap.lastFrame < 0)
        return QStringLiteral("before frame %1").arg(gap.nextFrame);
    if (gap.nextFrame < 0)
        return QStringLiteral("after frame %1").arg(gap.lastFrame);
    return QStringLiteral("between frames %1 and %2").arg(gap.lastFrame).arg(gap.nextFrame);
}

void printGaps(const SessionReport &report, ToolConsole &console)
{
    constexpr int durationWidth = 13;
    console.print({});
    console.print(QStringLiteral("Gaps longer than twice the step (UTC)"));
    bool hasGaps = false;
    for (const ReportedSource &source : report.sources) {
        if (!source.gaps.isEmpty())
            console.print(QStringLiteral("  ") + labelOf(source.ledger));
        for (const SessionGap &gap : source.gaps)
            console.print(QStringLiteral("    %1   %2  %3")
                              .arg(spanText(gap.fromUtc, gap.toUtc),
                                   durationText(gap.seconds()).leftJustified(durationWidth),
                                   placeOf(gap)));
        hasGaps = hasGaps || !source.gaps.isEmpty();
    }
    if (!hasGaps)
        console.print(QStringLiteral("  none"));
}

QString timeOrDash(const QDateTime &time)
{
    constexpr int timeWidth = 19;
    const QString text = time.isValid() ? UtcText::toDisplayText(time) : QStringLiteral("-");
    return text.leftJustified(timeWidth);
}

QString numberText(int number)
{
    return number < 0 ? QStringLiteral("-") : QString::number(number);
}

QString frameLine(const LedgerFrame &frame)
{
    constexpr int numberWidth = 9;
    return QStringLiteral("%1  %2  %3")
        .arg(numberText(frame.number).rightJustified(numberWidth), timeOrDash(frame.actualUtc),
             timeOrDash(frame.requestedUtc));
}

void printAllFrames(const SessionReport &report, ToolConsole &console)
{
    for (const ReportedSource &source : report.sources) {
        console.print({});
        console.print(QStringLiteral("Frames of %1").arg(labelOf(source.ledger)));
        console.print(QStringLiteral("    frame  time (UTC)           asked for"));
        for (const LedgerFrame &frame : source.ledger.frames)
            console.print(frameLine(frame));
    }
}

void printEndsOfFrames(const SessionReport &report, ToolConsole &console)
{
    QVector<QStringList> rows{{QStringLiteral("Frames (UTC)"), QStringLiteral("first"),
                               QStringLiteral("its time"), QStringLiteral("last"),
                               QStringLiteral("its time")}};
    for (const ReportedSource &source : report.sources) {
        const QVector<LedgerFrame> &frames = source.ledger.frames;
        if (!frames.isEmpty())
            rows.append({labelOf(source.ledger), numberText(frames.first().number),
                         timeOrDash(frames.first().actualUtc), numberText(frames.last().number),
                         timeOrDash(frames.last().actualUtc)});
    }
    if (rows.size() == 1)
        return;
    console.printRaw(QLatin1Char('\n') + TextTable::format(rows));
    console.print(QStringLiteral("--frames lists them all"));
}

} // namespace

void ReportText::print(const SessionReport &report, bool listsFrames, ToolConsole &console)
{
    printHead(report, console);
    printCounts(report, console);
    printGaps(report, console);
    if (listsFrames)
        printAllFrames(report, console);
    else
        printEndsOfFrames(report, console);
}
