#include "imaging/annotationlayout.h"
#include "imaging/frameannotation.h"
#include "imaging/metricscale.h"
#include "tests/support/literals.h"

#include <QBitmap>
#include <QJsonObject>
#include <QtTest>

#include <limits>

namespace Layout = AnnotationLayout;

namespace {

QDateTime noon()
{
    return {QDate(2024, 5, 1), QTime(12, 0, 7), Qt::UTC};
}

/// The pixels of a white frame that annotating changes.
QRect paintedArea(QSize size, const QDateTime &time, const QString &label, double kmPerPixel)
{
    QImage frame(size, QImage::Format_ARGB32);
    frame.fill(Qt::white);
    drawFrameAnnotations(frame, time, label, true, true, true, kmPerPixel);
    frame.invertPixels();
    return QRegion(QBitmap::fromImage(frame.createMaskFromColor(0xff000000U))).boundingRect();
}

} // namespace

class TestFrameAnnotation : public QObject
{
    Q_OBJECT

private slots:
    void measuresAndTextSize()
    {
        const auto numbers = [](int width) {
            const auto [margin, padX, padY, text, scale, tick, line] = Layout::measuresFor(width);
            return QVector<int>{margin, padX, padY, text, scale, tick, line};
        };
        QCOMPARE(numbers(100), (QVector<int>{8, 6, 4, 8, 8, 5, 1}));
        QCOMPARE(numbers(1024), (QVector<int>{12, 8, 4, 18, 15, 5, 1}));
        QCOMPARE(numbers(2048), (QVector<int>{25, 17, 9, 37, 31, 11, 2}));
        for (const auto &[widest, px] : {std::pair(180, 18), std::pair(179, 17), std::pair(1, 6)})
            QCOMPARE(Layout::fittingTextPx(18, widest, [](int size) { return 10 * size; }), px);
    }

    void scaleBars()
    {
        const auto bar = Layout::scaleBarFor(1024, 1739.25);
        QCOMPARE(bar.lengthPx, 115);
        QCOMPARE(bar.label, "200 000 km"_s);
        const auto scale = Layout::scaleBoxFor(1024, Layout::measuresFor(1024), 115, {80, 18});
        QCOMPARE(scale.box, QRect(1024 - 12 - 131, 12, 131, 18 + 4 + 5 + 8));
        QCOMPARE(scale.label, QRect(889, 16, 115, 18));
        QCOMPARE(scale.right, QPoint(1011 - 8, 46 - 2 - 4));
        QCOMPARE(scale.left, QPoint(1003 - 115, 40));
        QCOMPARE(Layout::scaleBarFor(100, 0.095).lengthPx, 0); // 1 km would be 11 pixels
        for (const double unknown : {0.0, -1.0, qQNaN(), qInf()})
            QCOMPARE(Layout::scaleBarFor(1024, unknown).lengthPx, 0);
    }

    void overlaysLieInTheirCorners()
    {
        for (const QSize size : {QSize(100, 80), QSize(1024, 1024), QSize(2048, 1001)}) {
            const int margin = Layout::measuresFor(size.width()).margin;
            const QRect inner = QRect(QPoint(), size).adjusted(margin, margin, -margin, -margin);
            QCOMPARE(paintedArea(size, noon(), {}, 0).bottomLeft(), inner.bottomLeft());
            QCOMPARE(paintedArea(size, {}, " A "_s, 0).bottomRight(), inner.bottomRight());
            QCOMPARE(paintedArea(size, {}, {}, 1e-4).topRight(), inner.topRight());
            const QRect clipped = paintedArea(size, {}, QString(2000, QLatin1Char('W')), 0);
            QCOMPARE(clipped.width(), inner.width());
        }
        QCOMPARE(paintedArea({640, 480}, {}, " \t "_s, 0), QRect());
    }

    void annotatedCopyIsSaved()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath("a/b/frame_000000.png"_s);
        QImage original(511, 507, QImage::Format_RGB32); // as odd as some instruments are
        original.fill(Qt::white);
        for (int i = 0; i < 507; ++i) {
            original.setPixel(i, 506, qRgb(i / 2, 0, 0));
            original.setPixel(510, i, qRgb(0, i / 2, 0));
        }
        const QJsonObject metadata{{"rsun"_s, 200}, {"width"_s, 512}};
        const QString label = "AIA 171"_s;
        QVERIFY(saveTimestampedFrame(original, path, noon(), label, metadata, true, true));
        QCOMPARE(original.pixel(8, 498), 0xffffffffU);
        const QImage copy(path);
        QCOMPARE(copy.pixel(8, 498), qRgb(90, 90, 90)); // under 165 of 255 black
        QImage expected = original.convertToFormat(QImage::Format_ARGB32);
        drawFrameAnnotations(expected, noon(), label, true, true, true, 695700.0 / 200);
        QCOMPARE(copy.copy(original.rect()), expected.convertToFormat(QImage::Format_RGB32));
        QCOMPARE(copy.size(), QSize(512, 508)); // the last column and row twice
        QCOMPARE(copy.copy(511, 0, 1, 508), copy.copy(510, 0, 1, 508));
        QCOMPARE(copy.copy(0, 507, 512, 1), copy.copy(0, 506, 512, 1));
    }

    void kilometresPerPixel()
    {
        const auto scale = [](const QJsonValue &rsun, int width, int imageWidth) {
            return MetricScale::kmPerPixel({{"rsun"_s, rsun}, {"width"_s, width}}, imageWidth);
        };
        QCOMPARE(scale(1600, 4096, 1024), 1739.25);
        QCOMPARE(scale("1600.5"_s, 4096, 4096), 695700.0 / 1600.5);
        QCOMPARE(scale(1600, 4096, 1), 695700.0 / 1600 * 4096);
        QCOMPARE(scale("16OO"_s, 4096, 1024), 0.0);
        QCOMPARE(scale({}, 4096, 1024), 0.0);
        QCOMPARE(scale(1600, -1, 1024), 0.0);
        QCOMPARE(scale(1600, 4096, 0), 0.0);
    }

    void lengthsAreRoundedDown()
    {
        for (const auto &[length, rounded] : {std::pair(1999.0, 1000.0),
                                              {2000, 2000},
                                              {4999, 2000},
                                              {5000, 5000},
                                              {356198.4, 200000},
                                              {0.3, 0.2},
                                              {0, 0},
                                              {-7, 0},
                                              {qInf(), 0},
                                              {qQNaN(), 0}})
            QCOMPARE(MetricScale::roundLengthKm(length), rounded);
        for (const auto &[length, text] :
             {std::pair(999LL, "999"),
              {1000, "1 000"},
              {5000000, "5 000 000"},
              {-100, "-100"},
              {std::numeric_limits<qint64>::min(), "-9 223 372 036 854 775 808"}})
            QCOMPARE(MetricScale::formatThousands(length), QLatin1String(text));
    }
};

QTEST_MAIN(TestFrameAnnotation)
#include "tst_frameannotation.moc"
