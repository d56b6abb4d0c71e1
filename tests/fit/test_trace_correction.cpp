// The two corrections: hand-worked levels, a closed form, and a plain single loop bit for bit.
#include "base/parallel.h"
#include "base/worker_threads.h"
#include "fit/polyfit.h"
#include "fit/trace_correction.h"
#include "kit/same_bits.h"

#include <QtTest>

#include <atomic>
#include <cmath>
#include <memory>
#include <stdexcept>
#include <thread>

namespace {

// Points of equal distance from -span/2 to span/2.
template <typename Law> AnalyzerTrace traceOf(int points, double span, Law level)
{
    AnalyzerTrace trace;
    for (int i = 0; i < points; ++i) {
        trace.frequencies.append(span * i / (points - 1) - span / 2);
        trace.levels.append(level(trace.frequencies.last()));
    }
    return trace;
}

double tilt(double frequency)
{
    return -10.0 + frequency / 10e6; // from -15 dB at -50 MHz to -5 dB at 50 MHz
}

// One loop on one thread over a trace whose points first to last overlap the lines.
QVector<double> plainCorrection(const AnalyzerTrace& trace, const QVector<double>& lines, int first,
                                int last)
{
    const int m = last - first + 1;
    const double norm = trace.frequencies.at(m - 1);
    QVector<double> xs;
    QVector<double> ys;
    for (int i = 0; i < m; ++i) {
        xs.append(trace.frequencies.at(first + i) / norm);
        ys.append(trace.levels.at(first + i));
    }
    const QVector<double> c = polyfit(xs, ys, 20);
    double top = 0.0;
    for (int i = 0; i < m; ++i) {
        double sum = 0.0;
        double power = 1.0;
        for (int j = 0; j <= 20; ++j) {
            sum += c.at(j) * power;
            power *= xs.at(i);
        }
        top = sum > top ? sum : top;
    }
    QVector<double> result;
    for (const double line : lines) {
        const double t = line / norm;
        double v = 0.0;
        for (int k = 20; k >= 3; --k) {
            v += c.at(k) * std::pow(t, static_cast<double>(k));
        }
        v += c.at(2) * (t * t);
        v += c.at(1) * t;
        v += c.at(0);
        result.append(top - v);
    }
    return result;
}

} // namespace

class TestTraceCorrection : public QObject
{
    Q_OBJECT

private slots:
    void linesStartHalfASampleRateBelowTheCentre();
    void directCorrectionIsTheDistanceBelowTheTop_data();
    void directCorrectionIsTheDistanceBelowTheTop();
    void linesWithoutAPointGetNoDirectCorrection();
    void polynomialFollowsATiltAtEveryLine();
    void polynomialFollowsARipple();
    void topOfThePolynomialIsAtLeastZero();
    void bitsAreThoseOfAPlainLoop_data();
    void bitsAreThoseOfAPlainLoop();
    void manyJobsAtOnceEnd();
    void normIsTakenFromTheStartOfATraceThatBeginsBelowTheLines();
    void traceBelowTheLastLineGivesNoNumbersOrNone();
    void anAbandonedCorrectionGivesNothing();
};

void TestTraceCorrection::linesStartHalfASampleRateBelowTheCentre()
{
    QCOMPARE(lineFrequencies(4, 100e6, 25e6), QVector<double>({-50e6, -25e6, 0, 25e6}));
    QVERIFY(lineFrequencies(0, 100e6, 25e6).isEmpty());
}

void TestTraceCorrection::directCorrectionIsTheDistanceBelowTheTop_data()
{
    QTest::addColumn<QVector<double>>("levels");
    QTest::addColumn<QVector<double>>("correction");
    using V = QVector<double>;
    // Deliberate: the top never falls below 0, so the first carries its absolute level along.
    QTest::newRow("below zero") << V{-10, -20, -30} << V{10, 20, 30};
    QTest::newRow("across zero") << V{5, 0, -5} << V{0, 5, 10};
    QTest::newRow("above zero") << V{5, 7, 6} << V{2, 0, 1};
}

void TestTraceCorrection::directCorrectionIsTheDistanceBelowTheTop()
{
    QFETCH(QVector<double>, levels);
    QFETCH(QVector<double>, correction);
    QCOMPARE(directCorrection({{-1, 0, 1}, levels}, 3), correction);
}

void TestTraceCorrection::linesWithoutAPointGetNoDirectCorrection()
{
    QCOMPARE(directCorrection({{-1, 1}, {-4, -6}}, 4), QVector<double>({4, 6, 0, 0}));
    QCOMPARE(directCorrection({}, 2), QVector<double>({0, 0}));
}

void TestTraceCorrection::polynomialFollowsATiltAtEveryLine()
{
    const QVector<double> lines = lineFrequencies(1024, 100e6, 100e6 / 1024);
    const QVector<double> correction = polynomialCorrection(traceOf(1001, 100e6, tilt), lines);
    QCOMPARE(correction.size(), 1024);
    for (int i = 0; i < lines.size(); ++i) {
        // The system's condition leaves about eight digits.
        QVERIFY(std::fabs(correction.at(i) + tilt(lines.at(i))) < 1e-6);
    }
}

void TestTraceCorrection::polynomialFollowsARipple()
{
    const auto ripple = [](double frequency) { return 3.0 + std::sin(frequency / 10e6); };
    const QVector<double> lines = lineFrequencies(4096, 100e6, 100e6 / 4096);
    const QVector<double> correction = polynomialCorrection(traceOf(1001, 100e6, ripple), lines);
    QCOMPARE(correction.size(), 4096);
    for (int i = 0; i < lines.size(); ++i) {
        QVERIFY(std::fabs(correction.at(i) - (4.0 - ripple(lines.at(i)))) < 1e-4);
    }
}

void TestTraceCorrection::topOfThePolynomialIsAtLeastZero()
{
    const QVector<double> lines = lineFrequencies(64, 100e6, 100e6 / 64);
    const auto flat = [](double) { return -20.0; };
    const QVector<double> correction = polynomialCorrection(traceOf(101, 100e6, flat), lines);
    QCOMPARE(correction.size(), 64);
    for (const double value : correction) {
        QVERIFY(std::fabs(value - 20.0) < 1e-6);
    }
}

void TestTraceCorrection::bitsAreThoseOfAPlainLoop_data()
{
    QTest::addColumn<int>("lineCount");
    QTest::addColumn<bool>("isAlone");
    for (const bool alone : {true, false}) {
        for (const int lineCount : {1, 64, 16384, 16385, 131072}) {
            QTest::addRow("%d lines, %s", lineCount, alone ? "one thread" : "all cores")
                << lineCount << alone;
        }
    }
}

void TestTraceCorrection::bitsAreThoseOfAPlainLoop()
{
    QFETCH(int, lineCount);
    QFETCH(bool, isAlone);
    const auto alone = isAlone ? std::make_unique<WorkAlone>() : nullptr;
    const auto curve = [](double f) { return -20.0 + f / 20e6 + std::cos(f / 7e6); };
    const AnalyzerTrace trace = traceOf(1001, 100e6, curve);
    const QVector<double> lines = lineFrequencies(lineCount, 100e6, 100e6 / lineCount);
    const QVector<double> found = polynomialCorrection(trace, lines);

    // The first point at or above the last line ends the overlap.
    int last = 0;
    while (trace.frequencies.at(last) < lines.last()) {
        ++last;
    }
    QVERIFY(sameBits(found, plainCorrection(trace, lines, 0, last)));
}

// Each wants more threads than there are cores, and none waits for another.
void TestTraceCorrection::manyJobsAtOnceEnd()
{
    const QVector<double> lines = lineFrequencies(65536, 100e6, 100e6 / 65536);
    std::atomic<int> ended{0};
    for (int job = 0; job < 10; ++job) {
        QVERIFY(WorkerThreads::ofProcess().start([&lines, &ended] {
            ended += polynomialCorrection(traceOf(1001, 100e6, tilt), lines).size() == 65536;
        }));
    }
    WorkerThreads::ofProcess().waitForDone();
    QCOMPARE(ended.load(), 10);
}

void TestTraceCorrection::normIsTakenFromTheStartOfATraceThatBeginsBelowTheLines()
{
    // Deliberate: points 50 to 150 overlap, and the norm is point 100 of the trace, 1 Hz beside
    // the centre, which makes the quotients huge. Only the way of computing is fixed here.
    AnalyzerTrace trace;
    for (int i = 0; i <= 200; ++i) {
        trace.frequencies.append((i - 100) * 1e6 + 1.0);
        trace.levels.append(-10.0 - i * 0.01);
    }
    const QVector<double> lines = lineFrequencies(100, 100e6, 1e6);
    QVERIFY(sameBits(polynomialCorrection(trace, lines), plainCorrection(trace, lines, 50, 149)));
}

void TestTraceCorrection::traceBelowTheLastLineGivesNoNumbersOrNone()
{
    const QVector<double> lines = lineFrequencies(64, 100e6, 100e6 / 64);
    // Deliberate: the first point inside and no last one leave one point, which fits nothing.
    const QVector<double> single = polynomialCorrection(traceOf(101, 60e6, tilt), lines);
    QCOMPARE(single.size(), 64);
    for (const double value : single) {
        QVERIFY(!std::isfinite(value));
    }
    // Three points inside after one outside: last stays at 0, before first.
    const AnalyzerTrace outside{{-60e6, -55e6, -10e6, 20e6}, {1, 2, 3, 4}};
    QVERIFY_EXCEPTION_THROWN(polynomialCorrection(outside, lines), std::range_error);
}

// Before it begins, and at some place in the middle of seconds of work.
void TestTraceCorrection::anAbandonedCorrectionGivesNothing()
{
    const QVector<double> lines = lineFrequencies(4194304, 100e6, 100e6 / 4194304);
    const AnalyzerTrace trace = traceOf(1001, 100e6, tilt);
    std::atomic<bool> abandoned{true};
    QVERIFY(polynomialCorrection(trace, lines, &abandoned).isEmpty());
    abandoned = false;
    QVector<double> correction{0.0};
    std::thread job([&] { correction = polynomialCorrection(trace, lines, &abandoned); });
    abandoned = true;
    job.join();
    QVERIFY(correction.isEmpty());
}

QTEST_APPLESS_MAIN(TestTraceCorrection)
#include "test_trace_correction.moc"
