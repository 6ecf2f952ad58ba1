#include "roi/roigeometry.h"

#include <QtTest>

#include <climits>
#include <limits>

/// Where regions lie in pixels, which turns are known, and how the introduction moves.
class TestRoiGeometry : public QObject
{
    Q_OBJECT

private slots:
    void pixelRect()
    {
        const auto pixels = [](const QRectF &normalized, const QSize &frame = {1024, 1024}) {
            return RoiGeometry::pixelRect(normalized, frame);
        };
        const double nan = std::numeric_limits<double>::quiet_NaN();
        // Halves go away from zero, then odd sides lose a pixel.
        QCOMPARE(pixels({0.25, 0.25, 0.5, 0.5}, {10, 10}), QRect(3, 3, 4, 4));
        QCOMPARE(pixels({0, 0, 101.0 / 1024, 3.0 / 1024}), QRect(0, 0, 100, 2));
        // At the edge, thinner than a pixel, beside the frame, and beyond any.
        QCOMPARE(pixels({0.999, 0, 0.2, 0.5}), QRect(1022, 0, 2, 512));
        QCOMPARE(pixels({0.5, 0.5, 0.0005, 0.0001}), QRect(512, 512, 2, 2));
        QCOMPARE(pixels({-0.5, -3, 0.25, 0.5}), QRect(0, 0, 256, 512));
        QCOMPARE(pixels({1e300, 7, 1e300, 1e9}), QRect(1022, 1022, 2, 2));
        QCOMPARE(pixels({nan, nan, nan, nan}), QRect(0, 0, 2, 2));
        QCOMPARE(pixels({0, 0, 1, 1}, {101, 7}), QRect(0, 0, 100, 6));
        QCOMPARE(pixels({0.6, 0, 1, 1}, {1, 1}), QRect(0, 0, 2, 2));
        QCOMPARE(pixels({0, 0, 1, 1}, {0, 5}), QRect());
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
        const QVector<int> offered{0, 90, -90, 180};
        for (int index = 0; index < offered.size(); ++index) {
            QCOMPARE(RoiGeometry::rotationAt(index), offered.at(index));
            QCOMPARE(RoiGeometry::rotationIndex(offered.at(index) + 360), index);
        }
        for (const int other : {45, INT_MIN})
            QCOMPARE(RoiGeometry::rotationIndex(other), 0);
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
