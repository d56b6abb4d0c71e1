// The dialog's words, and what the command line's own code says of them.
#include "curves/bench_holders.h"
#include "curves/measure_order.h"
#include "curves/order_check.h"

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
    void aGoodOrderIsCounted();
    void whatTheCommandRefusesIsRefusedInItsWords_data();
    void whatTheCommandRefusesIsRefusedInItsWords();
    void aReadyOrderHasItsPlanAndTheory();
    void aConnectionOfAnotherProgramIsSeen();
};

void TestMeasureOrder::allThatIsTypedBecomesWords()
{
    MeasureOrder order = amplifier();
    order.limit = "30";
    order.others = "noise-floor=-150";
    order.hasTheory = true;
    QCOMPARE(commandLineOf(wordsOf(order)),
             QString("notchbench-cli curve default --notches 3,1e6,-100,0 --simulate "
                     "rapp,saturation=0,smoothness=2,noise-floor=-150 --levels -40:0:1 "
                     "--average 4 --limit 30 --threshold 41 --threshold 50 --theory same"));
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
    order.hasTheory = true;
    QVERIFY(!wordsOf(order).contains("--simulate"));
    QVERIFY(!wordsOf(order).contains("--theory"));
}

void TestMeasureOrder::wordsThatAShellTakesApartAreQuoted()
{
    QCOMPARE(commandLineOf({"curve", "my bench.cfg", "it's"}),
             QString("notchbench-cli curve 'my bench.cfg' 'it'\\''s'"));
}

void TestMeasureOrder::aGoodOrderIsCounted()
{
    const OrderCheck check = checkOrder(wordsOf(amplifier()));
    QCOMPARE(check.failure, QString());
    QCOMPARE(check.readings, qint64{41 * 3 * 4});
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
    QMap<QString, QString*> fields = {{"from", &order.from},     {"step", &order.step},
                                      {"device", &order.device}, {"averages", &order.averages},
                                      {"config", &order.config}, {"notches", &order.notches}};
    *fields.value(field) = typed;
    const QString failure = checkOrder(wordsOf(order)).failure;
    QVERIFY2(failure.contains(part), qPrintable(failure));
}

void TestMeasureOrder::aReadyOrderHasItsPlanAndTheory()
{
    MeasureOrder order = amplifier();
    order.hasTheory = true;
    order.to = "-38";
    const ReadyOrder ready = prepareOrder(wordsOf(order));
    QCOMPARE(ready.failure, QString());
    QCOMPARE(ready.measuring.plan.levels, (QVector<double>{-40.0, -39.0, -38.0}));
    QCOMPARE(ready.measuring.context.theory.size(), 9);
    QVERIFY(ready.measuring.result.program.startsWith("notchbench-curves "));
    QVERIFY(ready.measuring.result.signal.noiseLike);
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
