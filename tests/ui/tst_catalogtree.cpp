#include "ui/catalogtree.h"

#include <QHelpEvent>
#include <QJsonDocument>
#include <QJsonObject>
#include <QToolTip>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>
#include <QtTest>

namespace {

constexpr char catalog[] = R"({
    "SDO": {"HMI": {"mag": {"sourceId": 19, "nickname": "HMI Mag"}},
            "AIA": {"171": {"sourceId": 10, "nickname": "AIA 171", "start": "2010", "end": null},
                    "1600": {"sourceId": 15, "nickname": "AIA 1600"},
                    "94": {"sourceId": 8, "nickname": "AIA 94", "child": {"sourceId": 99}}}},
    "Zero": {"sourceId": 0},
    "Empty": {"a": "text", "b": 7, "c": [{"sourceId": 4}]},
    "note": "no object"})";
constexpr char oneBand[] = R"({"SDO": {"171": {"sourceId": 10}}})";
constexpr char sharedId[] = R"({"a": {"x": {"sourceId": 7}}, "b": {"y": {"sourceId": 7}}})";
constexpr char strangeIds[] =
    R"({"a": {"sourceId": "7"}, "b": {"sourceId": 1e12}, "c": {"sourceId": null}})";
constexpr char markup[] = R"({"<b>x</b>": {"sourceId": 1}})";

} // namespace

class TestCatalogTree : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_tree = std::make_unique<QTreeWidget>();
        m_selection = {};
        CatalogTree::prepare(m_tree.get());
    }

    void groupsAndLeaves()
    {
        fill(catalog);
        QStringList texts;
        for (QTreeWidgetItemIterator it(m_tree.get()); *it != nullptr; ++it)
            texts.append((*it)->text(0));
        QCOMPARE(texts.join(QLatin1Char('|')),
                 QStringLiteral("Empty|SDO|AIA|AIA 1600   [sourceId 15]|AIA 171   [sourceId 10]|"
                                "AIA 94   [sourceId 8]|HMI|HMI Mag   [sourceId 19]|"
                                "Zero   [sourceId 0]"));
        const QTreeWidgetItem *group = item("AIA");
        QVERIFY(!CatalogTree::isLeaf(group));
        QVERIFY(!(group->flags() & Qt::ItemIsSelectable));
        QVERIFY(!group->data(0, Qt::CheckStateRole).isValid());
        QVERIFY(item("SDO")->isExpanded() && group->isExpanded());
        QCOMPARE(m_tree->currentItem(), nullptr);
    }

    void rebuildKeepsWhatStillExists()
    {
        m_selection = {{10, 19, 777}, 15};
        fill(catalog);
        QCOMPARE(tickedIds(), QVector<int>({10, 19}));
        QCOMPARE(m_tree->currentItem(), item("AIA 1600   [sourceId 15]"));
        fill(oneBand);
        QCOMPARE(tickedIds(), QVector<int>({10}));
        QCOMPARE(CatalogTree::currentId(m_tree.get()), -1);
        fill(catalog);
        QCOMPARE(tickedIds(), QVector<int>({10})); // 19 was gone for one rebuild
        QCOMPARE(m_tree->currentItem(), nullptr);
    }

    void sharedIdIsTickedTogether()
    {
        m_selection = {{7}, 7};
        fill(sharedId);
        QCOMPARE(tickedIds(), QVector<int>({7, 7}));
        QCOMPARE(m_tree->currentItem(), item("y   [sourceId 7]"));
    }

    void aiaPresetReplacesTheSelection()
    {
        m_selection = {{15, 19}, 19};
        fill(catalog);
        CatalogTree::tickAiaBands(m_tree.get());
        QCOMPARE(tickedIds(), QVector<int>({10, 8}));
        QCOMPARE(CatalogTree::currentId(m_tree.get()), 19);
        CatalogTree::untickAll(m_tree.get());
        QVERIFY(tickedIds().isEmpty());
    }

    void strangeCatalogs()
    {
        const QByteArray deep = QByteArray("{\"a\":").repeated(900) + "{\"sourceId\":1}" +
                                QByteArray("}").repeated(900);
        m_selection = {{0, 1}, -1};
        fill(strangeIds);
        QCOMPARE(tickedIds().size(), 3);
        m_tree->clear();
        m_selection = {{0, 1}, -1};
        fill(deep);
        QCOMPARE(tickedIds().size(), 1);
    }

    void markupInANameIsShown()
    {
        fill(markup);
        m_tree->show();
        const QRect row = m_tree->visualItemRect(m_tree->topLevelItem(0));
        QHelpEvent event(QEvent::ToolTip, row.center(),
                         m_tree->viewport()->mapToGlobal(row.center()));
        QCoreApplication::sendEvent(m_tree->viewport(), &event);
        QVERIFY(QToolTip::text().contains(QStringLiteral("&lt;b&gt;x")));
    }

private:
    QTreeWidgetItem *item(const char *text) const
    {
        return m_tree->findItems(QLatin1String(text), Qt::MatchExactly | Qt::MatchRecursive)
            .value(0);
    }

    QVector<int> tickedIds() const
    {
        QVector<int> ids;
        const QVector<DataSource> sources = CatalogTree::tickedSources(m_tree.get());
        for (const DataSource &source : sources)
            ids.append(source.sourceId);
        return ids;
    }

    void fill(const QByteArray &json)
    {
        CatalogTree::fill(m_tree.get(), QJsonDocument::fromJson(json).object(), &m_selection);
    }

    std::unique_ptr<QTreeWidget> m_tree;
    CatalogTree::Selection m_selection;
};

QTEST_MAIN(TestCatalogTree)
#include "tst_catalogtree.moc"
