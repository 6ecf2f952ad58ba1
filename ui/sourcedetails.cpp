#include "ui/sourcedetails.h"

#include "base/utctext.h"
#include "ui/acquisitionestimate.h"

#include <QCoreApplication>
#include <QJsonArray>

using AcquisitionEstimate::formatDuration;

namespace {

constexpr char cadenceLineStart[] = "\nCadence:";

QString tr(const char *text)
{
    return QCoreApplication::translate("SourceDetails", text);
}

QString textOf(const QJsonObject &object, const char *key)
{
    return object.value(QLatin1String(key)).toString();
}

QString labelsTable(const QJsonArray &labels)
{
    if (labels.isEmpty())
        return {};
    QString table = QStringLiteral("<table cellspacing='2' cellpadding='2'>");
    for (const QJsonValue &value : labels) {
        const QJsonObject label = value.toObject();
        table +=
            QStringLiteral("<tr><td><b>%1</b></td><td>%2</td></tr>")
                .arg(textOf(label, "label").toHtmlEscaped(), textOf(label, "name").toHtmlEscaped());
    }
    return table + QStringLiteral("</table>");
}

QString notAnalysedSection(const RequestedSampling &sampling)
{
    return tr("<p><b>Cadence strategy:</b> not prepared yet.<br>At acquisition start dense AIA "
              "sources use the requested cadence directly; slower/unknown sources receive only a "
              "short cadence probe.</p><p>Requested interval: <i>%1 -> %2 UTC</i>.</p>")
        .arg(UtcText::toDisplayText(sampling.startUtc).toHtmlEscaped(),
             UtcText::toDisplayText(sampling.endUtc).toHtmlEscaped());
}

QString probedSection(const CadenceStatistics &found, int cadenceSeconds)
{
    QString section =
        tr("<p><b>Cadence estimated by quick probe:</b> about <b>%1</b><br>%2 probe "
           "frames; observed range %3 - %4.</p>")
            .arg(formatDuration(found.medianSeconds), QString::number(found.uniqueFrames),
                 formatDuration(found.minSeconds), formatDuration(found.maxSeconds));
    // Not mentioned below one and a half steps: hardly any request is saved.
    if (found.medianSeconds > 3 * static_cast<qint64>(cadenceSeconds) / 2) {
        section += tr("<p><b>Orvik optimization:</b> requested sampling is %1, but the archive is "
                      "slower here. Redundant intermediate requests are omitted automatically.</p>")
                       .arg(formatDuration(cadenceSeconds));
    }
    return section;
}

QString cadenceSection(const std::optional<CadenceStatistics> &found,
                       const RequestedSampling &sampling)
{
    if (!found)
        return notAnalysedSection(sampling);
    if (found->uniqueFrames == CadenceStatistics::notProbed) {
        return tr("<p><b>Cadence strategy:</b> <b>dense-source fast path</b><br>Orvik samples "
                  "directly every %1 and skips the full JPX archive scan.</p><p>Actual frame time "
                  "is still validated through getClosestImage, timing tolerance and duplicate-ID "
                  "checks.</p>")
            .arg(formatDuration(found->medianSeconds));
    }
    if (found->uniqueFrames < 1) {
        return tr("<p><b>Cadence strategy:</b> quick probe unavailable; Orvik uses the requested "
                  "cadence with normal validation.</p>");
    }
    if (found->medianSeconds < 1) {
        return tr("<p><b>Frames:</b> %1 unique frame in the selected interval.</p>")
            .arg(QString::number(found->uniqueFrames));
    }
    return probedSection(*found, sampling.cadenceSeconds);
}

QString cadenceLine(const CadenceStatistics &found)
{
    if (found.uniqueFrames == CadenceStatistics::notProbed) {
        return tr("Cadence: dense-source fast path; direct sampling every %1 (full JPX scan "
                  "skipped).")
            .arg(formatDuration(found.medianSeconds));
    }
    if (found.uniqueFrames < 1)
        return tr("Cadence: quick probe unavailable or no frames returned.");
    const QString frames = QString::number(found.uniqueFrames);
    if (found.medianSeconds > 0) {
        return tr("Cadence: %1 unique frames, effective median %2 (min %3, max %4).")
            .arg(frames, formatDuration(found.medianSeconds), formatDuration(found.minSeconds),
                 formatDuration(found.maxSeconds));
    }
    return tr("Cadence: %1 unique frame in the selected interval.").arg(frames);
}

} // namespace

QString SourceDetails::welcomePage()
{
    return tr("<h3>Helioviewer catalog</h3><p>Select a datasource on the left. Orvik shows its "
              "identity, availability and the effective cadence measured during the acquisition "
              "preflight.</p><p><b>Important:</b> Cadence is measured for the selected date "
              "interval because real archive availability can vary.</p>");
}

QString SourceDetails::noSourcePage()
{
    return tr("<h3>Helioviewer catalog</h3><p>Select a final datasource (a checkable leaf) to see "
              "its details.</p><p>The tree follows the hierarchy supplied by Helioviewer: "
              "observatory, instrument and measurement/filter.</p>");
}

QString SourceDetails::page(const CatalogSource &source, const RequestedSampling &sampling)
{
    return tr("<h2>%1</h2><p><b>Catalog path:</b> %2<br><b>sourceId:</b> %3</p>%4<hr><p><b>Archive "
              "availability</b><br>%5 UTC<br>to<br>%6 UTC</p>%7<hr><p><small>The requested cadence "
              "is a sampling target. Dense AIA sources start immediately without a full-range JPX "
              "scan. For slower or unknown sources Orvik performs only a short probe to estimate "
              "whether redundant requests can be reduced.</small></p>")
        .arg(source.source.nickname.toHtmlEscaped(), source.source.path.toHtmlEscaped(),
             QString::number(source.source.sourceId),
             labelsTable(source.entry.value(QStringLiteral("uiLabels")).toArray()),
             textOf(source.entry, "start").toHtmlEscaped(),
             textOf(source.entry, "end").toHtmlEscaped(),
             cadenceSection(source.analysis, sampling));
}

QString SourceDetails::toolTip(const QString &path, const QJsonObject &entry)
{
    return tr("%1\nAvailable: %2 -> %3\nCadence: analyzed automatically for the selected UTC "
              "interval at acquisition start.")
        .arg(path, textOf(entry, "start"), textOf(entry, "end"));
}

QString SourceDetails::toolTipWithCadence(const QString &toolTip, const CadenceStatistics &analysis)
{
    return toolTip.left(toolTip.indexOf(QLatin1String(cadenceLineStart))) + QLatin1Char('\n') +
           cadenceLine(analysis);
}
