#include "roi/roiframe.h"

#include "tests/roi/testsession.h"

#include <QtTest>

namespace {

constexpr QRgb red = 0xffff0000;
constexpr QRgb green = 0xff00ff00;
constexpr QRgb blue = 0xff0000ff;
constexpr QRgb white = 0xffffffff;

/// The four corners, row by row.
QVector<QRgb> corners(const QImage &image)
{
    const int right = image.width() - 1;
    const int bottom = image.height() - 1;
    return {image.pixel(0, 0), image.pixel(right, 0), image.pixel(0, bottom),
            image.pixel(right, bottom)};
}

/// Every pixel of another value, so that one that moved is found.
QImage gradient(const QSize &size)
{
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y, qRgb(x, y, x ^ y));
    }
    return image;
}

} // namespace

Q_DECLARE_METATYPE(QVector<QRgb>)

/// The pixels of single pictures.
class TestRoiFrame : public QObject
{
    Q_OBJECT

private slots:
    void cutOfAnyFormat_data()
    {
        QTest::addColumn<QImage::Format>("format");
        QTest::newRow("RGB") << QImage::Format_RGB32;
        QTest::newRow("opaque alpha") << QImage::Format_ARGB32;
        QTest::newRow("palette") << QImage::Format_Indexed8;
        QTest::newRow("16 bit") << QImage::Format_RGBA64;
    }
    void cutOfAnyFormat()
    {
        QFETCH(QImage::Format, format);
        const QImage frame = TestSession::frame({64, 48}).convertToFormat(format);
        const QImage cut = RoiFrame::crop(frame, QRect(30, 22, 4, 4));
        QCOMPARE(cut.size(), QSize(4, 4));
        QCOMPARE(cut.format(), QImage::Format_RGB32);
        QCOMPARE(corners(cut), QVector<QRgb>({red, green, blue, white}));
    }

    void cutKeepsTransparencyWhereThereIsSome()
    {
        QImage frame = TestSession::frame({8, 8}).convertToFormat(QImage::Format_ARGB32);
        frame.setPixel(6, 6, qRgba(1, 2, 3, 0));
        QCOMPARE(RoiFrame::crop(frame, QRect(0, 0, 4, 4)).format(), QImage::Format_RGB32);
        const QImage cut = RoiFrame::crop(frame, QRect(4, 4, 4, 4));
        QCOMPARE(cut.format(), QImage::Format_ARGB32);
        QCOMPARE(cut.pixel(2, 2), qRgba(1, 2, 3, 0));
    }

    void cutBeyondATinyFrameIsBlack()
    {
        QImage frame(1, 1, QImage::Format_RGB32);
        frame.fill(Qt::white);
        const QImage cut = RoiFrame::crop(frame, QRect(0, 0, 2, 2));
        QCOMPARE(cut.pixel(0, 0), white);
        QCOMPARE(cut.pixel(1, 1) & 0xffffff, 0u);
    }

    // "clockwise" as stored is counter-clockwise as seen.
    void quarterTurns_data()
    {
        QTest::addColumn<int>("stored");
        QTest::addColumn<QVector<QRgb>>("seen");
        QTest::newRow("none") << 0 << QVector<QRgb>{red, green, blue, white};
        QTest::newRow("90") << 90 << QVector<QRgb>{green, white, red, blue};
        QTest::newRow("-90") << -90 << QVector<QRgb>{blue, red, white, green};
        QTest::newRow("270") << 270 << QVector<QRgb>{blue, red, white, green};
        QTest::newRow("180") << 180 << QVector<QRgb>{white, blue, green, red};
    }
    void quarterTurns()
    {
        QFETCH(int, stored);
        QTEST(corners(RoiFrame::turned(TestSession::frame({30, 20}), stored)), "seen");

        const QImage upright = gradient({30, 20});
        const QImage turned = RoiFrame::turned(upright, stored);
        QCOMPARE(turned.size(), stored % 180 == 0 ? QSize(30, 20) : QSize(20, 30));
        QCOMPARE(RoiFrame::turned(turned, -stored), upright); // no pixel was resampled
    }

    void zoomGoesFromTheWholeFrameToTheCut()
    {
        const QImage frame = gradient({256, 192});
        const QRect region(101, 33, 64, 32);
        const ZoomSource source(frame);
        QCOMPARE(source.picture(region, region.size()), RoiFrame::crop(frame, region));

        const ZoomSource fields(TestSession::frame({256, 192}));
        const QImage whole = fields.picture(QRectF(0, 0, 256, 192), QSize(64, 32));
        QCOMPARE(whole.size(), QSize(64, 32));
        QCOMPARE(corners(whole), QVector<QRgb>({red, green, blue, white}));
        QCOMPARE(whole.pixel(30, 14), red); // the fields still meet in the middle
        QCOMPARE(whole.pixel(33, 17), white);
    }

    void zoomAveragesWhatItSqueezes()
    {
        QImage board(512, 512, QImage::Format_RGB32); // black and white pixels in turn
        for (int y = 0; y < 512; ++y) {
            for (int x = 0; x < 512; ++x)
                board.setPixel(x, y, (x + y) % 2 ? 0xffffffff : 0xff000000);
        }
        const QImage small = ZoomSource(board).picture(QRectF(0, 0, 512, 512), QSize(64, 64));
        const QVector<QRgb> pixels = corners(small);
        for (const QRgb pixel : pixels)
            QVERIFY2(qAbs(qRed(pixel) - 127) <= 2, qPrintable(QString::number(qRed(pixel))));
    }

    void scaleOfAZoomIsThatOfItsHorizontal()
    {
        const QRectF view(0, 0, 1000, 600); // squeezed by 10 across and by 12 down
        const QSize picture(100, 50);
        QCOMPARE(RoiFrame::zoomKmPerPixel(2.0, view, picture, 0), 20.0);
        QCOMPARE(RoiFrame::zoomKmPerPixel(2.0, view, picture, 180), 20.0);
        QCOMPARE(RoiFrame::zoomKmPerPixel(2.0, view, picture, 90), 24.0);
        QCOMPARE(RoiFrame::zoomKmPerPixel(2.0, view, picture, -90), 24.0);
        QCOMPARE(RoiFrame::zoomKmPerPixel(2.0, QRectF(7, 8, 100, 50), picture, 90), 2.0);
    }
};

QTEST_GUILESS_MAIN(TestRoiFrame)
#include "tst_roiframe.moc"
