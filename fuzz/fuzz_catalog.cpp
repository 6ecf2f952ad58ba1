// The catalog, fresh from the service or from the file that keeps it, up to the tree that shows it.

#include "base/jsonfile.h"
#include "fuzz/scratch.h"
#include "ui/catalogtree.h"

#include <QTreeWidget>
#include <QTreeWidgetItemIterator>

namespace {

void describe(QTreeWidget &tree)
{
    const QDateTime startUtc({2024, 5, 10}, {0, 0}, Qt::UTC);
    for (QTreeWidgetItemIterator it(&tree); *it; ++it) {
        if (CatalogTree::isLeaf(*it))
            SourceDetails::page(CatalogTree::source(*it), {startUtc, startUtc.addSecs(60), 60});
    }
}

QSet<int> tickedIds(QTreeWidget &tree)
{
    QSet<int> ids;
    const QVector<DataSource> ticked = CatalogTree::tickedSources(&tree);
    for (const DataSource &source : ticked)
        ids.insert(source.sourceId);
    return ids;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    const auto catalog = JsonFile::parse(Scratch::bytes(data, size));
    if (!catalog)
        return 0;
    QTreeWidget tree;
    CatalogTree::prepare(&tree);
    CatalogTree::Selection selection;
    CatalogTree::fill(&tree, *catalog, &selection);
    Scratch::require(!CatalogTree::holdsLeaf(&tree) || CatalogTree::holdsSource(*catalog),
                     "every leaf is a datasource of the catalog");
    describe(tree);
    CatalogTree::tickAiaBands(&tree);
    const QSet<int> ticked = tickedIds(tree);
    CatalogTree::fill(&tree, *catalog, &selection);
    Scratch::require(tickedIds(tree) == ticked, "ticks survive a rebuild");
    return 0;
}
