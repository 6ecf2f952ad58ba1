#include "roi/roigeometry.h"

#include <QtTest>

#include <climits>
#include <limits>

/// Where regions lie in pixels, which turns are known, and how the introduction moves.
class TestRoiGeometry : public QObject
{
    Q_OBJECT

private slots:
    void pixelRect_data()
    {
        const double nan = std::numeric_limits<double>::quiet_NaN();
        QTest::addColumn<QRectF>("normalized");
        QTest::addColumn<QSize>("frame");
        QTest::addColumn<QRect>("pixels");
        const auto row = [](const char *title, const QRectF &normalized, const QSize &frame,
                            const QRect &pixels) {
            QTest::newRow(title) << normalized << frame << pixels;
        };
        const QSize frame(1024, 1024);
        row("halves go away from zero", {0.25, 0.25, 0.5, 0.5}, {10, 10}, {3, 3, 4, 4});
        row("odd sides lose a pixel", {0, 0, 101.0 / 1024, 3.0 / 1024}, frame, {0, 0, 100, 2});
        row("right edge", {0.999, 0, 0.2, 0.5}, frame, {1022, 0, 2, 512});
        row("thinner than a pixel", {0.5, 0.5, 0.0005, 0.0001}, frame, {512, 512, 2, 2});
        row("begins beside the frame", {-0.5, -3, 0.25, 0.5}, frame, {0, 0, 256, 512});
        row("beyond any frame", {1e300, 7, 1e300, 1e9}, frame, {1022, 1022, 2, 2});
        row("not numbers", {nan, nan, nan, nan}, frame, {0, 0, 2, 2});
        row("odd frame", {0, 0, 1, 1}, {101, 7}, {0, 0, 100, 6});
        row("frame of one pixel", {0.6, 0, 1, 1}, {1, 1}, {0, 0, 2, 2});
        row("no frame", {0, 0, 1, 1}, {0, 5}, {});
    }
    void pixelRect()
    {
        QFETCH(QRectF, normalized);
        QFETCH(QSize, frame);
        QTEST(RoiGeometry::pixelRect(normalized, frame), "pixels");
    }

    void pixelsSurviveTheirStoredForm()
    {
        const QSize frame(1023, 769); // sizes that no fraction of two hits exactly
        for (int side = 2; side < 700; side += 2) {
            const QRect pixels(side / 3, side / 11, side, side);
            const QRectF stored = RoiGeometry::normalizedRect(pixels, frame);
            QCOMPARE(RoiGeometry::pixelRect(stored, frame), pixels);
        }
    }

    void rotations()
    {
        const QVector<int> stored{0, 90, -90, 180, 270, -180, 450, 45, INT_MIN};
        const QVector<int> indices{0, 1, 2, 3, 2, 3, 1, 0, 0};
        const QVector<int> turns{0, 90, 270, 180, 270, 180, 90, 0, 0};
        for (int i = 0; i < stored.size(); ++i) {
            QCOMPARE(RoiGeometry::rotationIndex(stored.at(i)), indices.at(i));
            QCOMPARE(RoiGeometry::reducedRotation(stored.at(i)), turns.at(i));
        }
        for (int index = 0; index < 4; ++index) // each choice stores what it says
            QCOMPARE(RoiGeometry::rotationAt(index), stored.at(index));
    }

    void introduction()
    {
        QCOMPARE(RoiGeometry::introFrameCount(0.5, 1), 2);   // one would not be a movement
        QCOMPARE(RoiGeometry::introFrameCount(2.5, 25), 63); // 62.5: half rounds up
        const QSize frame(1024, 512);
        const QRectF region(100, 50, 64, 32);
        QCOMPARE(RoiGeometry::zoomView(region, frame, 0, 5), QRectF(0, 0, 1024, 512));
        QCOMPARE(RoiGeometry::zoomView(region, frame, 2, 5), QRectF(50, 25, 544, 272));
        QCOMPARE(RoiGeometry::zoomView(region, frame, 4, 5), region);
        // Smoothstep: a quarter of the time covers 5/32 of the way.
        QCOMPARE(RoiGeometry::zoomView(region, frame, 1, 5).x(), 100 * 5.0 / 32.0);
    }
};

QTEST_APPLESS_MAIN(TestRoiGeometry)
#include "tst_roigeometry.moc"
