#include "simulator/archive/archive.h"
#include "simulator/archive/servicetime.h"
#include "simulator/service/endpoints.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonObject>

namespace Simulator {

namespace {

/// Names of the levels of a path; those of some telescopes are their own.
QStringList levelsOf(const QStringList &names)
{
    const auto levels = [](const char *text) {
        return QString::fromLatin1(text).split(QLatin1Char('/'));
    };
    const QString &mission = names.at(0);
    if (mission == QLatin1String("Hinode"))
        return levels("Observatory/Instrument/Filter Wheel 1/Filter Wheel 2");
    if (mission == QLatin1String("Yohkoh"))
        return levels("Observatory/Instrument/Filter");
    if (mission == QLatin1String("RHESSI"))
        return levels("Observatory/Energy Band/Reconstruction");
    if (names.size() == 4)
        return levels("Observatory/Instrument/Detector/Measurement");
    return levels(names.size() == 3 ? "Observatory/Instrument/Measurement"
                                    : "Observatory/Measurement");
}

QJsonArray uiLabels(const QStringList &names)
{
    const QStringList levels = levelsOf(names);
    QJsonArray labels;
    for (int level = 0; level < names.size(); ++level)
        labels.append(QJsonObject{{QStringLiteral("label"), levels.at(level)},
                                  {QStringLiteral("name"), names.at(level)}});
    return labels;
}

/// A group tells nothing of its members' pictures.
QJsonObject leafOf(const ArchiveSource &source)
{
    const bool isGroup = source.groupedSourceId >= 0;
    const auto timeOrNull = [](const QString &time) {
        return time.isEmpty() ? QJsonValue() : QJsonValue(time);
    };
    const QString now = archiveTimeText(QDateTime::currentSecsSinceEpoch());
    const QString groupStart = QStringLiteral("1991-09-11 00:00:00");
    return {{QStringLiteral("sourceId"), source.sourceId},
            {QStringLiteral("nickname"), source.nickname},
            {QStringLiteral("layeringOrder"), source.layeringOrder},
            {QStringLiteral("start"), timeOrNull(isGroup ? groupStart : source.start)},
            {QStringLiteral("end"), timeOrNull(isGroup ? now : source.end)},
            {QStringLiteral("uiLabels"), uiLabels(source.path.split(QLatin1Char('/')))}};
}

/// Sets @p leaf below the branches that @p names lead along.
void plant(QJsonObject &tree, const QJsonObject &leaf, QStringList names)
{
    const QString name = names.takeFirst();
    QJsonObject branch = tree.value(name).toObject();
    if (names.isEmpty())
        branch = leaf;
    else
        plant(branch, leaf, names);
    tree.insert(name, branch);
}

} // namespace

Answer dataSourcesAnswer(const Archive &archive)
{
    QJsonObject tree;
    for (const ArchiveSource &source : archive.sources())
        plant(tree, leafOf(source), source.path.split(QLatin1Char('/')));
    return jsonAnswer(tree);
}

} // namespace Simulator
