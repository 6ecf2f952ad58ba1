#include "imaging/annotationlayout.h"
#include "imaging/blankblock.h"
#include "imaging/frameannotation.h"
#include "imaging/framedecoder.h"
#include "imaging/metricscale.h"
#include "imaging/pngwriter.h"
#include "tests/support/literals.h"
#include "tests/support/testfolder.h"

#include <QImage>
#include <QPainter>
#include <QtTest>

#include <limits>

#include <sys/stat.h>

namespace Layout = AnnotationLayout;

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
    return {{"width"_s, native.width()},
            {"height"_s, QString::number(native.height())},
            {"rsun"_s, radius},
            {"refPixelX"_s, (native.width() + 1) / 2.0},
            {"refPixelY"_s, (native.height() + 1) / 2.0}};
}

QString warning(int x, int y, int width, int height)
{
    return QString::asprintf("possible blank renderer block at x=%d y=%d, approx. %dx%d px", x, y,
                             width, height);
}

QDateTime noon()
{
    return {QDate(2024, 5, 1), QTime(12, 0, 7), Qt::UTC};
}

/// Every channel random, alpha 0 over a colour among them.
QImage noise(QSize size, QImage::Format format = QImage::Format_ARGB32)
{
    QImage image(size, format);
    QRandomGenerator random(20240501);
    random.fillRange(reinterpret_cast<QRgb *>(image.bits()),
                     static_cast<qsizetype>(size.width()) * size.height());
    image.setPixel(0, 0, 0x00ff8040U);
    return image;
}

QImage sun(QSize size)
{
    QImage image(size, QImage::Format_ARGB32);
    QRadialGradient limb(image.rect().center(), size.width() / 2.0);
    limb.setStops({{0.0, QColor(255, 240, 160)}, {1.0, Qt::black}});
    QPainter(&image).fillRect(image.rect(), limb);
    return image;
}

} // namespace

/// Renderer blocks, annotations, and PNG files as they are written and read.
class TestImaging final : public QObject
{
    Q_OBJECT

private slots:
    void shapes_data()
    {
        using Cells = QVector<QPoint>;
        QTest::addColumn<Cells>("cells");
        QTest::addColumn<QString>("expected");
        QTest::newRow("one cell") << Cells{{5, 6}} << warning(320, 384, 64, 64);
        QTest::newRow("centre cell") << Cells{{8, 8}} << QString();
        QTest::newRow("joined to the centre") << Cells{{7, 8}, {8, 8}} << QString();
        QTest::newRow("two areas") << Cells{{5, 10}, {10, 5}} << warning(640, 320, 64, 64);
        QTest::newRow("centre, then another")
            << Cells{{8, 8}, {5, 10}} << warning(320, 640, 64, 64);
        QTest::newRow("L of three") << Cells{{6, 5}, {5, 6}, {6, 6}} << warning(320, 320, 128, 128);
        QTest::newRow("diagonal") << Cells{{5, 5}, {6, 6}, {7, 7}} << warning(320, 320, 64, 64);
        QTest::newRow("hook: 4 of 6") << Cells{{5, 4}, {5, 5}, {5, 6}, {6, 6}} << QString();
        QTest::newRow("other diagonal")
            << Cells{{7, 5}, {6, 6}, {5, 7}} << warning(448, 320, 64, 64);
        QTest::newRow("round two corners: 6 of 9")
            << Cells{{8, 4}, {8, 5}, {8, 6}, {7, 6}, {6, 6}, {6, 5}} << QString();
        QTest::newRow("a corner or more outside the disk")
            << Cells{{0, 0}, {1, 8}, {8, 1}, {4, 3}, {11, 12}} << QString();
    }
    void shapes()
    {
        QFETCH(QVector<QPoint>, cells);
        QImage image = grey({1024, 1024});
        for (const QPoint &cell : std::as_const(cells))
            fill(image, {cell * 64, QSize(64, 64)});
        QTEST(detectBlankRendererBlock(image, disk({4096, 4096}, 1600)), "expected");
    }

    void blankIsBlackOrClear()
    {
        for (const QRgb colour : {0xff010101U, 0xff020000U, 0x01ff80ffU, 0x02ff80ffU}) {
            QImage image = grey({512, 512});
            fill(image, {64, 192, 64, 64}, colour);
            QCOMPARE(!detectBlankRendererBlock(image, disk({512, 512}, 250)).isEmpty(),
                     colour == 0xff010101U || colour == 0x01ff80ffU);
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
        const auto diskAt = [](double x, double y, double radius) {
            QJsonObject metadata = disk({256, 256}, radius);
            metadata["refPixelX"_s] = x;
            metadata["refPixelY"_s] = y;
            return metadata;
        };
        const QJsonObject middle = diskAt(128, 128, 200);
        const QJsonObject all = diskAt(1, 1, 1e4);
        const QJsonObject infinite{{"width"_s, 1e-300}, {"height"_s, 1e-300}, {"rsun"_s, 1e300}};
        for (const auto &[size, metadata, black, expected] :
             {std::tuple(QSize(256, 256), middle, QRect(64, 128, 64, 64), true),
              {{256, 255}, middle, {64, 128, 64, 64}, false},
              {{255, 256}, middle, {64, 128, 64, 64}, false},
              {{256, 256}, diskAt(0, 128, 200), {128, 64, 64, 64}, true}, // no centre is known
              {{256, 256}, diskAt(128, 0, 200), {64, 128, 64, 64}, true},
              {{256, 256}, {{"width"_s, 256}}, {64, 128, 64, 64}, false},
              {{256, 256}, infinite, {64, 128, 64, 64}, false},
              {{256, 256}, disk({4, 4}, 1e300), {64, 128, 64, 64}, true},
              {{4096, 4096}, disk({4096, 4096}, 1600), {1024, 1280, 256, 256}, true},
              {{256, 256}, diskAt(119, 137, 100), {128, 128, 64, 64}, true}, // up to 0.9 radii
              {{256, 256}, all, {0, 64, 64, 128}, true},
              {{256, 256}, all, {64, 0, 128, 64}, true},
              {{288, 288}, all, {256, 128, 32, 64}, true}, // half a cell at the edge
              {{287, 288}, all, {256, 128, 31, 64}, false},
              {{288, 288}, all, {128, 256, 64, 32}, true},
              {{288, 287}, all, {128, 256, 64, 31}, false},
              // Part of the Sun, whose centre is nearest to the corner.
              {{256, 256}, diskAt(999, 999, 1e4), {192, 192, 64, 64}, false}})
            QCOMPARE(isFound(size, metadata, black), expected);
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

    void measuresAndTextSize()
    {
        const auto numbers = [](int width) {
            const auto [margin, padX, padY, text, scale, tick, line] = Layout::measuresFor(width);
            return QVector<int>{margin, padX, padY, text, scale, tick, line};
        };
        QCOMPARE(numbers(100), (QVector<int>{8, 6, 4, 8, 8, 5, 1}));
        QCOMPARE(numbers(1024), (QVector<int>{12, 8, 4, 18, 15, 5, 1}));
        QCOMPARE(numbers(2048), (QVector<int>{25, 17, 9, 37, 31, 11, 2}));
        QCOMPARE(Layout::bottomLeftBox({2048, 900}, Layout::measuresFor(2048), {300, 40}),
                 QRect(25, 900 - 25 - 58, 300 + 2 * 17, 40 + 2 * 9));
        QCOMPARE(Layout::bottomRightBox({100, 80}, Layout::measuresFor(100), {500, 10}),
                 QRect(8, 80 - 8 - 18, 84, 18));
        QCOMPARE(Layout::widestText(29, Layout::measuresFor(29)), 1);
        QCOMPARE(Layout::widestText(2048, Layout::measuresFor(2048)), 2048 - 2 * 17 - 2 * 25);
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
        const auto longLabel = Layout::scaleBoxFor(2048, Layout::measuresFor(2048), 115, {180, 18});
        QCOMPARE(longLabel.box, QRect(2048 - 25 - 214, 25, 214, 18 + 4 + 11 + 18));
        QCOMPARE(longLabel.label, QRect(1826, 34, 180, 18));
        QCOMPARE(Layout::scaleBoxFor(100, Layout::measuresFor(100), 20, {180, 18}).box.width(), 84);
        QCOMPARE(Layout::scaleBarFor(100, 0.095).lengthPx, 0); // 1 km would be 11 pixels
        QCOMPARE(Layout::scaleBarFor(100, 1 / 12.0).lengthPx, 12);
        for (const double unknown : {0.0, -1.0, qQNaN(), qInf()})
            QCOMPARE(Layout::scaleBarFor(1024, unknown).lengthPx, 0);
    }

    /// All three at once, each in its box and in bold type.
    void wordsAndBarArePainted()
    {
        const QSize size(2048, 300);
        const Layout::Measures measures = Layout::measuresFor(size.width());
        QImage frame = grey(size, QImage::Format_RGB32);
        QImage expected = frame;
        drawFrameAnnotations(frame, {}, " \t "_s, true, true, true, 0);
        QCOMPARE(frame, expected);
        QPainter painter(&expected);
        painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
        const auto bold = [&](int px, const char *text) {
            QFont font("Segoe UI"_s, -1, QFont::Bold);
            font.setPixelSize(px);
            painter.setFont(font);
            return QSize(QFontMetrics(font).horizontalAdvance(QLatin1String(text)),
                         QFontMetrics(font).height());
        };
        painter.setPen(Qt::white);
        const auto write = [&](const QRect &box, const QRect &inner, int flags, const char *text) {
            painter.fillRect(box, QColor(0, 0, 0, 165));
            painter.drawText(inner, flags | Qt::AlignVCenter, QLatin1String(text));
        };
        const char *const utc = "2024-05-01 12:00:07 UTC";
        const auto left = Layout::bottomLeftBox(size, measures, bold(measures.textPx, utc));
        write(left, Layout::insideBox(left, measures), Qt::AlignLeft, utc);
        const auto right = Layout::bottomRightBox(size, measures, bold(measures.textPx, "HMI"));
        write(right, Layout::insideBox(right, measures), Qt::AlignRight, "HMI");
        const auto bar = Layout::scaleBarFor(size.width(), 1000);
        const QByteArray label = bar.label.toLatin1();
        const auto scale = Layout::scaleBoxFor(size.width(), measures, bar.lengthPx,
                                               bold(measures.scaleTextPx, label));
        write(scale.box, scale.label, Qt::AlignHCenter, label);
        painter.setPen(QPen(Qt::white, measures.linePx));
        painter.drawLine(scale.left, scale.right);
        for (const QPoint end : {scale.left, scale.right})
            painter.drawLine(end - QPoint(0, measures.tickPx), end + QPoint(0, 1));
        painter.end();
        drawFrameAnnotations(frame, noon(), " HMI "_s, true, true, true, 1000);
        QCOMPARE(frame, expected);
    }

    void annotatedCopyIsSaved()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath("a/b/frame_000000.png"_s);
        QImage original(509, 505, QImage::Format_RGB32); // as odd as some instruments are
        original.fill(Qt::white);
        for (int i = 0; i < 505; ++i) {
            original.setPixel(i, 504, qRgb(i / 2, 0, 0));
            original.setPixel(508, i, qRgb(0, 255 - i / 2, 0));
        }
        const QJsonObject metadata{{"rsun"_s, 200}, {"width"_s, 509}};
        const QString label = "AIA 171"_s;
        QVERIFY(saveTimestampedFrame(original, path, noon(), label, metadata, true, true));
        QCOMPARE(original.pixel(8, 496), 0xffffffffU);
        const QImage copy(path);
        QCOMPARE(copy.pixel(8, 496), qRgb(90, 90, 90)); // under 165 of 255 black
        QImage expected = original.convertToFormat(QImage::Format_ARGB32);
        drawFrameAnnotations(expected, noon(), label, true, true, true, 695700.0 / 200);
        QCOMPARE(copy.copy(original.rect()), expected.convertToFormat(QImage::Format_RGB32));
        QCOMPARE(copy.size(), QSize(510, 506)); // the last column and row twice
        QCOMPARE(copy.copy(509, 0, 1, 506), copy.copy(508, 0, 1, 506));
        QCOMPARE(copy.copy(0, 505, 510, 1), copy.copy(0, 504, 510, 1));
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
        QVector<double> rounded;
        for (const double km :
             {1999.0, 2000.0, 4999.0, 5000.0, 356198.4, 0.3, 0.0, -7.0, qInf(), qQNaN()})
            rounded += MetricScale::roundLengthKm(km);
        QCOMPARE(rounded, (QVector<double>{1000, 2000, 2000, 5000, 200000, 0.2, 0, 0, 0, 0}));
        QString texts;
        for (const qint64 km :
             {999LL, 1000LL, 5000000LL, -100LL, std::numeric_limits<qint64>::min()})
            texts += MetricScale::formatThousands(km) + QLatin1Char('|');
        QCOMPARE(texts, "999|1 000|5 000 000|-100|-9 223 372 036 854 775 808|"_s);
    }

    void pixelsAreReadBack()
    {
        QImage large(8000, 5700, QImage::Format_RGB32); // so large that Qt writes it
        large.fill(qRgb(90, 20, 1));
        QImage veiled = sun({65, 64});
        veiled.setPixelColor(64, 63, QColor(1, 2, 3, 254));
        for (const QImage &image : {noise({333, 301}), noise({1, 1}), noise({1, 257}), veiled}) {
            QVERIFY(PngWriter::save(image, path("ours.png")));
            QCOMPARE(QImage(path("ours.png"), "PNG"), image.convertToFormat(QImage::Format_ARGB32));
        }
        const QImage gray = sun({65, 300}).convertToFormat(QImage::Format_Grayscale8);
        for (const QImage &image :
             {noise({255, 64}, QImage::Format_RGB32), sun({1024, 1024}), gray, large}) { // opaque
            QVERIFY(PngWriter::save(image, path("ours.png")));
            QCOMPARE(QImage(path("ours.png"), "PNG"), image.convertToFormat(QImage::Format_RGB32));
        }
    }

    void smallestFormIsChosen()
    {
        const auto form = [this](QImage image) { // colour type and filter of the first row
            image.setDotsPerMeterX(1234);
            QFile file(path("ours.png"));
            const bool saved = PngWriter::save(image, file.fileName());
            const QByteArray png = saved && file.open(QIODevice::ReadOnly) ? file.readAll() : "";
            const QByteArray rows = qUncompress(QByteArray("\0\1\0\0", 4) + png.mid(62));
            const bool scaled = QImage(file.fileName()).dotsPerMeterX() == 1234;
            return QString::asprintf("%d %d", png[25], scaled && !rows.isEmpty() ? rows[0] : -1);
        };
        QCOMPARE(form(noise({64, 64})), "6 0"_s);
        QCOMPARE(form(sun({300, 300})), "2 2"_s);
        QImage image = sun({64, 48});
        image.setPixel(9, 0, 0);
        QCOMPARE(form(image), "6 2"_s);
        image = noise({64, 400}, QImage::Format_RGB32);
        for (const int row : {98, 296}) // the sample begins with the row below
            std::copy_n(image.constScanLine(row), image.bytesPerLine(), image.scanLine(row + 1));
        QCOMPARE(form(image), "2 2"_s);
    }

    void failuresKeepTheFormerFile()
    {
        QVERIFY(!PngWriter::save(sun({8, 8}), path("missing/frame_000000.png")));
        QVERIFY(!QFileInfo::exists(path("missing")));
        QVERIFY(PngWriter::save(sun({32, 32}), path("frame.png")));
        QVERIFY(!PngWriter::save(QImage(), path("frame.png")));
        TestFolder::leaveRoom(100);
        QVERIFY(!PngWriter::save(noise({32, 32}), path("frame.png")));
        TestFolder::leaveRoom();
        QCOMPARE(QImage(path("frame.png")), sun({32, 32}).convertToFormat(QImage::Format_RGB32));
        QCOMPARE(QDir(m_folder.path()).entryList(QDir::Files).size(), 2); // and that of before
    }

    void cutOffPictureDoesNotDecode()
    {
        QImage image(64, 48, QImage::Format_RGB32);
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                image.setPixel(x, y, qRgb(x * y, x ^ y, 7 * x));
        }
        QVERIFY(image.save(path("frame.png")));
        QCOMPARE(FrameDecoder::decode(path("frame.png")), image);
        QFile file(path("frame.png"));
        constexpr int checksumBytes = 4; // the last thing in the file, after the whole picture
        for (qint64 size = file.size() - checksumBytes - 1; size >= 0; --size) {
            QVERIFY(file.resize(size));
            QVERIFY2(FrameDecoder::decode(path("frame.png")).isNull(),
                     qPrintable(QString::number(size)));
        }
    }

    void onlyPngOfABearableSizeIsRead()
    {
        for (const auto &[size, bearable] : {std::pair(QSize(16384, 2), true),
                                             {QSize(2, 16384), true},
                                             {QSize(16385, 2), false},
                                             {QSize(2, 16385), false},
                                             {QSize(10000, 10000), true},
                                             {QSize(10000, 10001), false}}) {
            QImage image(size, QImage::Format_Mono);
            image.fill(1);
            QVERIFY(image.save(path("frame.png")));
            QCOMPARE(FrameDecoder::size(path("frame.png")) == size, bearable);
        }
        QVERIFY(!FrameDecoder::size(path("missing.png")).isValid());
        QVERIFY(sun({64, 48}).save(path("frame.png"), "bmp"));
        QVERIFY(FrameDecoder::decode(path("frame.png")).isNull());
    }

    void pipeIsNotWaitedFor()
    {
        const QString pipe = path("pipe.png");
        QCOMPARE(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
        QVERIFY(FrameDecoder::decode(pipe).isNull());
    }

private:
    QTemporaryDir m_folder;
    QString path(const char *name) const { return m_folder.filePath(QString::fromLatin1(name)); }
};

QTEST_MAIN(TestImaging)
#include "tst_imaging.moc"
