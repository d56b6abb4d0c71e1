// The dialog's words, and what the command line's own code says of them.
#include "curves/bench_holders.h"
#include "curves/made_up_result.h"
#include "curves/measure_order.h"
#include "curves/order_check.h"

#include <QTemporaryDir>
#include <QtTest>

namespace {

MeasureOrder amplifier()
{
    MeasureOrder order;
    order.notches = "3,1e6,-100,0";
    order.device = "rapp";
    order.figures = {{"saturation", "0"}, {"smoothness", "2"}};
    order.from = "-40";
    order.to = "0";
    order.step = "1";
    order.averages = "4";
    order.thresholds = QStringList{"41", "50"};
    return order;
}

} // namespace

class TestMeasureOrder : public QObject
{
    Q_OBJECT

private slots:
    void allThatIsTypedBecomesWords();
    void emptyFieldsAreLeftOut();
    void instrumentsNeedNoDevice();
    void wordsThatAShellTakesApartAreQuoted();
    void aLongCommandIsContinuedBeforeOptions();
    void aGoodOrderIsCounted();
    void whatTheCommandRefusesIsRefusedInItsWords_data();
    void whatTheCommandRefusesIsRefusedInItsWords();
    void onlyTheChosenNotchesAreCounted();
    void theSameTheoryNeedsASimulatedDevice();
    void aResultToSubtractMustHaveAllPoints();
    void aTimeIsToldInItsOwnUnit();
    void aReadyOrderHasItsPlanAndTheory();
    void theoryIsGivenUpWhenItIsStopped();
    void aConnectionOfAnotherProgramIsSeen();
};

void TestMeasureOrder::allThatIsTypedBecomesWords()
{
    MeasureOrder order = amplifier();
    order.limit = "30";
    order.others = "noise-floor=-150";
    order.notchRows = "1,3";
    order.settling = "0.5";
    order.theory = "same";
    order.subtract = "cable.json";
    QCOMPARE(commandLineOf(wordsOf(order)),
             QString("notchbench-cli curve default --notches 3,1e6,-100,0 --simulate "
                     "rapp,saturation=0,smoothness=2,noise-floor=-150 --levels -40:0:1 "
                     "--notch 1,3 --average 4 --settle 0.5 --limit 30 --threshold 41 "
                     "--threshold 50 --theory same --subtract cable.json"));
}

void TestMeasureOrder::emptyFieldsAreLeftOut()
{
    MeasureOrder order;
    order.device = "linear";
    order.from = "-3";
    order.to = "0";
    order.step = "3";
    QCOMPARE(wordsOf(order),
             QStringList({"curve", "default", "--simulate", "linear", "--levels", "-3:0:3"}));
}

void TestMeasureOrder::instrumentsNeedNoDevice()
{
    MeasureOrder order = amplifier();
    order.isSimulated = false;
    order.theory = "adc,bits=12,full-scale=0";
    QVERIFY(!wordsOf(order).contains("--simulate"));
    const OrderCheck check = checkOrder(wordsOf(order));
    QCOMPARE(check.failure, QString());
    QVERIFY(check.seconds > 41 * 0.1); // the settling of instruments alone
    QVERIFY(check.notice.contains("carrier of the configuration is at 0 MHz"));
}

void TestMeasureOrder::wordsThatAShellTakesApartAreQuoted()
{
    QCOMPARE(commandLineOf({"curve", "my bench.cfg", "it's"}),
             QString("notchbench-cli curve 'my bench.cfg' 'it'\\''s'"));
}

void TestMeasureOrder::aLongCommandIsContinuedBeforeOptions()
{
    const QStringList words = {"curve",   "bench.cfg", "--levels",   "-40:0:1",
                               "--limit", "30",        "--subtract", "my --own result.json"};
    QCOMPARE(commandLinesOf(words, 47),
             QString("notchbench-cli curve bench.cfg --levels -40:0:1 \\\n"
                     "    --limit 30 --subtract 'my --own result.json'"));
    QCOMPARE(commandLinesOf(words, 46),
             QString("notchbench-cli curve bench.cfg \\\n    --levels -40:0:1 --limit 30 \\\n"
                     "    --subtract 'my --own result.json'"));
    QCOMPARE(commandLinesOf(words, 1000), commandLineOf(words));
}

void TestMeasureOrder::aGoodOrderIsCounted()
{
    const OrderCheck check = checkOrder(wordsOf(amplifier()));
    QCOMPARE(check.failure, QString());
    QCOMPARE(check.readings, qint64{41} * 3 * 4);
    QVERIFY(check.seconds > 0.0);
    QCOMPARE(check.notice, QString());
}

void TestMeasureOrder::whatTheCommandRefusesIsRefusedInItsWords_data()
{
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("part");
    QTest::newRow("comma") << "from"
                           << "-40,5"
                           << "--levels FROM takes";
    QTest::newRow("no step") << "step"
                             << "0"
                             << "a step of 0 dB";
    QTest::newRow("device") << "device"
                            << "raap"
                            << "did you mean rapp";
    QTest::newRow("averages") << "averages"
                              << "none"
                              << "--average takes";
    QTest::newRow("file") << "config"
                          << "/missing/bench.cfg"
                          << "there is no such file";
    QTest::newRow("standard input") << "config"
                                    << "-"
                                    << "a configuration is a file";
    QTest::newRow("notches") << "notches"
                             << "3"
                             << "--notches takes";
    QTest::newRow("no notch") << "notches"
                              << ""
                              << "has no notch";
    QTest::newRow("rows") << "rows"
                          << "1,4"
                          << "--notch takes";
    QTest::newRow("settling") << "settling"
                              << "long"
                              << "--settle takes";
    QTest::newRow("theory") << "theory"
                            << "linear"
                            << "linear makes no distortion";
    QTest::newRow("no result") << "subtract"
                               << "/missing/cable.json"
                               << "can't read result /missing/cable.json";
    QTest::newRow("narrow") << "notches"
                            << "1,1,-100,0"
                            << "too narrow";
}

void TestMeasureOrder::whatTheCommandRefusesIsRefusedInItsWords()
{
    QFETCH(QString, field);
    QFETCH(QString, typed);
    QFETCH(QString, part);
    MeasureOrder order = amplifier();
    QMap<QString, QString*> fields = {{"from", &order.from},      {"step", &order.step},
                                      {"device", &order.device},  {"averages", &order.averages},
                                      {"config", &order.config},  {"notches", &order.notches},
                                      {"rows", &order.notchRows}, {"settling", &order.settling},
                                      {"theory", &order.theory},  {"subtract", &order.subtract}};
    *fields.value(field) = typed;
    const QString failure = checkOrder(wordsOf(order)).failure;
    QVERIFY2(failure.contains(part), qPrintable(failure));
}

void TestMeasureOrder::onlyTheChosenNotchesAreCounted()
{
    MeasureOrder order = amplifier();
    order.notchRows = "1,3";
    QCOMPARE(checkOrder(wordsOf(order)).readings, 41 * 2 * 4);
}

void TestMeasureOrder::theSameTheoryNeedsASimulatedDevice()
{
    MeasureOrder order = amplifier();
    order.theory = "same";
    QCOMPARE(checkOrder(wordsOf(order)).failure, QString());
    order.isSimulated = false;
    QVERIFY(checkOrder(wordsOf(order)).failure.contains("--theory same"));
}

// Told while it is typed, and not after the signal was made.
void TestMeasureOrder::aResultToSubtractMustHaveAllPoints()
{
    MeasureOrder order = amplifier();
    NprResult bench = prepareOrder(wordsOf(order)).measuring.result;
    for (const double level : {-40.0, -39.0}) {
        for (const double center : {-25e6, 0.0, 25e6}) {
            NprPoint point;
            point.level = level;
            point.center = center;
            point.width = 1e6;
            point.npr = 60.0;
            bench.points << point;
        }
    }
    const QTemporaryDir folder;
    order.subtract = writeResult(folder.filePath("bench.json"), bench);
    const QString failure = checkOrder(wordsOf(order)).failure;
    QVERIFY2(failure.contains("it has no point at -38 dBm"), qPrintable(failure));
    order.to = "-39";
    QCOMPARE(checkOrder(wordsOf(order)).failure, QString());
}

void TestMeasureOrder::aTimeIsToldInItsOwnUnit()
{
    QCOMPARE(durationText(19.2), QString("about 20 s"));
    QCOMPARE(durationText(69.0), QString("about 1:09 min"));
    QCOMPARE(durationText(3599.0), QString("about 59:59 min"));
    QCOMPARE(durationText(3600.0), QString("about 1:00 h"));
    QCOMPARE(durationText(2.0 * 3600.0 + 5.6 * 60.0), QString("about 2:06 h"));
    QCOMPARE(durationText(2.0 * 3600.0 - 10.0), QString("about 2:00 h"));
}

void TestMeasureOrder::aReadyOrderHasItsPlanAndTheory()
{
    MeasureOrder order = amplifier();
    order.theory = "same";
    order.to = "-38";
    const ReadyOrder ready = prepareOrder(wordsOf(order));
    QCOMPARE(ready.failure, QString());
    QCOMPARE(ready.measuring.plan.levels, (QVector<double>{-40.0, -39.0, -38.0}));
    QCOMPARE(ready.measuring.context.theory.size(), 9);
    QVERIFY(ready.measuring.result.program.startsWith("notchbench-curves "));
    QVERIFY(ready.measuring.result.signal.noiseLike);
}

// Asked before each of 41 levels; the first two are calculated.
void TestMeasureOrder::theoryIsGivenUpWhenItIsStopped()
{
    MeasureOrder order = amplifier();
    order.theory = "same";
    int asked = 0;
    (void)prepareOrder(wordsOf(order), [&asked] {
        ++asked;
        return false;
    });
    const int before = asked - 41; // of the theory
    QVERIFY(before >= 1);
    asked = 0;
    const ReadyOrder ready = prepareOrder(wordsOf(order), [&] { return ++asked == before + 3; });
    QCOMPARE(asked, before + 3);
    QCOMPARE(ready.failure, QString());
    QVERIFY(ready.measuring.bench == nullptr); // there is nothing to measure with
}

void TestMeasureOrder::aConnectionOfAnotherProgramIsSeen()
{
    // 192.168.1.20:5025 stands (01) at inode 4711; 127.0.0.1:5025 waits for its end (06).
    const QByteArray table =
        "  sl  local_address rem_address   st tx_queue rx_queue tr tm->when retrnsmt   uid  "
        "timeout "
        "inode\n"
        "   0: 0A01A8C0:D431 1401A8C0:13A1 01 00000000:00000000 00:00000000 00000000  1000        "
        "0 4711 1 0000000000000000 20 4 30 10 -1\n"
        "   1: 0100007F:D432 0100007F:13A1 06 00000000:00000000 00:00000000 00000000  1000        "
        "0 0 1 0000000000000000 20 4 30 10 -1\n";
    QVERIFY(isHeldByOthers(table, "192.168.1.20", 5025, {}));
    QVERIFY(!isHeldByOthers(table, "192.168.1.20", 5026, {}));
    QVERIFY(!isHeldByOthers(table, "192.168.1.20", 5025, {"4711"})); // it is ours
    QVERIFY(!isHeldByOthers(table, "127.0.0.1", 5025, {}));
    QVERIFY(!isHeldByOthers("", "192.168.1.20", 5025, {}));
}

QTEST_GUILESS_MAIN(TestMeasureOrder)
#include "test_measure_order.moc"
