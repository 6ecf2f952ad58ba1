#include "roi/frameinterval.h"
#include "roi/frameplayer.h"
#include "roi/regionmarks.h"
#include "roi/roiframe.h"
#include "roi/roigeometry.h"
#include "roi/samescale.h"
#include "roi/solarposition.h"
#include "tests/roi/testsession.h"

#include <QPainter>
#include <QtTest>

#include <climits>
#include <limits>
#include <tuple>

/// Where regions lie in pixels, how they are turned, cut and zoomed to.
class TestRegions final : public QObject
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
        QCOMPARE(pixels({0.6, 0.6, 1, 1}, {1, 1}), QRect(0, 0, 2, 2));
        QCOMPARE(pixels({0, 0, 1, 1}, {0, 5}), QRect());
        const QRectF odd(1.0 / 3, 0.501, 0.25, 1.5); // between pixels, and beyond the frame
        QCOMPARE(RoiGeometry::coveringPixels(odd, {67, 50, 60, 50}, {200, 100}),
                 QRectF(1.0 / 3, 0.501, 0.3, 1.5));
        QCOMPARE(RoiGeometry::coveringPixels(odd, {70, 48, 50, 50}, {200, 100}),
                 QRectF(0.35, 0.48, 0.25, 0.5));
        const QSize frame(1023, 769); // sizes that no fraction of two hits exactly
        for (int side = 2; side < 700; side += 2) {
            const QRect drawn(side / 3, side / 11, side, side);
            QCOMPARE(pixels(RoiGeometry::normalizedRect(drawn, frame), frame), drawn);
        }
    }

    void drags()
    {
        const QSize frame(200, 100);
        const QRect start(50, 40, 60, 40);
        const double wide = RegionShape::proportionAt(3); // 16:9
        const auto resized = [&](int x, int y, const QPointF &by, double proportion = 0) {
            return RegionShape::resized(start, {x, y}, by, frame, proportion);
        };
        QCOMPARE(resized(1, 0, {5.6, 99}), QRect(50, 40, 64, 40)); // even, and one side only
        QCOMPARE(resized(-1, -1, {-999, -999}), QRect(0, 0, 110, 80));
        QCOMPARE(resized(-1, 1, {999, -999}), QRect(108, 40, 2, 2)); // it does not turn over
        QCOMPARE(resized(1, 1, {0, 999}, wide), QRect(50, 40, 106, 60));
        QCOMPARE(resized(-1, 0, {-999, 0}, 1), QRect(10, 0, 100, 100));
        QCOMPARE(resized(0, -1, {0, 30}, wide), QRect(71, 70, 18, 10));
        QCOMPARE(resized(1, 0, {20, 0}, 1), QRect(50, 20, 80, 80));
        QCOMPARE(resized(-1, -1, {-4, 0}, 1), QRect(46, 16, 64, 64));
        QCOMPARE(resized(0, 1, {0, -10}, 1), QRect(65, 40, 30, 30));
        QCOMPARE(RegionShape::moved(start, {999, -999}, frame), QRect(140, 0, 60, 40));
        QCOMPARE(RegionShape::moved(start, {-60.4, 33}, frame), QRect(0, 60, 60, 40));
        const auto spanned = [&](const QPointF &from, const QPointF &to, double proportion) {
            return RegionShape::spanned(from, to, frame, proportion);
        };
        QCOMPARE(spanned({20.5, 90}, {-5, 10}, 0), QRectF(0, 10, 20.5, 80));
        QCOMPARE(spanned({20.5, 90}, {-5, 10}, 1), QRectF(0, 70, 20, 20));
        QCOMPARE(spanned({20, 10}, {84, 11}, wide), QRectF(20, 10, 64, 36));
        QVERIFY(spanned({20, 10}, {23, 10}, wide).isEmpty()); // too low, and too narrow
        QVERIFY(spanned({20, 10}, {21, 13}, RegionShape::proportionAt(4)).isEmpty());
        QCOMPARE(spanned({20, 10}, {21, 30}, 2), QRectF(20, 10, 40, 20));
        QCOMPARE(spanned({20, 10}, {22, 12}, 1), QRectF(20, 10, 2, 2)); // the smallest
        QCOMPARE(RegionShape::middle(frame, 0), QRect(50, 25, 100, 50));
        QCOMPARE(RegionShape::middle(frame, RegionShape::proportionAt(4)), QRect(86, 25, 28, 50));
        QCOMPARE(FrameIntervals::keptText({6}, 9), QStringLiteral("Film: frame 7"));
        QCOMPARE(FrameIntervals::keptText({6, 7}, 9), QStringLiteral("Film: frames 7 to 8"));
        const QRectF sight(0, 0, 300, 200);
        const QSizeF name(50, 20); // above its region, inside it, in sight of it, gone with it
        QCOMPARE(RegionMarks::nameBox({10, 20, 9, 9}, name, sight), QRectF({10, 0}, name));
        QCOMPARE(RegionMarks::nameBox({270, 10, 90, 90}, name, sight), QRectF({250, 10}, name));
        QCOMPARE(RegionMarks::nameBox({-90, -90, 999, 100}, name, sight), QRectF({0, 0}, name));
        QVERIFY(RegionMarks::nameBox({-90, -90, 80, 80}, name, sight).isEmpty());
    }

    void grips()
    {
        const QRectF outline(100, 100, 80, 60);
        QString seen; // the name, or sides as on a number pad, where 5 is none
        for (const QRectF &name : {QRectF(100, 80, 50, 20), QRectF(0, 0, 300, 300)}) {
            for (const int y : {93, 94, 106, 107, 166, 167}) {
                for (const int x : {93, 94, 106, 107, 155, 174, 186, 187}) {
                    const RegionGrip grip = RegionMarks::gripAt({1.0 * x, 1.0 * y}, outline, name);
                    seen += grip.kind == RegionGrip::Kind::Name
                                ? QStringLiteral("n")
                                : QString::number(5 + grip.sides.x - 3 * grip.sides.y);
                }
            }
        }
        QCOMPARE(seen, QStringLiteral("55nn5555 577n8995 57788995 54455665 51122335 55555555"
                                      "nnnnnnnn n77nn99n n77nn99n nnnnnnnn n11nn33n nnnnnnnn")
                           .remove(QLatin1Char(' ')));
    }

    void placesOnTheSun()
    {
        const auto image = [](double native, double rsun, double x, double y) {
            const auto json = QStringLiteral(
                R"({"width":%1, "height":%1, "rsun":%2, "refPixelX":%3, "refPixelY":%4})");
            const QString filled = json.arg(native).arg(rsun, 0, 'f', 3).arg(x).arg(y);
            return QJsonDocument::fromJson(filled.toUtf8()).object();
        };
        const QJsonObject aia = image(4096, 1583.861, 2048.5, 2048.5);
        const QJsonObject eit = image(1024, 365.232, 512.74, 521.95);
        const QJsonObject c2 = image(1024, 80.64, 512, 506);
        // The centre of the disk, an active region, the limb in the west and in the north.
        const std::tuple<QPointF, QJsonObject, const char *> places[] = {
            {{512, 512}, aia, "+0.000, y +0.000, r 0.000 R☉   |   x +0.0, y +0.0, r 0.0"},
            {{300, 400}, aia, "-0.535, y +0.283, r 0.606 R☉   |   x -372.5, y +196.8, r 421.3"},
            {{877.472, 502.55},
             eit,
             "+1.000, y +0.000, r 1.000 R☉   |   x +695.7, y +0.0, r 695.7"},
            {{511.5, 437.86}, c2, "+0.000, y +1.000, r 1.000 R☉   |   x +0.0, y +695.7, r 695.7"}};
        for (const auto &[pixel, metadata, text] : places)
            QCOMPARE(SolarPosition::pixelText(pixel, {1024, 1024}, metadata),
                     QStringLiteral("Cursor: x %1 Mm").arg(QString::fromUtf8(text)));
        QCOMPARE(SolarPosition::sizeText({256, 128}, {1024, 1024}, c2),
                 QStringLiteral("Region: 3.175 x 1.587 R\u2609   |   2209 x 1104 Mm"));
        QJsonObject poor = c2; // what older sessions know
        const auto size = [&poor](const QSize &pixels) {
            return SolarPosition::sizeText(pixels, {1024, 1024}, poor);
        };
        QCOMPARE(size({8, 4}),
                 QStringLiteral("Region: 0.099 x 0.050 R\u2609   |   69.0 x 34.5 Mm"));
        QCOMPARE(size({}), QStringLiteral("Region: --"));
        poor.remove(QStringLiteral("height"));
        QCOMPARE(size({256, 128}), QStringLiteral("Region: 3.175 R\u2609   |   2209 Mm wide"));
        const QString warning =
            SameScale::warning({{QStringLiteral("AIA"), aia},
                                {QStringLiteral("EIT"), eit},
                                {QString(), image(4096, 1599, 2048.5, 2048.5)}, // almost the same
                                {QString(), {}},                                // nothing is known
                                {QStringLiteral("moved"), image(4096, 1599, 2048.5, 1960)},
                                {QStringLiteral("aside"), image(4096, 1599, 2110, 2110)},
                                {QStringLiteral("half"), image(4096, 3200, 2048.5, 2048.5)}});
        QCOMPARE(warning, QStringLiteral("A region is not the same place on the Sun as in AIA: EIT "
                                         "(1.08 times as wide), moved (shifted), aside (shifted), "
                                         "half (0.495 times as wide)."));
    }

    void rotations()
    {
        const QVector<int> offered{0, 90, -90, 180};
        for (int index = 0; index < offered.size(); ++index) {
            QCOMPARE(RoiGeometry::rotationAt(index), offered.at(index));
            QCOMPARE(RoiGeometry::rotationIndex(offered.at(index) + 360), index);
        }
        const QImage upright = TestSession::frame({30, 20});
        for (const int other : {45, INT_MIN}) { // no quarter turn is none
            QCOMPARE(RoiGeometry::rotationIndex(other), 0);
            QCOMPARE(RoiFrame::turned(upright, other), upright);
        }
        for (const int stored : {0, 90, -90, 180, 270, 450}) {
            const QImage turned = RoiFrame::turned(upright, stored);
            QCOMPARE(turned.size(), stored % 180 == 0 ? QSize(30, 20) : QSize(20, 30));
            QCOMPARE(RoiFrame::turned(turned, -stored), upright);
        }
        // "clockwise" as stored is counter-clockwise as seen.
        QCOMPARE(RoiFrame::turned(upright, 90).pixel(0, 0), upright.pixel(29, 0));
    }

    void cuts()
    {
        const QRect region(30, 22, 4, 4);
        const QImage frame = TestSession::frame({64, 48});
        for (const auto format : {QImage::Format_RGB32, QImage::Format_ARGB32})
            QCOMPARE(RoiFrame::crop(frame.convertToFormat(format), region), frame.copy(region));
        QImage holed = frame.convertToFormat(QImage::Format_ARGB32);
        holed.setPixel(33, 23, qRgba(1, 2, 3, 0));
        QCOMPARE(RoiFrame::crop(holed, region), holed.copy(region)); // its alpha is kept
        QCOMPARE(RoiFrame::crop(holed, QRect(0, 0, 4, 4)).format(), QImage::Format_RGB32);
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
        QImage lines(512, 512, QImage::Format_RGB32); // a black one, a red one, and so on
        for (int x = 0; x < lines.width(); ++x)
            QPainter(&lines).fillRect(x, 0, 1, 512, x % 2 ? Qt::red : Qt::black);
        const QImage narrow = ZoomSource(lines).picture({0, 0, 512, 512}, {64, 512});
        QVERIFY(std::abs(qRed(narrow.pixel(31, 21)) - 127) <= 2); // squeezed, they blend
        const QRect view(0, 0, 1000, 600);           // squeezed by 10 across and by 12 down
        for (const int rotation : {0, 180, 90, -90}) // the bar lies across the turned picture
            QCOMPARE(RoiFrame::zoomKmPerPixel(2.0, view, {100, 50}, rotation),
                     rotation % 180 == 0 ? 20.0 : 24.0);
    }

    void partOfASession()
    {
        QVector<RoiSourceFrame> frames(4);
        for (int minute = 0; minute < 4; ++minute)
            frames[minute].actualUtc = QDateTime({2024, 5, 1}, {12, minute}, Qt::UTC);
        using namespace FrameIntervals;
        const FrameInterval from = beginningAt({}, frames, 0, 1);
        const FrameInterval part = endingAt(from, frames, 0, 2);
        QCOMPARE(kept(from, frames, 7), QVector<int>({1, 2, 3}));
        QCOMPARE(kept(part, frames, 7), QVector<int>({1, 2}));
        QCOMPARE(kept(endingAt(part, frames, 0, 0), frames, 0), QVector<int>({0}));
        QCOMPARE(kept(beginningAt(part, frames, 0, 3), frames, 0), QVector<int>({3}));
        const QVector<RoiSourceFrame> timeless(4); // a part of its own
        const FrameInterval own = endingAt(beginningAt({}, timeless, 7, 1), timeless, 7, 2);
        QCOMPARE(kept(own, timeless, 7), QVector<int>({1, 2}));
        QCOMPARE(kept(own, frames, 0).size(), 4);
        QCOMPARE(kept(beginningAt(own, timeless, 7, 3), timeless, 7), QVector<int>({3}));
        QCOMPARE(explanation(own, 0), QStringLiteral("Films are made of all frames."));
        QCOMPARE(kept(endingAt(part, frames, 0, 1), frames, 0), QVector<int>({1}));
        QVERIFY(isAll({}) && !isAll(from) && !isAll(own) && !isAll(endingAt({}, frames, 0, 2)));
        const QString first = QStringLiteral("2024-05-01 12:01:00 UTC");
        const QString last = QStringLiteral("2024-05-01 12:02:00 UTC");
        QCOMPARE(timesText(part), QStringLiteral("from %1 to %2").arg(first, last));
        QCOMPARE(timesText(from), QStringLiteral("from %1 on").arg(first));
        QCOMPARE(timesText(endingAt({}, frames, 0, 2)), QStringLiteral("up to ") + last);
    }

    void framesAreDue()
    {
        FramePlayer player;
        QVector<int> seen;
        connect(&player, &FramePlayer::frameDue, this, [&](int index) { seen += index; });
        player.setRate(1);
        player.play(6, 7);
        player.setRate(10);
        QTimer::singleShot(500, this, [&] { seen += player.isPlaying(); }); // half a frame later
        QTRY_COMPARE(seen, QVector<int>({7, 0}));
    }

    void othersThatShowTheSunAtAnotherScale()
    {
        const auto seen = [](int rsun) {
            return SameScale::Source{
                QString::number(rsun),
                {{QStringLiteral("rsun"), rsun}, {QStringLiteral("width"), 4096}}};
        };
        QVector<SameScale::Source> sources{seen(1600), seen(1610)}; // as good as the same
        sources += QVector<SameScale::Source>(6, seen(800));
        QString named = QStringLiteral(" 800 (2 times as wide),").repeated(6);
        named.chop(1);
        QCOMPARE(SameScale::warning(sources).section(QLatin1Char(':'), 1),
                 named + QStringLiteral("."));
        sources += seen(400);
        QVERIFY(SameScale::warning(sources).endsWith(named + QStringLiteral(", 1 more.")));
    }
};

QTEST_GUILESS_MAIN(TestRegions)
#include "tst_regions.moc"
