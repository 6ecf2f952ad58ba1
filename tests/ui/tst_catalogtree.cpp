#include "ui/catalogtree.h"

#include <QHelpEvent>
#include <QJsonDocument>
#include <QJsonObject>
#include <QToolTip>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>
#include <QtTest>

namespace {

QJsonObject parsed(const QByteArray &json)
{
    return QJsonDocument::fromJson(json).object();
}

QString leaf(const char *nickname, int sourceId)
{
    return QStringLiteral("%1   [sourceId %2]")
        .arg(QString::fromUtf8(nickname), QString::number(sourceId));
}

constexpr char catalog[] = R"({
    "SDO": {"HMI": {"mag": {"sourceId": 19, "nickname": "HMI Mag"}},
            "AIA": {"171": {"sourceId": 10, "nickname": "AIA 171", "start": "2010", "end": null},
                    "1600": {"sourceId": 15, "nickname": "AIA 1600"},
                    "94": {"sourceId": 8, "nickname": "AIA 94", "child": {"sourceId": 99}}}},
    "Zero": {"sourceId": 0},
    "Empty": {"a": "text", "b": 7, "c": [{"sourceId": 4}]},
    "note": "no object"})";

} // namespace

class TestCatalogTree : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void groupsAndLeaves();
    void rebuildKeepsWhatStillExists();
    void sharedIdIsTickedTogether();
    void aiaPresetReplacesTheSelection();
    void strangeCatalogs();
    void markupInANameIsShown();

private:
    QTreeWidgetItem *item(const QString &text) const;
    QVector<int> tickedIds() const;
    void fill(const QJsonObject &object) { CatalogTree::fill(m_tree.get(), object, &m_selection); }

    std::unique_ptr<QTreeWidget> m_tree;
    CatalogTree::Selection m_selection;
};

void TestCatalogTree::init()
{
    m_tree = std::make_unique<QTreeWidget>();
    m_selection = {};
    CatalogTree::prepare(m_tree.get());
}

QTreeWidgetItem *TestCatalogTree::item(const QString &text) const
{
    return m_tree->findItems(text, Qt::MatchExactly | Qt::MatchRecursive).value(0);
}

QVector<int> TestCatalogTree::tickedIds() const
{
    QVector<int> ids;
    const QVector<DataSource> sources = CatalogTree::tickedSources(m_tree.get());
    for (const DataSource &source : sources)
        ids.append(source.sourceId);
    return ids;
}

void TestCatalogTree::groupsAndLeaves()
{
    fill(parsed(catalog));
    QStringList texts;
    for (QTreeWidgetItemIterator it(m_tree.get()); *it != nullptr; ++it)
        texts.append((*it)->text(0));
    QCOMPARE(texts,
             QStringList({QStringLiteral("Empty"), QStringLiteral("SDO"), QStringLiteral("AIA"),
                          leaf("AIA 94", 8), leaf("AIA 171", 10), leaf("AIA 1600", 15),
                          QStringLiteral("HMI"), leaf("HMI Mag", 19), leaf("Zero", 0)}));
    const QTreeWidgetItem *group = item(QStringLiteral("AIA"));
    QVERIFY(!CatalogTree::isLeaf(group));
    QVERIFY(!(group->flags() & Qt::ItemIsSelectable));
    QVERIFY(!group->data(0, Qt::CheckStateRole).isValid());
    QVERIFY(item(QStringLiteral("SDO"))->isExpanded());
    QVERIFY(group->isExpanded());
    QCOMPARE(m_tree->currentItem(), nullptr);
}

void TestCatalogTree::rebuildKeepsWhatStillExists()
{
    m_selection = {{10, 19, 777}, 15};
    fill(parsed(catalog));
    QCOMPARE(tickedIds(), QVector<int>({10, 19}));
    QCOMPARE(m_tree->currentItem(), item(leaf("AIA 1600", 15)));
    fill(parsed(R"({"SDO": {"171": {"sourceId": 10}}})"));
    QCOMPARE(tickedIds(), QVector<int>({10}));
    QCOMPARE(CatalogTree::currentId(m_tree.get()), -1);
    fill(parsed(catalog));
    QCOMPARE(tickedIds(), QVector<int>({10})); // 19 was gone for one rebuild
    QCOMPARE(m_tree->currentItem(), nullptr);
}

void TestCatalogTree::sharedIdIsTickedTogether()
{
    m_selection = {{7}, 7};
    fill(parsed(R"({"a": {"x": {"sourceId": 7}}, "b": {"y": {"sourceId": 7}}})"));
    QCOMPARE(tickedIds(), QVector<int>({7, 7}));
    QCOMPARE(m_tree->currentItem(), item(leaf("y", 7)));
}

void TestCatalogTree::aiaPresetReplacesTheSelection()
{
    m_selection = {{15, 19}, 19};
    fill(parsed(catalog));
    QCOMPARE(CatalogTree::tickAiaBands(m_tree.get()), 2);
    QCOMPARE(tickedIds(), QVector<int>({8, 10}));
    QCOMPARE(CatalogTree::currentId(m_tree.get()), 19);
    CatalogTree::untickAll(m_tree.get());
    QVERIFY(tickedIds().isEmpty());
}

void TestCatalogTree::strangeCatalogs()
{
    const QByteArray deep =
        QByteArray("{\"a\":").repeated(900) + "{\"sourceId\":1}" + QByteArray("}").repeated(900);
    const QVector<std::pair<QByteArray, int>> catalogs = {
        {"{}", 0},
        {R"({"error": {"errno": 12, "message": "x"}})", 0},
        {R"({"a": {"sourceId": "7"}, "b": {"sourceId": 1e12}, "c": {"sourceId": null}})", 3},
        {deep, 1}};
    for (const auto &[json, leaves] : catalogs) {
        m_tree->clear();
        m_selection = {{0, 1}, -1};
        fill(parsed(json));
        QCOMPARE(tickedIds().size(), leaves);
    }
}

void TestCatalogTree::markupInANameIsShown()
{
    fill(parsed(R"({"<b>x</b>": {"sourceId": 1}})"));
    m_tree->show();
    const QRect row = m_tree->visualItemRect(m_tree->topLevelItem(0));
    QHelpEvent event(QEvent::ToolTip, row.center(), m_tree->viewport()->mapToGlobal(row.center()));
    QCoreApplication::sendEvent(m_tree->viewport(), &event);
    QVERIFY2(QToolTip::text().contains(QStringLiteral("&lt;b&gt;x")), qPrintable(QToolTip::text()));
}

QTEST_MAIN(TestCatalogTree)
#include "tst_catalogtree.moc"
