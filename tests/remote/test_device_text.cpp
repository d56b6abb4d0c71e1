// What the byte stream transports make of a device that takes everything, something or nothing.
#include "remote/device_text.h"

#include "kit/remote_failure.h"

#include <QtTest>

namespace {

// Takes the bytes and says what it was told to say of them.
class Device : public QIODevice
{
public:
    explicit Device(qint64 saidWritten) : said(saidWritten)
    {
        open(QIODevice::ReadWrite | QIODevice::Unbuffered);
    }
    QByteArray taken;

protected:
    qint64 readData(char* /*data*/, qint64 /*size*/) override { return 0; }
    qint64 writeData(const char* data, qint64 size) override
    {
        taken.append(data, static_cast<int>(size));
        return said;
    }

private:
    qint64 said;
};

} // namespace

class TestDeviceText : public QObject
{
    Q_OBJECT

private slots:
    void onlyAWriteOfNothingIsAFailure_data();
    void onlyAWriteOfNothingIsAFailure();
    void anAnswerEndsAtAZeroByteAndIsTrimmed();
};

void TestDeviceText::onlyAWriteOfNothingIsAFailure_data()
{
    QTest::addColumn<int>("written");
    QTest::addColumn<QString>("failure");
    QTest::newRow("nothing") << 0 << "Error at sendSCPI: *RST";
    QTest::newRow("an error") << -1 << "(none)";
    QTest::newRow("a part") << 2 << "(none)";
    QTest::newRow("all") << 5 << "(none)";
}

void TestDeviceText::onlyAWriteOfNothingIsAFailure()
{
    QFETCH(int, written);
    Device device(written);
    QTEST(failureOf([&] { DeviceText::sendLine(device, "*RST"); }), "failure");
    QCOMPARE(device.taken, QByteArray("*RST\n"));
}

void TestDeviceText::anAnswerEndsAtAZeroByteAndIsTrimmed()
{
    QCOMPARE(DeviceText::answerFrom(QByteArray(" ACME,42\r\n\0more", 15)), QString("ACME,42"));
    QCOMPARE(DeviceText::answerFrom(QByteArray()), QString());
}

QTEST_GUILESS_MAIN(TestDeviceText)
#include "test_device_text.moc"
