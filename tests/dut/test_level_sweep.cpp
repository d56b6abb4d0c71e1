// A sweep against one chain a level.
#include "dut/level_sweep.h"
#include "dut/multitone.h"
#include "dut/plain_distortion.h"
#include "kit/device_chains.h"

#include <QtTest>

Q_DECLARE_METATYPE(Chain*)

namespace {

constexpr int count = 4096;
const QVector<ChannelBand> channels{
    {99.5, 180.5}, {-60.0, 20.0}, {1999.5, 2100.5}, {-2048.0, 2048.0}, {50.0, 50.0}};

Envelope stimulus()
{
    return noiseWithNotch(count, {100, 199}, -70.0);
}

Chain noisyChainOf(const QString& device)
{
    Chain chain = chainOf(device, {6.0, 20.0});
    chain.noiseFloor = -60.0;
    return chain;
}

bool areClose(double value, double expected)
{
    return std::abs(value - expected) <= 1e-8 * expected;
}

} // namespace

class TestLevelSweep : public QObject
{
    Q_OBJECT

private slots:
    void channelsHoldWhatAChainPutsThere_data();
    void channelsHoldWhatAChainPutsThere();
    void distortionIsThatOfTheWholeSignal_data();
    void distortionIsThatOfTheWholeSignal();
    void aLinearDeviceAddsNothing();
    void linesAreCounted();
    void silenceLeavesTheNoise();
    void aBufferThatWasUsedChangesNothing();
};

void TestLevelSweep::channelsHoldWhatAChainPutsThere_data()
{
    QTest::addColumn<Chain*>("chain");
    static Chain chains[8];
    int row = 0;
    for (const char* device : {"linear", "rapp", "soft", "saleh", "cubic", "adc"}) {
        chains[row] = noisyChainOf(device);
        QTest::newRow(device) << &chains[row];
        ++row;
    }
    chains[6] = noisyChainOf(QStringLiteral("rapp"));
    chains[6].sourceNotch = 40.0;
    chains[6].ripple = {3.0, 1000.0};
    QTest::newRow("source and ripple") << &chains[6];
    chains[7] = noisyChainOf(QStringLiteral("adc"));
    chains[7].device.fullScale = 3.0;
    QTest::newRow("full scale") << &chains[7];
}

void TestLevelSweep::channelsHoldWhatAChainPutsThere()
{
    QFETCH(Chain*, chain);
    const LevelSweep sweep(*chain, stimulus(), channels);
    LevelSweep::Scratch scratch;
    for (const double level : {-20.0, 0.0, 9.5}) {
        const LevelResponse response = sweep.at(level, scratch);
        Envelope samples = deviceInput(*chain, stimulus(), level);
        passThrough(chain->device, samples);
        const ChainOutput output(*chain, samples);
        for (int k = 0; k < channels.size(); ++k) {
            const double expected = output.channelPower(channels[k].low, channels[k].high);
            QVERIFY2(areClose(response.channels[k].power(), expected),
                     qPrintable(QString("channel %1 at %2 dBm").arg(k).arg(level)));
        }
    }
}

// In stretches of 16 interpolated samples and of 4 of the signal's own.
void TestLevelSweep::distortionIsThatOfTheWholeSignal_data()
{
    QTest::addColumn<QString>("device");
    QTest::addColumn<int>("stretch");
    QTest::newRow("saleh") << "saleh" << 16;
    QTest::newRow("adc") << "adc" << 4;
}

void TestLevelSweep::distortionIsThatOfTheWholeSignal()
{
    QFETCH(QString, device);
    QFETCH(int, stretch);
    const Chain chain = noisyChainOf(device);
    LevelSweep::Scratch scratch;
    const DistortionEnergy found = LevelSweep(chain, stimulus(), {}).at(3.0, scratch).distortion;
    const Envelope input = deviceInput(chain, stimulus(), 3.0);
    Envelope output = input;
    passThrough(chain.device, output);
    const DistortionEnergy expected = plainDistortion(input, output, stretch);
    QVERIFY(areClose(found.sum, expected.sum));
    QVERIFY(areClose(found.squares, expected.squares));
}

void TestLevelSweep::aLinearDeviceAddsNothing()
{
    LevelSweep::Scratch scratch;
    const LevelResponse response =
        LevelSweep(noisyChainOf(QStringLiteral("linear")), stimulus(), channels).at(-7.0, scratch);
    QCOMPARE(response.channels.size(), channels.size());
    for (const ChannelContent& channel : response.channels) {
        QVERIFY(areClose(channel.stimulus, channel.lines));
    }
    QCOMPARE(response.distortion.sum, 0.0);
}

void TestLevelSweep::linesAreCounted()
{
    const auto linesOf = [](int channel, int all) {
        const SomeLines::Range range = linesWithin(channels[channel], 1.0, all);
        return QVector<int>{range.first, range.count};
    };
    QCOMPARE(linesOf(0, count), (QVector<int>{100, 81}));
    QCOMPARE(linesOf(1, count), (QVector<int>{-60, 80}));
    QCOMPARE(linesOf(2, count), (QVector<int>{2000, 48})); // 2047 is the last one
    QCOMPARE(linesOf(2, 4 * count), (QVector<int>{2000, 101}));
    QCOMPARE(linesOf(3, count), (QVector<int>{-2048, count}));
    QCOMPARE(linesOf(4, count), (QVector<int>{50, 0}));
}

void TestLevelSweep::silenceLeavesTheNoise()
{
    LevelSweep::Scratch scratch;
    const LevelResponse response =
        LevelSweep(noisyChainOf(QStringLiteral("rapp")), silence(count), channels).at(0.0, scratch);
    QVERIFY(areClose(response.channels[0].power(), 81.0 * 1e-6));
    QCOMPARE(response.channels[0].lines, 0.0);
    QCOMPARE(response.channels[4].power(), 0.0);
}

void TestLevelSweep::aBufferThatWasUsedChangesNothing()
{
    const LevelSweep sweep(noisyChainOf(QStringLiteral("rapp")), stimulus(), channels);
    LevelSweep::Scratch used;
    sweep.at(12.0, used);
    LevelSweep::Scratch fresh;
    QCOMPARE(sweep.at(-3.0, used).channels[0].lines, sweep.at(-3.0, fresh).channels[0].lines);
}

QTEST_APPLESS_MAIN(TestLevelSweep)
#include "test_level_sweep.moc"
