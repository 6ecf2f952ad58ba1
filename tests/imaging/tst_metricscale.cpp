#include "imaging/metricscale.h"

#include <QJsonObject>
#include <QtTest>

#include <limits>

class tst_MetricScale : public QObject
{
    Q_OBJECT

private slots:
    void kilometresPerPixel_data()
    {
        QTest::addColumn<QJsonObject>("metadata");
        QTest::addColumn<int>("imageWidth");
        QTest::addColumn<double>("expected");
        const auto row = [](const char *name, const char *json, int imageWidth, double expected) {
            QTest::newRow(name) << QJsonDocument::fromJson(json).object() << imageWidth << expected;
        };
        row("numbers", R"({"rsun": 1600, "width": 4096})", 1024, 1739.25);
        row("text", R"({"rsun": "1600.5", "width": 4096})", 4096, 695700.0 / 1600.5);
        row("radius missing", R"({"width": 4096})", 1024, 0.0);
        row("no number", R"({"rsun": "16OO", "width": 4096})", 1024, 0.0);
        row("null", R"({"rsun": null, "width": 4096})", 1024, 0.0);
        row("negative width", R"({"rsun": 1600, "width": -1})", 1024, 0.0);
        row("no image", R"({"rsun": 1600, "width": 4096})", 0, 0.0);
    }
    void kilometresPerPixel()
    {
        QFETCH(QJsonObject, metadata);
        QFETCH(int, imageWidth);
        QTEST(MetricScale::kmPerPixel(metadata, imageWidth), "expected");
    }

    void lengthsAreRoundedDown()
    {
        const QVector<double> lengths{1999, 2000, 4999, 5000,   356198.4,
                                      0.3,  0,    -7,   qInf(), qQNaN()};
        QVector<double> rounded;
        for (const double length : lengths)
            rounded.append(MetricScale::roundLengthKm(length));
        QCOMPARE(rounded, (QVector<double>{1000, 2000, 2000, 5000, 200000, 0.2, 0, 0, 0, 0}));
    }

    void thousandsAreGrouped()
    {
        QStringList texts;
        for (const qint64 number : {qint64(0), qint64(999), qint64(1000), qint64(5000000),
                                    qint64(-100), std::numeric_limits<qint64>::min()})
            texts.append(MetricScale::formatThousands(number));
        QCOMPARE(texts.join(QLatin1Char('|')),
                 QStringLiteral("0|999|1 000|5 000 000|-100|-9 223 372 036 854 775 808"));
    }
};

QTEST_GUILESS_MAIN(tst_MetricScale)
#include "tst_metricscale.moc"
