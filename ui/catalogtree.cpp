#include "ui/catalogtree.h"

#include <QHelpEvent>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStyledItemDelegate>
#include <QTextDocument>
#include <QToolTip>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>

#include <algorithm>

namespace {

enum Role {
    SourceIdRole = Qt::UserRole,
    NicknameRole,
    PathRole,
    EntryRole,
    UniqueFramesRole,
    MedianRole,
    MinRole,
    MaxRole,
};

constexpr int column = 0;

/// Draws an empty check box so that it can be seen, and shows every tool tip as plain text.
class CatalogDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    bool helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                   const QModelIndex &index) override
    {
        const QString text = index.data(Qt::ToolTipRole).toString();
        if (event->type() != QEvent::ToolTip || !Qt::mightBeRichText(text))
            return QStyledItemDelegate::helpEvent(event, view, option, index);
        // Tool tips guess whether a text is HTML; a name from the service must not decide that.
        QToolTip::showText(event->globalPos(), Qt::convertFromPlainText(text), view);
        return true;
    }

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override
    {
        QStyledItemDelegate::initStyleOption(option, index);
        // The style derives the box's outline from the window's colour, which is as dark as a row.
        option->palette.setColor(QPalette::Window, QColor(185, 185, 190));
    }
};

template<typename Visit>
void forEachLeaf(QTreeWidget *tree, Visit visit)
{
    for (QTreeWidgetItemIterator it(tree); *it != nullptr; ++it) {
        if (CatalogTree::isLeaf(*it))
            visit(*it);
    }
}

int idOf(const QTreeWidgetItem *leaf)
{
    return leaf->data(column, SourceIdRole).toInt();
}

bool isTicked(const QTreeWidgetItem *leaf)
{
    return leaf->checkState(column) == Qt::Checked;
}

void setTicked(QTreeWidgetItem *leaf, bool ticked)
{
    leaf->setCheckState(column, ticked ? Qt::Checked : Qt::Unchecked);
}

QJsonObject entryOf(const QTreeWidgetItem *leaf)
{
    return QJsonDocument::fromJson(leaf->data(column, EntryRole).toByteArray()).object();
}

QTreeWidgetItem *newLeaf(const QString &key, const QJsonObject &entry, const QString &path)
{
    const int sourceId = entry.value(QStringLiteral("sourceId")).toInt();
    QString nickname = entry.value(QStringLiteral("nickname")).toString();
    if (nickname.isEmpty())
        nickname = key;

    auto *leaf = new QTreeWidgetItem;
    leaf->setText(column,
                  QStringLiteral("%1   [sourceId %2]").arg(nickname, QString::number(sourceId)));
    leaf->setFlags(leaf->flags() | Qt::ItemIsUserCheckable);
    leaf->setCheckState(column, Qt::Unchecked);
    leaf->setData(column, SourceIdRole, sourceId);
    leaf->setData(column, NicknameRole, nickname);
    leaf->setData(column, PathRole, path);
    leaf->setData(column, EntryRole, QJsonDocument(entry).toJson(QJsonDocument::Compact));
    leaf->setToolTip(column, SourceDetails::toolTip(path, entry));
    return leaf;
}

QTreeWidgetItem *newNode(const QString &key, const QJsonObject &object, const QString &path)
{
    if (object.contains(QStringLiteral("sourceId")))
        return newLeaf(key, object, path);

    auto *group = new QTreeWidgetItem({key});
    group->setFlags(group->flags() & ~Qt::ItemIsSelectable);
    for (auto it = object.begin(); it != object.end(); ++it) {
        if (it.value().isObject())
            group->addChild(
                newNode(it.key(), it.value().toObject(), path + QLatin1Char('/') + it.key()));
    }
    return group;
}

QList<QTreeWidgetItem *> newTopLevel(const QJsonObject &catalog)
{
    QList<QTreeWidgetItem *> items;
    for (auto it = catalog.begin(); it != catalog.end(); ++it) {
        if (it.value().isObject())
            items.append(newNode(it.key(), it.value().toObject(), it.key()));
    }
    return items;
}

CatalogTree::Selection selectionOf(QTreeWidget *tree)
{
    CatalogTree::Selection selection;
    selection.currentId = CatalogTree::currentId(tree);
    forEachLeaf(tree, [&selection](const QTreeWidgetItem *leaf) {
        if (isTicked(leaf))
            selection.tickedIds.insert(idOf(leaf));
    });
    return selection;
}

void restore(QTreeWidget *tree, const CatalogTree::Selection &selection)
{
    if (selection.tickedIds.isEmpty() && selection.currentId < 0)
        return;
    QTreeWidgetItem *current = nullptr;
    forEachLeaf(tree, [&](QTreeWidgetItem *leaf) {
        setTicked(leaf, selection.tickedIds.contains(idOf(leaf)));
        if (idOf(leaf) == selection.currentId)
            current = leaf; // of several with the same id, the last
    });
    if (current != nullptr)
        tree->setCurrentItem(current);
}

CatalogTree::Leaves firstLeaves(QTreeWidget *tree)
{
    CatalogTree::Leaves leaves;
    forEachLeaf(tree, [&leaves](QTreeWidgetItem *leaf) {
        if (!leaves.contains(idOf(leaf)))
            leaves.insert(idOf(leaf), leaf);
    });
    return leaves;
}

} // namespace

void CatalogTree::prepare(QTreeWidget *tree)
{
    tree->setItemDelegate(new CatalogDelegate(tree));
}

CatalogTree::Leaves CatalogTree::fill(QTreeWidget *tree, const QJsonObject &catalog,
                                      Selection *selection)
{
    if (tree->topLevelItemCount() > 0)
        *selection = selectionOf(tree);
    tree->clear();
    tree->addTopLevelItems(newTopLevel(catalog));
    tree->sortItems(column, Qt::AscendingOrder);
    tree->expandToDepth(1);
    restore(tree, *selection);
    return firstLeaves(tree);
}

bool CatalogTree::holdsSource(const QJsonObject &catalog)
{
    return std::any_of(catalog.begin(), catalog.end(), [](const QJsonValue &value) {
        const QJsonObject node = value.toObject();
        return node.contains(QLatin1String("sourceId")) || holdsSource(node);
    });
}

bool CatalogTree::holdsLeaf(QTreeWidget *tree)
{
    QTreeWidgetItemIterator it(tree);
    while (*it != nullptr && !isLeaf(*it))
        ++it;
    return *it != nullptr;
}

bool CatalogTree::isLeaf(const QTreeWidgetItem *item)
{
    return item != nullptr && item->data(column, SourceIdRole).isValid();
}

CatalogSource CatalogTree::source(const QTreeWidgetItem *leaf)
{
    const auto number = [leaf](Role role) { return leaf->data(column, role).toInt(); };
    CatalogSource source;
    source.source = {idOf(leaf), leaf->data(column, NicknameRole).toString(),
                     leaf->data(column, PathRole).toString()};
    source.entry = entryOf(leaf);
    if (leaf->data(column, UniqueFramesRole).isValid()) {
        source.analysis = SourceCadence{number(UniqueFramesRole), number(MedianRole),
                                        number(MinRole), number(MaxRole)};
    }
    return source;
}

int CatalogTree::currentId(const QTreeWidget *tree)
{
    const QTreeWidgetItem *current = tree->currentItem();
    return isLeaf(current) ? idOf(current) : -1;
}

QVector<DataSource> CatalogTree::tickedSources(QTreeWidget *tree)
{
    QVector<DataSource> sources;
    forEachLeaf(tree, [&sources](const QTreeWidgetItem *leaf) {
        if (isTicked(leaf) && idOf(leaf) >= 0)
            sources.append({idOf(leaf), leaf->data(column, NicknameRole).toString(),
                            leaf->data(column, PathRole).toString()});
    });
    return sources;
}

void CatalogTree::tickAiaBands(QTreeWidget *tree)
{
    static const QSet<QString> bands = {
        QStringLiteral("AIA 94"),  QStringLiteral("AIA 131"), QStringLiteral("AIA 171"),
        QStringLiteral("AIA 193"), QStringLiteral("AIA 211"), QStringLiteral("AIA 304"),
        QStringLiteral("AIA 335"),
    };
    forEachLeaf(tree, [](QTreeWidgetItem *leaf) {
        const QString nickname = leaf->data(column, NicknameRole).toString();
        if (!nickname.isEmpty())
            setTicked(leaf, bands.contains(nickname));
    });
}

void CatalogTree::untickAll(QTreeWidget *tree)
{
    forEachLeaf(tree, [](QTreeWidgetItem *leaf) { setTicked(leaf, false); });
}

void CatalogTree::setAnalysis(QTreeWidgetItem *leaf, const SourceCadence &analysis)
{
    leaf->setData(column, UniqueFramesRole, analysis.uniqueFrames);
    leaf->setData(column, MedianRole, analysis.medianSeconds);
    leaf->setData(column, MinRole, analysis.minSeconds);
    leaf->setData(column, MaxRole, analysis.maxSeconds);
    leaf->setToolTip(column, SourceDetails::toolTipWithCadence(leaf->toolTip(column), analysis));
}

void CatalogTree::clearAnalyses(QTreeWidget *tree)
{
    forEachLeaf(tree, [](QTreeWidgetItem *leaf) {
        if (!leaf->data(column, UniqueFramesRole).isValid())
            return; // its tool tip still is the first one
        for (const Role role : {UniqueFramesRole, MedianRole, MinRole, MaxRole})
            leaf->setData(column, role, QVariant());
        leaf->setToolTip(
            column, SourceDetails::toolTip(leaf->data(column, PathRole).toString(), entryOf(leaf)));
    });
}
