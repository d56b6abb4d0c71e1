// Doubles cut to whole numbers, at the edges of their ranges.
#include "base/truncation.h"

#include <QtTest>

#include <limits>

namespace {

constexpr double infinite = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

} // namespace

class TestTruncation : public QObject
{
    Q_OBJECT

private slots:
    void fractionsFallTowardZero();
    void whatIsTooLargeBecomesTheLargest();
    void whatIsTooSmallBecomesTheSmallest();
    void notANumberBecomesZero();
};

void TestTruncation::fractionsFallTowardZero()
{
    QCOMPARE(truncatedToInt32(1.9), 1);
    QCOMPARE(truncatedToInt32(-1.9), -1);
    QCOMPARE(truncatedToInt32(-0.5), 0);
    QCOMPARE(truncatedToUint32(7.999), 7U);
    QCOMPARE(truncatedToUint32(-0.5), 0U);
}

void TestTruncation::whatIsTooLargeBecomesTheLargest()
{
    QCOMPARE(truncatedToInt32(2147483646.5), 2147483646);
    QCOMPARE(truncatedToUint32(4294967294.5), 4294967294U);
    for (const double value : {0.5, 1.0, 1e300, infinite}) {
        QCOMPARE(truncatedToInt32(2147483647.0 + value), 2147483647);
        QCOMPARE(truncatedToUint32(4294967295.0 + value), 4294967295U);
    }
}

void TestTruncation::whatIsTooSmallBecomesTheSmallest()
{
    QCOMPARE(truncatedToInt32(-2147483647.5), -2147483647);
    for (const double value : {0.5, 1.0, 1e300, infinite}) {
        QCOMPARE(truncatedToInt32(-2147483648.0 - value), std::numeric_limits<qint32>::min());
        QCOMPARE(truncatedToUint32(-value), 0U);
    }
}

void TestTruncation::notANumberBecomesZero()
{
    QCOMPARE(truncatedToInt32(notANumber), 0);
    QCOMPARE(truncatedToUint32(notANumber), 0U);
}

QTEST_APPLESS_MAIN(TestTruncation)
#include "test_truncation.moc"
