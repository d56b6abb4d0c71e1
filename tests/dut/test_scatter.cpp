// Distortion worked by hand.
#include "dut/scatter.h"

#include <QtTest>

namespace {

Envelope ones(int count)
{
    return {QVector<double>(count, 1.0), QVector<double>(count, 0.0), 1.0};
}

} // namespace

class TestScatter : public QObject
{
    Q_OBJECT

private slots:
    void aGainIsNoDistortion();
    void distortionInOneStretchIsWhollyConcentrated();
    void evenDistortionIsSharedByAllStretches();
    void energiesOfStimuliAddUp();
};

void TestScatter::aGainIsNoDistortion()
{
    Envelope turned{QVector<double>(64, 0.0), QVector<double>(64, 3.0), 1.0}; // 3j times the input
    const DistortionEnergy energy = distortionEnergy(ones(64), turned, 4);
    QVERIFY(energy.sum < 1e-25);
    QCOMPARE(DistortionEnergy().concentration(), 0.0);
}

// Two samples that differ by +1 and -1 leave the correlation as it is: an energy of 2.
void TestScatter::distortionInOneStretchIsWhollyConcentrated()
{
    Envelope output = ones(64);
    output.iSamples[9] += 1.0;
    output.iSamples[10] -= 1.0;
    const DistortionEnergy energy = distortionEnergy(ones(64), output, 4);
    QCOMPARE(energy.sum, 2.0);
    QCOMPARE(energy.concentration(), 1.0);
}

void TestScatter::evenDistortionIsSharedByAllStretches()
{
    Envelope output = ones(64);
    for (int k = 0; k < 64; ++k) {
        output.iSamples[k] += k % 2 == 0 ? 0.5 : -0.5;
    }
    const DistortionEnergy energy = distortionEnergy(ones(64), output, 4);
    QCOMPARE(energy.sum, 16.0);
    QCOMPARE(energy.concentration(), 1.0 / 16.0);
}

void TestScatter::energiesOfStimuliAddUp()
{
    DistortionEnergy total{3.0, 9.0};
    total += {1.0, 1.0};
    QCOMPARE(total.concentration(), 10.0 / 16.0);
}

QTEST_APPLESS_MAIN(TestScatter)
#include "test_scatter.moc"
