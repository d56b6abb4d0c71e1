// Distortion worked by hand.
#include "dut/distortion_sums.h"

#include "dut/envelope.h"

#include <QtTest>

namespace {

Envelope ones(int count)
{
    return {QVector<double>(count, 1.0), QVector<double>(count, 0.0), 1.0};
}

// Of the output for an input of ones, row by row as the groups bring them.
DistortionEnergy energyOf(const Envelope& output)
{
    constexpr int stretch = 4;
    const Envelope input = ones(output.size());
    DistortionSums sums;
    sums.begin(output.size(), stretch);
    for (int group = 0; group < SomeLines::groupCount; ++group) {
        for (int row = 0; row < output.size() / SomeLines::shortestPeriod; ++row) {
            const int first = SomeLines::shortestPeriod * row + SomeLines::rowLength * group;
            sums.add({group, row, 1, input.iSamples.constData() + first,
                      input.qSamples.constData() + first, output.iSamples.constData() + first,
                      output.qSamples.constData() + first});
        }
    }
    return sums.energy();
}

} // namespace

class TestDistortionSums : public QObject
{
    Q_OBJECT

private slots:
    void aGainIsNoDistortion();
    void distortionInOneStretchIsWhollyConcentrated();
    void evenDistortionIsSharedByAllStretches();
    void energiesOfStimuliAddUp();
};

void TestDistortionSums::aGainIsNoDistortion()
{
    const Envelope turned{QVector<double>(64, 0.0), QVector<double>(64, 3.0),
                          1.0}; // 3j times the input
    const DistortionEnergy energy = energyOf(turned);
    QCOMPARE(energy.sum, 0.0);
    QCOMPARE(energy.concentration(), 0.0);
}

// Two samples that differ by +1 and -1 leave the correlation as it is: an energy of 2.
void TestDistortionSums::distortionInOneStretchIsWhollyConcentrated()
{
    Envelope output = ones(64);
    output.iSamples[9] += 1.0;
    output.iSamples[10] -= 1.0;
    const DistortionEnergy energy = energyOf(output);
    QCOMPARE(energy.sum, 2.0);
    QCOMPARE(energy.concentration(), 1.0);
}

void TestDistortionSums::evenDistortionIsSharedByAllStretches()
{
    Envelope output = ones(64);
    for (int k = 0; k < 64; ++k) {
        output.iSamples[k] += k % 2 == 0 ? 0.5 : -0.5;
    }
    const DistortionEnergy energy = energyOf(output);
    QCOMPARE(energy.sum, 16.0);
    QCOMPARE(energy.concentration(), 1.0 / 16.0);
}

void TestDistortionSums::energiesOfStimuliAddUp()
{
    DistortionEnergy total{3.0, 9.0};
    total += {1.0, 1.0};
    QCOMPARE(total.concentration(), 10.0 / 16.0);
}

QTEST_APPLESS_MAIN(TestDistortionSums)
#include "test_distortion_sums.moc"
