// What a recording of a signal is to hold, by the numbers of its lines.
#include "campaign/recorded_points.h"
#include "setup/measurement_setup.h"

#include <QtTest>

class TestRecordedPoints : public QObject
{
    Q_OBJECT

private slots:
    void theBandIsOfTheLinesThatTheSkirtsLeave_data();
    void theBandIsOfTheLinesThatTheSkirtsLeave();
    void gapsReachToTheLinesBesideTheNotches();
};

// A setup of 1024 lines, 1 kHz apart. Half a band leaves the lines 257 to 767 of whatever signal
// is played; the carrier is in the middle of the signal's own lines.
void TestRecordedPoints::theBandIsOfTheLinesThatTheSkirtsLeave_data()
{
    QTest::addColumn<double>("share");
    QTest::addColumn<int>("length");
    QTest::addColumn<double>("low");
    QTest::addColumn<double>("high");
    QTest::newRow("whole") << 1.0 << 1024 << -512e3 << 511e3;
    QTest::newRow("half") << 0.5 << 1024 << -255e3 << 255e3;
    QTest::newRow("whole, of a longer file") << 1.0 << 2048 << -512e3 << 511.5e3;
    QTest::newRow("whole, of a shorter file") << 1.0 << 512 << -512e3 << 510e3;
    // 125 Hz apart, the carrier is line 4096: (257 - 4096) * 125 and (767 - 4096) * 125.
    QTest::newRow("half, of a longer file") << 0.5 << 8192 << -479875.0 << -416125.0;
    // 2 kHz apart, the carrier is line 256, and 511 is the last one.
    QTest::newRow("half, of a shorter file") << 0.5 << 512 << 2e3 << 510e3;
    QTest::newRow("all in a skirt") << 0.5 << 256 << -512e3 << 508e3;
}

void TestRecordedPoints::theBandIsOfTheLinesThatTheSkirtsLeave()
{
    QFETCH(double, share);
    QFETCH(int, length);
    QFETCH(double, low);
    QFETCH(double, high);
    MeasurementSetup setup;
    setup.fftLengthIndex = 12;
    setup.sampleRate = 1.024e6;
    setup.nbwSrate = share;
    setup.signal.length = length;
    const RecordedSignal signal = recordedSignalOf(setup, {});
    QCOMPARE(signal.length, length);
    QCOMPARE(signal.band.low, low);
    QCOMPARE(signal.band.high, high);
}

void TestRecordedPoints::gapsReachToTheLinesBesideTheNotches()
{
    MeasurementSetup setup;
    setup.fftLengthIndex = 12;
    setup.sampleRate = 1.024e6;
    setup.signal.length = 1024;
    NumberedNotch notch;
    notch.notch.startIndex = -20;
    notch.notch.stopIndex = -10;
    const RecordedSignal signal = recordedSignalOf(setup, {notch});
    QCOMPARE(signal.gaps.size(), 1);
    QCOMPARE(signal.gaps.at(0).low, -21e3);
    QCOMPARE(signal.gaps.at(0).high, -9e3);
}

QTEST_APPLESS_MAIN(TestRecordedPoints)
#include "test_recorded_points.moc"
