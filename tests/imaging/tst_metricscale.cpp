#include "imaging/metricscale.h"

#include <QJsonObject>
#include <QtTest>

#include <limits>

class TestMetricScale : public QObject
{
    Q_OBJECT

private slots:
    void kilometresPerPixel()
    {
        const auto scale = [](const char *metadata, int imageWidth) {
            return MetricScale::kmPerPixel(QJsonDocument::fromJson(metadata).object(), imageWidth);
        };
        QCOMPARE(scale(R"({"rsun": 1600, "width": 4096})", 1024), 1739.25);
        QCOMPARE(scale(R"({"rsun": "1600.5", "width": 4096})", 4096), 695700.0 / 1600.5);
        QCOMPARE(scale(R"({"rsun": "16OO", "width": 4096})", 1024), 0.0);
        QCOMPARE(scale(R"({"rsun": null, "width": 4096})", 1024), 0.0);
        QCOMPARE(scale(R"({"width": 4096})", 1024), 0.0);
        QCOMPARE(scale(R"({"rsun": 1600, "width": -1})", 1024), 0.0);
        QCOMPARE(scale(R"({"rsun": 1600, "width": 4096})", 0), 0.0);
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
        QCOMPARE(MetricScale::formatThousands(999), QStringLiteral("999"));
        QCOMPARE(MetricScale::formatThousands(1000), QStringLiteral("1 000"));
        QCOMPARE(MetricScale::formatThousands(5000000), QStringLiteral("5 000 000"));
        QCOMPARE(MetricScale::formatThousands(-100), QStringLiteral("-100"));
        QCOMPARE(MetricScale::formatThousands(std::numeric_limits<qint64>::min()),
                 QStringLiteral("-9 223 372 036 854 775 808"));
    }
};

QTEST_GUILESS_MAIN(TestMetricScale)
#include "tst_metricscale.moc"
