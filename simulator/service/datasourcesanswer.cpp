#include "simulator/archive/archive.h"
#include "simulator/archive/servicetime.h"
#include "simulator/service/endpoints.h"
#include "simulator/service/jsontext.h"

#include <QDateTime>

#include <vector>

namespace Simulator {

namespace {

/// One level of the tree; leaves have a source.
struct Branch
{
    QString key;
    const ArchiveSource *source = nullptr; // not owned
    std::vector<Branch> children;
};

Branch &childOf(Branch &parent, const QString &key)
{
    for (Branch &child : parent.children)
        if (child.key == key)
            return child;
    parent.children.push_back({key, nullptr, {}});
    return parent.children.back();
}

Branch treeOf(const Archive &archive)
{
    Branch root;
    for (const ArchiveSource &source : archive.sources()) {
        Branch *branch = &root;
        const QStringList keys = source.path.split(QLatin1Char('/'));
        for (const QString &key : keys)
            branch = &childOf(*branch, key);
        branch->source = &source;
    }
    return root;
}

QStringList labelsOf(const ArchiveSource &source, int levels)
{
    if (!source.levelLabels.isEmpty())
        return source.levelLabels;
    QStringList labels = {QStringLiteral("Observatory"), QStringLiteral("Instrument"),
                          QStringLiteral("Detector"), QStringLiteral("Measurement")};
    while (labels.size() > levels && labels.size() > 2)
        labels.removeAt(labels.size() - 2); // the innermost but for the measurement itself
    return labels;
}

void writeUiLabels(JsonText &json, const ArchiveSource &source)
{
    const QStringList names = source.path.split(QLatin1Char('/'));
    const QStringList labels = labelsOf(source, names.size());
    json.key(QStringLiteral("uiLabels")).beginArray();
    for (int level = 0; level < qMin(names.size(), labels.size()); ++level)
        json.beginObject()
            .member(QStringLiteral("label"), labels.at(level))
            .member(QStringLiteral("name"), names.at(level))
            .endObject();
    json.endArray();
}

void writeTime(JsonText &json, const QString &key, const QString &time)
{
    json.key(key);
    if (time.isEmpty())
        json.null();
    else
        json.value(time);
}

void writeLeaf(JsonText &json, const ArchiveSource &source)
{
    const bool isGroup = source.groupedSourceId >= 0;
    const QString now = archiveTimeText(QDateTime::currentSecsSinceEpoch());
    json.beginObject()
        .member(QStringLiteral("sourceId"), source.sourceId)
        .member(QStringLiteral("nickname"), source.nickname)
        .member(QStringLiteral("layeringOrder"), source.layeringOrder);
    writeTime(json, QStringLiteral("start"),
              isGroup ? QStringLiteral("1991-09-11 00:00:00") : source.start);
    writeTime(json, QStringLiteral("end"), isGroup ? now : source.end);
    writeUiLabels(json, source);
    json.endObject();
}

void writeChildren(JsonText &json, const Branch &branch);

void writeBranch(JsonText &json, const Branch &branch)
{
    json.key(branch.key);
    if (branch.source)
        writeLeaf(json, *branch.source);
    else
        writeChildren(json, branch);
}

void writeChildren(JsonText &json, const Branch &branch)
{
    json.beginObject();
    for (const Branch &child : branch.children)
        writeBranch(json, child);
    json.endObject();
}

} // namespace

Answer dataSourcesAnswer(const Archive &archive)
{
    if (archive.sources().isEmpty())
        return jsonAnswer("[]"); // an empty object and an empty list are one to the service
    JsonText json;
    writeChildren(json, treeOf(archive));
    Answer answer = jsonAnswer(json.text());
    answer.contentType = "application/json;charset=UTF-8";
    return answer;
}

} // namespace Simulator
