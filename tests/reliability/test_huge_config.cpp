// Configurations of the greatest size that is read, full of sections or keys that the program
// doesn't know, or of rows.
#include "kit/instrumented.h"
#include "kit/process_memory.h"
#include "setup/config_file.h"

#include <QtTest>

#include <ctime>
#include <functional>

namespace {

// Fills a file up to the bound with what comes for each number.
QByteArray filled(const QByteArray& head, const std::function<QByteArray(int)>& piece)
{
    QByteArray text = head;
    for (int i = 1;; ++i) {
        const QByteArray next = piece(i);
        if (text.size() + next.size() > mostConfigBytes) {
            return text;
        }
        text += next;
    }
}

double ownSeconds()
{
    return double(std::clock()) / CLOCKS_PER_SEC;
}

// What reading takes beyond what the process has already.
struct Cost
{
    double seconds;   // of calculation
    double megabytes; // 0 where the system doesn't tell
};

class ConfigFileOf
{
public:
    explicit ConfigFileOf(const QByteArray& text)
    {
        file.open();
        file.write(text);
        file.close();
    }

    MeasurementSetup read()
    {
        const bool isKnown = forgetMostMemory();
        const qint64 before = mostMemory();
        const double start = ownSeconds();
        MeasurementSetup setup = loadConfig(file.fileName());
        cost = {ownSeconds() - start, isKnown ? double(mostMemory() - before) / 1024 : 0.0};
        qInfo("%.2f s, %.0f MB", cost.seconds, cost.megabytes);
        return setup;
    }

    // An instrumented program is several times slower and takes memory of its own.
    bool costsLessThan(const Cost& bound) const
    {
        return isInstrumented ? cost.seconds < 10.0 * bound.seconds
                              : cost.seconds < bound.seconds && cost.megabytes < bound.megabytes;
    }

private:
    Cost cost = {};
    QTemporaryFile file;
};

} // namespace

class TestHugeConfig : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void whatIsNotKnownCostsLittle_data();
    void whatIsNotKnownCostsLittle();
    void rowsCostWhatTheyAre_data();
    void rowsCostWhatTheyAre();
};

void TestHugeConfig::initTestCase()
{
    (void)loadConfig(QString()); // what is made once, for every configuration
}

void TestHugeConfig::whatIsNotKnownCostsLittle_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("sections") << filled(
        "[NPR]\nSeed = 7\n", [](int i) { return '[' + QByteArray::number(i, 36) + "]\na = 1\n"; });
    QTest::newRow("keys") << filled("[NPR]\nSeed = 7\n",
                                    [](int i) { return QByteArray::number(i, 36) + " = 1\n"; });
    QTest::newRow("empty lines") << filled("[NPR]\nSeed = 7\n", [](int) { return "\n"; });
}

void TestHugeConfig::whatIsNotKnownCostsLittle()
{
    QFETCH(QByteArray, text);
    ConfigFileOf file(text);
    const MeasurementSetup setup = file.read();
    QCOMPARE(setup.seed, 7U);
    QCOMPARE(setup.sampleRate, 1e8);
    QVERIFY(setup.notches->items.isEmpty());
    QVERIFY(file.costsLessThan({2.0, 300.0}));
}

void TestHugeConfig::rowsCostWhatTheyAre_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("in any order") << filled(
        {}, [](int i) { return "[Notch " + QByteArray::number(i) + "]\nStop = 1\n"; });
    QTest::newRow("all in the middle") << filled(
        {}, [](int i) { return "[Notch 200000/" + QByteArray::number(i, 36) + "]\nStop = 1\n"; });
}

// A row is a record of 200 bytes, and its section as much text again.
void TestHugeConfig::rowsCostWhatTheyAre()
{
    QFETCH(QByteArray, text);
    ConfigFileOf file(text);
    const MeasurementSetup setup = file.read();
    QCOMPARE(setup.notches->items.size(), text.count('['));
    QCOMPARE(setup.notches->items.constLast().stopIndex, 1);
    QVERIFY(file.costsLessThan({20.0, 1000.0}));
}

QTEST_GUILESS_MAIN(TestHugeConfig)
#include "test_huge_config.moc"
