// Mean, deviation and standardisation with hand-worked numbers.
#include "transform/statistics.h"

#include <QtTest>

#include <cmath>

class TestStatistics : public QObject
{
    Q_OBJECT

private slots:
    void deviationIsThePopulationForm();
    void oneValueHasNoDeviation();
    void standardizedValuesAreCentredAndScaled();
    void standardizingInPlaceGivesTheSame();
    void onlyTheFirstCountValuesAreStandardized();
    void constantVectorGivesNotANumber();
};

void TestStatistics::deviationIsThePopulationForm()
{
    double mean = 0.0;
    double stdDev = 0.0;
    meanAndStdDev({2, 4, 4, 4, 5, 5, 7, 9}, mean, stdDev);
    QCOMPARE(mean, 5.0);
    QCOMPARE(stdDev, 2.0); // 32 / 8 under the root; count minus one would give 2.138
}

void TestStatistics::oneValueHasNoDeviation()
{
    double mean = 0.0;
    double stdDev = 1.0;
    meanAndStdDev({-3.5}, mean, stdDev);
    QCOMPARE(mean, -3.5);
    QCOMPARE(stdDev, 0.0);
}

void TestStatistics::standardizedValuesAreCentredAndScaled()
{
    const QVector<double> values{2, 4, 4, 4, 5, 5, 7, 9};
    QVector<double> out(8, 0.0);
    double mean = 0.0;
    double stdDev = 0.0;
    standardize(values, 8, out, mean, stdDev);
    QCOMPARE(out, (QVector<double>{-1.5, -0.5, -0.5, -0.5, 0, 0, 1, 2}));
    QCOMPARE(mean, 5.0);
    QCOMPARE(stdDev, 2.0);
}

void TestStatistics::standardizingInPlaceGivesTheSame()
{
    QVector<double> values{2, 4, 4, 4, 5, 5, 7, 9};
    double mean = 0.0;
    double stdDev = 0.0;
    standardize(values, 8, values, mean, stdDev);
    QCOMPARE(values, (QVector<double>{-1.5, -0.5, -0.5, -0.5, 0, 0, 1, 2}));
}

void TestStatistics::onlyTheFirstCountValuesAreStandardized()
{
    QVector<double> values{2, 4, 4, 4, 5, 5, 7, 9};
    double mean = 0.0;
    double stdDev = 0.0;
    standardize(values, 2, values, mean, stdDev);
    QCOMPARE(values, (QVector<double>{-1.5, -0.5, 4, 4, 5, 5, 7, 9}));
}

void TestStatistics::constantVectorGivesNotANumber()
{
    QVector<double> values(4, 3.0);
    double mean = 0.0;
    double stdDev = 1.0;
    standardize(values, 4, values, mean, stdDev);
    QCOMPARE(stdDev, 0.0);
    for (const double value : values) {
        QVERIFY(std::isnan(value));
    }
}

QTEST_APPLESS_MAIN(TestStatistics)
#include "test_statistics.moc"
