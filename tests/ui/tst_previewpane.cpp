#include "ui/previewpane.h"

#include <QLabel>
#include <QPainter>
#include <QtTest>

namespace {

constexpr qreal screenRatio = 1.5;

/// A frame of one-pixel stripes, which any scaling or shift by half a pixel turns grey.
QImage stripes(const QSize &size)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    for (int x = 0; x < size.width(); x += 2)
        painter.fillRect(x, 0, 1, size.height(), Qt::white);
    return image;
}

} // namespace

class TestPreviewPane : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void frameFillsTheLabelPixelByPixel();
    void resizingStartsFromTheWholeFrame();
    void nothingKeepsTheLastFrame();

private:
    std::unique_ptr<QLabel> m_label;
    std::unique_ptr<PreviewPane> m_pane;
};

void TestPreviewPane::init()
{
    m_label = std::make_unique<QLabel>(QStringLiteral("No frame"));
    m_label->setAlignment(Qt::AlignCenter);
    m_label->resize(304, 204);
    m_label->show();
    m_pane = std::make_unique<PreviewPane>(m_label.get());
}

void TestPreviewPane::frameFillsTheLabelPixelByPixel()
{
    const QImage frame = stripes(QSize(300, 200) * screenRatio);
    QVERIFY(m_pane->showFrame(frame));
    QCOMPARE(m_label->text(), QString());
    QImage shown = m_label->grab().toImage().convertToFormat(QImage::Format_RGB32);
    shown.setDevicePixelRatio(1.0);
    QCOMPARE(shown.size(), QSize(304, 204) * screenRatio);
    QCOMPARE(shown.copy(QRect(QPoint(3, 3), frame.size())), frame);
}

void TestPreviewPane::resizingStartsFromTheWholeFrame()
{
    QVERIFY(m_pane->showFrame(stripes({800, 400})));
    m_label->resize(1, 1);
    m_label->resize(404, 404);
    QCOMPARE(m_label->pixmap(Qt::ReturnByValue).size(), QSize(600, 300));
    m_label->resize(804, 404);
    QCOMPARE(m_label->pixmap(Qt::ReturnByValue).size(), QSize(1200, 600));
}

void TestPreviewPane::nothingKeepsTheLastFrame()
{
    QVERIFY(m_pane->showFrame(stripes({40, 40})));
    const qint64 shown = m_label->pixmap(Qt::ReturnByValue).cacheKey();
    QVERIFY(!m_pane->showFrame(QImage()));
    QCOMPARE(m_label->pixmap(Qt::ReturnByValue).cacheKey(), shown);

    m_pane->clear(QStringLiteral("Waiting"));
    m_label->resize(500, 500);
    QCOMPARE(m_label->text(), QStringLiteral("Waiting"));
}

int main(int argc, char *argv[])
{
    qputenv("QT_SCALE_FACTOR", QByteArray::number(screenRatio));
    QApplication application(argc, argv);
    TestPreviewPane test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_previewpane.moc"
