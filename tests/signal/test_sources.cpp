// The four phase laws and the magnitude shaping, against numbers worked by hand from the laws.
#include "signal/runtime_random.h"
#include "signal/sources.h"

#include <QtTest>

#include <algorithm>
#include <cmath>
#include <ctime>

namespace {

constexpr double pi = 3.141592653589793;

QVector<quint32> draws(quint32 seed, int count)
{
    RuntimeRandom random(seed);
    QVector<quint32> values;
    for (int i = 0; i < count; ++i) {
        values.append(random.next());
    }
    return values;
}

} // namespace

class TestSources : public QObject
{
    Q_OBJECT

private slots:
    void generatorDrawsItsFixedSequence();
    void seededPhasesFollowTheDraws();
    void seededPhasesStayBelowPi();
    void sameSeedGivesTheSameBitsAndAnotherSeedDoesNot();
    void longerSpectrumExtendsTheSameDraws();
    void clockPhasesAreSeededBySecondsAndReachPi();
    void parabolicPhasesFollowTheSquareLaw();
    void constantPhasesAreAQuarterTurnInEighths();
    void flatMagnitudesAreOne();
    void compensationLiftsTheBandEdges();
    void samplesStayAtZero();
    void emptySpectrumIsAllowed();
};

void TestSources::generatorDrawsItsFixedSequence()
{
    // state = 1 * 214013 + 2531011 = 2745024, shifted by 16 bits: 41; and so on.
    QCOMPARE(draws(1, 5), (QVector<quint32>{41, 18467, 6334, 26500, 19169}));
    QCOMPARE(draws(2, 3), (QVector<quint32>{45, 29216, 24198}));
}

void TestSources::seededPhasesFollowTheDraws()
{
    const SignalData data = makeSeededPhases(64, false, 1);
    QCOMPARE(data.length, 64);
    QCOMPARE(data.phase.size(), 64);
    // 41/32768 of a turn less half a turn, then 18467/32768.
    QVERIFY(qAbs(data.phase[0] - (2 * 41 - 32768) / 32768.0 * pi) < 1e-15);
    QVERIFY(qAbs(data.phase[1] - (2 * 18467 - 32768) / 32768.0 * pi) < 1e-15);
    QVERIFY(qAbs(data.phase[4] - (2 * 19169 - 32768) / 32768.0 * pi) < 1e-15);
}

void TestSources::seededPhasesStayBelowPi()
{
    // Long enough that the largest draw, 32767, comes up: 32767/32768 of a turn less half.
    const SignalData data = makeSeededPhases(4194304, false, 1);
    const auto largest = std::max_element(data.phase.cbegin(), data.phase.cend());
    const auto smallest = std::min_element(data.phase.cbegin(), data.phase.cend());
    QVERIFY(*largest < pi);
    QVERIFY(qAbs(*largest - 32766.0 / 32768.0 * pi) < 1e-15);
    QCOMPARE(*smallest, -pi);
}

void TestSources::sameSeedGivesTheSameBitsAndAnotherSeedDoesNot()
{
    const SignalData first = makeSeededPhases(1024, false, 1);
    const SignalData again = makeSeededPhases(1024, false, 1);
    const SignalData other = makeSeededPhases(1024, false, 2);
    QVERIFY(first.phase == again.phase);
    QVERIFY(first.phase != other.phase);
}

void TestSources::longerSpectrumExtendsTheSameDraws()
{
    const SignalData shortOne = makeSeededPhases(64, false, 9);
    const SignalData longOne = makeSeededPhases(4096, false, 9);
    QCOMPARE(longOne.phase.mid(0, 64), shortOne.phase);
}

void TestSources::clockPhasesAreSeededBySecondsAndReachPi()
{
    const auto before = static_cast<quint32>(std::time(nullptr));
    const SignalData data = makeClockPhases(1048576, false);
    const auto after = static_cast<quint32>(std::time(nullptr));

    bool found = false;
    for (quint32 second = before; second <= after && !found; ++second) {
        const QVector<quint32> expected = draws(second, 1000);
        found = true;
        for (int i = 0; i < 1000 && found; ++i) {
            // 32767 steps to a turn here, so that the largest draw gives half a turn exactly.
            const double phase = (2.0 * expected[i] - 32767.0) / 32767.0 * pi;
            found = qAbs(data.phase[i] - phase) < 1e-14;
        }
    }
    QVERIFY2(found, "no second between the two looks at the clock seeds these phases");
    const auto largest = std::max_element(data.phase.cbegin(), data.phase.cend());
    QCOMPARE(*largest, pi);
}

void TestSources::parabolicPhasesFollowTheSquareLaw()
{
    const SignalData data = makeParabolicPhases(1024, false);
    QVERIFY(qAbs(data.phase[0] - (pi / 4 - pi / 1024)) < 1e-15);
    QVERIFY(qAbs(data.phase[1] - (pi / 4 - 4 * pi / 1024)) < 1e-15);
    QVERIFY(qAbs(data.phase[1023] - (pi / 4 - 1024 * pi)) < 1e-9);
}

void TestSources::constantPhasesAreAQuarterTurnInEighths()
{
    const SignalData data = makeConstantPhases(128, false);
    QCOMPARE(data.phase.size(), 128);
    for (const double phase : data.phase) {
        QVERIFY(phase == 0.7853981633974483);
    }
}

void TestSources::flatMagnitudesAreOne()
{
    const SignalData data = makeConstantPhases(64, false);
    QCOMPARE(data.magnitude, QVector<double>(64, 1.0));
}

void TestSources::compensationLiftsTheBandEdges()
{
    const SignalData data = makeConstantPhases(1024, true);
    QCOMPARE(data.magnitude[512], 1.0);
    QVERIFY(qAbs(data.magnitude[0] - pi / 2) < 1e-15);
    QCOMPARE(data.magnitude[511], data.magnitude[513]);
    // x/sin(x) is 1 + x^2/6 near the carrier, x = pi/1024.
    QVERIFY(qAbs(data.magnitude[513] - (1.0 + pi * pi / 1024 / 1024 / 6)) < 1e-11);
    QVERIFY(data.magnitude[1023] < data.magnitude[0]);
    QVERIFY(data.magnitude[1023] > 1.56);
    // A quarter of the sample rate from the carrier: (pi/4) / sin(pi/4) = pi sqrt(2) / 4.
    QVERIFY(qAbs(data.magnitude[768] - pi * std::sqrt(2.0) / 4) < 1e-15);
}

void TestSources::samplesStayAtZero()
{
    const SignalData data = makeSeededPhases(64, true, 3);
    QCOMPARE(data.iSamples, QVector<double>(64, 0.0));
    QCOMPARE(data.qSamples, QVector<double>(64, 0.0));
}

void TestSources::emptySpectrumIsAllowed()
{
    const SignalData data = makeParabolicPhases(0, true);
    QCOMPARE(data.length, 0);
    QVERIFY(data.magnitude.isEmpty());
}

QTEST_APPLESS_MAIN(TestSources)
#include "test_sources.moc"
