#include "roi/roigeometry.h"

#include <QtTest>

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

        const QSize frame(1024, 1024);
        QTest::newRow("quarter of the disk")
            << QRectF(0.25, 0.5, 0.25, 0.125) << frame << QRect(256, 512, 256, 128);
        QTest::newRow("halves go away from zero")
            << QRectF(0.25, 0.75, 0.5, 0.5) << QSize(10, 6) << QRect(3, 4, 4, 2);
        QTest::newRow("odd sides lose a pixel")
            << QRectF(0, 0, 101.0 / 1024, 3.0 / 1024) << frame << QRect(0, 0, 100, 2);
        QTest::newRow("right edge")
            << QRectF(0.999, 0, 0.2, 0.5) << frame << QRect(1022, 0, 2, 512);
        QTest::newRow("thinner than a pixel")
            << QRectF(0.5, 0.5, 0.0005, 0.0001) << frame << QRect(512, 512, 2, 2);
        QTest::newRow("begins left of the frame")
            << QRectF(-0.5, -3, 0.25, 0.5) << frame << QRect(0, 0, 256, 512);
        QTest::newRow("beyond any frame")
            << QRectF(1e300, 7, 1e300, 1e9) << frame << QRect(1022, 1022, 2, 2);
        QTest::newRow("not numbers") << QRectF(nan, nan, nan, nan) << frame << QRect(0, 0, 2, 2);
        QTest::newRow("odd frame") << QRectF(0, 0, 1, 1) << QSize(101, 7) << QRect(0, 0, 100, 6);
        QTest::newRow("frame of two pixels")
            << QRectF(0.6, 0.6, 1, 1) << QSize(2, 2) << QRect(0, 0, 2, 2);
        QTest::newRow("frame of one pixel")
            << QRectF(0.6, 0, 1, 1) << QSize(1, 1) << QRect(0, 0, 2, 2);
        QTest::newRow("no frame") << QRectF(0, 0, 1, 1) << QSize(0, 5) << QRect();
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
            const QRect pixels(side / 3, side / 11, side, side / 2 * 2);
            QCOMPARE(RoiGeometry::pixelRect(RoiGeometry::normalizedRect(pixels, frame), frame),
                     pixels);
        }
    }

    void rotation_data()
    {
        QTest::addColumn<int>("stored");
        QTest::addColumn<int>("index");
        QTest::addColumn<int>("reduced");
        QTest::newRow("none") << 0 << 0 << 0;
        QTest::newRow("quarter") << 90 << 1 << 90;
        QTest::newRow("quarter back") << -90 << 2 << 270;
        QTest::newRow("three quarters, as other programs write it") << 270 << 2 << 270;
        QTest::newRow("half") << 180 << 3 << 180;
        QTest::newRow("half back") << -180 << 3 << 180;
        QTest::newRow("more than a turn") << 450 << 1 << 90;
        QTest::newRow("no quarter turn") << 45 << 0 << 0;
        QTest::newRow("smallest number") << std::numeric_limits<int>::min() << 0 << 0;
    }
    void rotation()
    {
        QFETCH(int, stored);
        QTEST(RoiGeometry::rotationIndex(stored), "index");
        QTEST(RoiGeometry::reducedRotation(stored), "reduced");
    }

    void choicesStoreWhatTheySay()
    {
        const QVector<int> stored = {0, 90, -90, 180};
        for (int index = 0; index < stored.size(); ++index) {
            QCOMPARE(RoiGeometry::rotationAt(index), stored.at(index));
            QCOMPARE(RoiGeometry::rotationIndex(stored.at(index)), index);
        }
        QCOMPARE(RoiGeometry::rotationAt(-1), 0);
    }

    void introduction()
    {
        QCOMPARE(RoiGeometry::introFrameCount(0.5, 1), 2);   // one would not be a movement
        QCOMPARE(RoiGeometry::introFrameCount(2.5, 25), 63); // 62.5: half rounds up
        QCOMPARE(RoiGeometry::introFrameCount(15.0, 120), 1800);

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
