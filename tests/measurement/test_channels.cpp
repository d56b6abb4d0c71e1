// Where the channels of a reading lie.
#include "measurement/channels.h"

#include <QtTest>

namespace {

Notch notchAt(double center, double width)
{
    Notch notch;
    notch.center = center;
    notch.width = width;
    return notch;
}

} // namespace

class TestChannels : public QObject
{
    Q_OBJECT

private slots:
    void channelsOfAnUpperNotch();
    void channelsOfALowerNotch();
};

// 1.2 widths between the channels' middles, 0.75 widths wide.
void TestChannels::channelsOfAnUpperNotch()
{
    const ReadingChannels channels = channelsOf(notchAt(10e6, 2e6));
    QVERIFY(channels.notchIsUpper);
    QCOMPARE(channels.reference, 7.6e6);
    QCOMPARE(channels.bandwidth, 1.5e6);
    QCOMPARE(channels.spacing, 2.4e6);
    QCOMPARE(channels.notch(), 10e6);
}

void TestChannels::channelsOfALowerNotch()
{
    const ReadingChannels channels = channelsOf(notchAt(-10e6, 2e6));
    QVERIFY(!channels.notchIsUpper);
    QCOMPARE(channels.reference, -7.6e6);
    QCOMPARE(channels.spacing, 2.4e6);
    QCOMPARE(channels.notch(), -10e6);
}

QTEST_APPLESS_MAIN(TestChannels)
#include "test_channels.moc"
