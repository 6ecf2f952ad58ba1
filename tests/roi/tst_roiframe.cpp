#include "roi/roiframe.h"

#include "tests/roi/testsession.h"

#include <QtTest>

namespace {

/// One pixel of red, one of black, and so on.
QImage lines(bool across)
{
    QImage image(512, 512, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, (across ? y : x) % 2 ? qRgb(254, 0, 0) : 0);
    }
    return image;
}

} // namespace

/// The pixels of single pictures.
class TestRoiFrame : public QObject
{
    Q_OBJECT

private slots:
    void cuts()
    {
        const QRect region(30, 22, 4, 4);
        const QImage frame = TestSession::frame({64, 48});
        for (const auto format : {QImage::Format_RGB32, QImage::Format_ARGB32,
                                  QImage::Format_Indexed8, QImage::Format_RGBA64})
            QCOMPARE(RoiFrame::crop(frame.convertToFormat(format), region), frame.copy(region));
        QImage holed = frame.convertToFormat(QImage::Format_ARGB32);
        holed.setPixel(33, 23, qRgba(1, 2, 3, 0));
        QCOMPARE(RoiFrame::crop(holed, region), holed.copy(region)); // its alpha is kept
        QCOMPARE(RoiFrame::crop(holed, QRect(0, 0, 4, 4)).format(), QImage::Format_RGB32);
    }

    void turnsMoveWholePixels()
    {
        const QImage upright = TestSession::frame({30, 20});
        for (const int stored : {0, 90, -90, 180, 270, 450}) {
            const QImage turned = RoiFrame::turned(upright, stored);
            QCOMPARE(turned.size(), stored % 180 == 0 ? QSize(30, 20) : QSize(20, 30));
            QCOMPARE(RoiFrame::turned(turned, -stored), upright);
        }
        // "clockwise" as stored is counter-clockwise as seen.
        QCOMPARE(RoiFrame::turned(upright, 90).pixel(0, 0), upright.pixel(29, 0));
    }

    void zoomAveragesWhatItSqueezes()
    {
        // Squeezed across only: lines down the picture blend, lines across it stay as they are.
        for (const bool across : {false, true}) {
            const QImage narrow = ZoomSource(lines(across)).picture({0, 0, 512, 512}, {64, 512});
            QVERIFY(qAbs(qRed(narrow.pixel(31, 21)) - (across ? 254 : 127)) <= 2);
        }
    }

    void scaleOfAZoomIsThatOfItsHorizontal()
    {
        const QRectF view(0, 0, 1000, 600); // squeezed by 10 across and by 12 down
        for (const int upright : {0, 180})
            QCOMPARE(RoiFrame::zoomKmPerPixel(2.0, view, {100, 50}, upright), 20.0);
        for (const int onItsSide : {90, -90})
            QCOMPARE(RoiFrame::zoomKmPerPixel(2.0, view, {100, 50}, onItsSide), 24.0);
    }
};

QTEST_GUILESS_MAIN(TestRoiFrame)
#include "tst_roiframe.moc"
