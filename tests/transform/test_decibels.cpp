#include "transform/decibels.h"

#include <QtTest>

#include <cmath>

class TestDecibels : public QObject
{
    Q_OBJECT

private slots:
    void powersOfTenAreWholeTensOfDecibels()
    {
        QCOMPARE(decibels(1.0), 0.0);
        QCOMPARE(decibels(10.0), 10.0);
        QCOMPARE(decibels(1e-6), -60.0);
    }

    void twiceThePowerIsThreeDecibelsMore()
    {
        // 10 lg 2 = 3.010299956639812, to a few units in the last place.
        QVERIFY(std::abs(decibels(2.0) - 3.010299956639812) < 2e-15);
    }

    void noPowerIsInfinitelyFarDownAndANegativeOneIsNoNumber()
    {
        QVERIFY(std::isinf(decibels(0.0)) && decibels(0.0) < 0.0);
        QVERIFY(std::isnan(decibels(-1.0)));
    }
};

QTEST_APPLESS_MAIN(TestDecibels)
#include "test_decibels.moc"
