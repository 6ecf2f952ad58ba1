#include "imaging/blankblock.h"

#include <QImage>
#include <QJsonObject>
#include <QtTest>

namespace {

QImage grey(QSize size, QImage::Format format = QImage::Format_ARGB32)
{
    QImage image(size, QImage::Format_ARGB32);
    image.fill(0xff808080U);
    return image.convertToFormat(format);
}

void fill(QImage &image, const QRect &rect, QRgb colour = 0xff000000U)
{
    for (int y = rect.top(); y <= rect.bottom(); ++y) {
        for (int x = rect.left(); x <= rect.right(); ++x)
            image.setPixel(x, y, colour);
    }
}

QJsonObject disk(QSize native, double radius)
{
    return {{QStringLiteral("width"), native.width()},
            {QStringLiteral("height"), QString::number(native.height())},
            {QStringLiteral("rsun"), radius},
            {QStringLiteral("refPixelX"), (native.width() + 1) / 2.0},
            {QStringLiteral("refPixelY"), (native.height() + 1) / 2.0}};
}

QString warning(int x, int y, int width, int height)
{
    return QString::asprintf("possible blank renderer block at x=%d y=%d, approx. %dx%d px", x, y,
                             width, height);
}

} // namespace

class TestBlankBlock : public QObject
{
    Q_OBJECT

private slots:
    void shapes_data()
    {
        QTest::addColumn<QVector<QPoint>>("cells");
        QTest::addColumn<QString>("expected");
        using Cells = QVector<QPoint>;
        QTest::newRow("one cell") << Cells{{5, 6}} << warning(320, 384, 64, 64);
        QTest::newRow("centre cell") << Cells{{8, 8}} << QString();
        QTest::newRow("joined to the centre") << Cells{{7, 8}, {8, 8}} << QString();
        QTest::newRow("two areas") << Cells{{5, 10}, {10, 5}} << warning(640, 320, 64, 64);
        QTest::newRow("centre, then another")
            << Cells{{8, 8}, {5, 10}} << warning(320, 640, 64, 64);
        QTest::newRow("L of three") << Cells{{6, 5}, {5, 6}, {6, 6}} << warning(320, 320, 128, 128);
        QTest::newRow("diagonal") << Cells{{5, 5}, {6, 6}, {7, 7}} << warning(320, 320, 64, 64);
        QTest::newRow("hook: 4 of 6") << Cells{{5, 4}, {5, 5}, {5, 6}, {6, 6}} << QString();
        QTest::newRow("outside the disk") << Cells{{0, 0}, {1, 8}} << QString();
    }
    void shapes()
    {
        QFETCH(QVector<QPoint>, cells);
        QImage image = grey({1024, 1024});
        for (const QPoint &cell : qAsConst(cells))
            fill(image, {cell * 64, QSize(64, 64)});
        QTEST(detectBlankRendererBlock(image, disk({4096, 4096}, 1600)), "expected");
    }

    /// Whatever format a picture is decoded to, the answer is that for its ARGB32 form.
    void coloursAndFormats()
    {
        for (const QRgb colour : {0xff010101U, 0xff020000U, 0x01ff80ffU, 0x02ff80ffU}) {
            const bool blank = colour == 0xff010101U || colour == 0x01ff80ffU;
            QImage image = grey({512, 512});
            fill(image, {64, 192, 64, 64}, colour);
            QCOMPARE(!detectBlankRendererBlock(image, disk({512, 512}, 250)).isEmpty(), blank);
            for (const auto format : {QImage::Format_RGB32, QImage::Format_RGBA8888}) {
                const QImage other = image.convertToFormat(format);
                const QImage argb = other.convertToFormat(QImage::Format_ARGB32);
                QCOMPARE(detectBlankRendererBlock(other, disk({512, 512}, 250)),
                         detectBlankRendererBlock(argb, disk({512, 512}, 250)));
            }
        }
    }

    void sizes()
    {
        const auto isFound = [](QSize size, const QJsonObject &metadata, const QRect &black) {
            QImage image = grey(size, QImage::Format_RGB32);
            fill(image, black);
            const QString text = warning(black.x(), black.y(), black.width(), black.height());
            return detectBlankRendererBlock(image, metadata) == text;
        };
        const QRect cell(64, 128, 64, 64);
        QJsonObject noCentre = disk({256, 256}, 200);
        noCentre.remove(QStringLiteral("refPixelX"));
        QVERIFY(isFound({256, 256}, disk({256, 256}, 200), cell));
        QVERIFY(!isFound({256, 255}, disk({256, 255}, 200), cell));
        QVERIFY(isFound({256, 256}, noCentre, cell));
        QVERIFY(!isFound({256, 256}, {{QStringLiteral("width"), 256}}, cell));
        QVERIFY(isFound({256, 256}, disk({4, 4}, 1e300), cell));
        QVERIFY(isFound({4096, 4096}, disk({4096, 4096}, 1600), {1024, 1280, 256, 256}));
    }

    /// The last cell of this picture is 50 x 40 pixels and sampled whole: 1996 of 2000 are 99.8 %.
    void nearlyBlankCells()
    {
        QImage image = grey({370, 296});
        fill(image, {320, 256, 50, 40});
        fill(image, {330, 260, 4, 1}, 0xffffffffU);
        QCOMPARE(detectBlankRendererBlock(image, disk({370, 296}, 1e4)), warning(320, 256, 50, 40));
        fill(image, {320, 295, 1, 1}, 0xffffffffU);
        QCOMPARE(detectBlankRendererBlock(image, disk({370, 296}, 1e4)), QString());
    }
};

QTEST_GUILESS_MAIN(TestBlankBlock)
#include "tst_blankblock.moc"
