#pragma once

#include "session/datasource.h"
#include "ui/sourcedetails.h"

#include <QHash>
#include <QSet>
#include <QStringList>
#include <QVector>

#include <optional>

class QJsonObject;
class QTreeWidget;
class QTreeWidgetItem;

/**
 * The tree of datasources: groups that can only be opened, leaves that can be ticked.
 *
 * An item is a leaf when it carries a datasource id; the rest of what is known of the datasource
 * lies beside it, in the item's data.
 */
namespace CatalogTree {

/// What survives a rebuild of the tree, and the end of the program.
struct Selection
{
    QSet<int> tickedIds;
    int currentId = -1; ///< -1 while no leaf is current
};

/// The first leaf of each datasource id, until the tree is rebuilt; not owned.
using Leaves = QHash<int, QTreeWidgetItem *>;

/// Makes @p tree show what the service sends as it is, taking no text for markup, and makes current
/// whatever is clicked, a leaf's box as well.
void prepare(QTreeWidget *tree);

/**
 * Rebuilds the tree from the service's catalog, sorted with numbers in their order, and opened two
 * levels deep and down to each ticked leaf.
 *
 * @param selection  restored afterwards; a tree that already shows a catalog replaces it first
 *                   with what is ticked and current there
 */
Leaves fill(QTreeWidget *tree, const QJsonObject &catalog, Selection *selection);

bool holdsSource(const QJsonObject &catalog);         ///< any datasource at any depth
bool holdsLeaf(QTreeWidget *tree);                    ///< any datasource to choose
bool isLeaf(const QTreeWidgetItem *item);             ///< false for null
CatalogSource source(const QTreeWidgetItem *leaf);    ///< all that is known of a leaf
int currentId(const QTreeWidget *tree);               ///< -1 when no leaf is current
QVector<DataSource> tickedSources(QTreeWidget *tree); ///< from top to bottom

/// Ticks the seven coronal bands of AIA and nothing else, brings them into view, and counts them.
int tickAiaBands(QTreeWidget *tree);
void untickAll(QTreeWidget *tree);

/// Keeps an analysis on its leaf, and tells it in the leaf's tool tip.
void setAnalysis(QTreeWidgetItem *leaf, const CadenceStatistics &analysis);
void clearAnalyses(QTreeWidget *tree);

} // namespace CatalogTree
