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
 * An item is a leaf when it carries a datasource id; whatever else is known about the datasource
 * is in the item's data as well.
 */
namespace CatalogTree {

/// What is kept when the tree is rebuilt, and stored when the program ends.
struct Selection
{
    QSet<int> tickedIds;
    int currentId = -1; ///< -1 while no leaf is current
};

/// The first leaf of each datasource id, until the tree is rebuilt; not owned.
using Leaves = QHash<int, QTreeWidgetItem *>;

/// Makes @p tree show texts of the service as they are, never as markup, and makes a leaf current
/// when its box is clicked.
void prepare(QTreeWidget *tree);

/**
 * Rebuilds the tree from the service's catalog, with numbers sorted as numbers, expanded two levels
 * deep and down to each ticked leaf.
 *
 * @param selection  restored afterwards; if the tree already shows a catalog, first replaced by
 *                   what is ticked and current there
 */
Leaves fill(QTreeWidget *tree, const QJsonObject &catalog, Selection *selection);

bool holdsSource(const QJsonObject &catalog);         ///< any datasource at any depth
bool holdsLeaf(QTreeWidget *tree);                    ///< any datasource to choose
bool isLeaf(const QTreeWidgetItem *item);             ///< false for null
CatalogSource source(const QTreeWidgetItem *leaf);    ///< all that is known about a leaf
int currentId(const QTreeWidget *tree);               ///< -1 when no leaf is current
QVector<DataSource> tickedSources(QTreeWidget *tree); ///< from top to bottom

/// Ticks the seven coronal bands of AIA and nothing else, and scrolls to the first. Returns how
/// many the catalog has.
int tickAiaBands(QTreeWidget *tree);
void untickAll(QTreeWidget *tree);

/// Stores an analysis on its leaf, and adds it to the leaf's tool tip.
void setAnalysis(QTreeWidgetItem *leaf, const CadenceStatistics &analysis);
void clearAnalyses(QTreeWidget *tree);

} // namespace CatalogTree
