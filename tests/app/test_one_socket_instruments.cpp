// Instruments that serve one connection at a time, as many do, are connected anew.
#include "kit/instrument_window_test.h"

Q_DECLARE_METATYPE(BenchInstrument::Second)

class TestOneSocketInstruments : public InstrumentWindowTest
{
    Q_OBJECT

private slots:
    void cleanup() { closeBench(); }

    void theyEndConnectedWithTheirNames_data();
    void theyEndConnectedWithTheirNames();
    void aPickAndAMeasurementBetweenTwoPresetsReachThem();
};

void TestOneSocketInstruments::theyEndConnectedWithTheirNames_data()
{
    QTest::addColumn<Second>("second");
    QTest::addColumn<QStringList>("clicks");
    const QList<QPair<const char*, Second>> kinds = {{"waits unserved", Second::WaitsUnserved},
                                                     {"is closed at once", Second::IsClosedAtOnce}};
    const QList<QStringList> orders = {
        {"preset", "preset"},           {"preset", "a_init", "g_init"},
        {"a_init", "g_init", "preset"}, {"a_init", "a_init", "g_init", "g_init"},
        {"preset", "a_set", "g_set"},   {"preset", "a_init", "preset", "g_init", "preset"},
    };
    for (const auto& kind : kinds) {
        for (const QStringList& clicks : orders) {
            QTest::addRow("a second %s: %s", kind.first, qPrintable(clicks.join(", ")))
                << kind.second << clicks;
        }
    }
}

void TestOneSocketInstruments::theyEndConnectedWithTheirNames()
{
    QFETCH(Second, second);
    QFETCH(QStringList, clicks);
    openBench(second);
    analyzer->answer("*IDN?", "AN,1\n", 50);
    generator->answer("*IDN?", "GEN,2\n", 50);
    for (const QString& each : clicks) {
        if (each == "preset") {
            operate->click("preset_button");
        } else {
            click(each.toLatin1());
        }
    }
    QVERIFY(backgroundJobsEnd(15000));
    refreshDevices();
    QCOMPARE(messageOf("a_message"), QString("AN,1"));
    QCOMPARE(messageOf("g_message"), QString("GEN,2"));
    QVERIFY(devicesAt("a_set").isEnabled("a_set"));
    QVERIFY(devicesAt("g_set").isEnabled("g_set"));
    for (const BenchInstrument* each : {analyzer.get(), generator.get()}) {
        QTRY_COMPARE(each->openConnections(), 1);
        QTRY_VERIFY(each->lines().last().text == "&GTL");
        QCOMPARE(each->lines().last().connection, each->connectionCount());
        QVERIFY2(!spokenWith(*each).contains("torn"), qPrintable(spokenWith(*each)));
    }
    pickNextNotch();
    operate->click("measure_button");
    QTRY_COMPARE(operate->text("signal_power"), QString("-10.13"));
}

void TestOneSocketInstruments::aPickAndAMeasurementBetweenTwoPresetsReachThem()
{
    openBench(Second::IsClosedAtOnce);
    preset();
    operate->click("preset_button");
    pickNextNotch();
    operate->click("measure_button");
    operate->click("preset_button");
    QVERIFY(backgroundJobsEnd(15000));
    QTRY_COMPARE(operate->text("npr_upper"), QString("-43.75"));
    QTRY_COMPARE(countWith(*analyzer, "channel power"), 3);
    QCOMPARE(countWith(*analyzer, "init"), 3);
    QCOMPARE(countWith(*analyzer, "tune"), 1);
    QCOMPARE(countWith(*analyzer, "pass"), 1);
    QCOMPARE(countWith(*analyzer, "set"), 3);
    QCOMPARE(conversationsWith(*analyzer).size(), 11);
}

QTEST_MAIN(TestOneSocketInstruments)
#include "test_one_socket_instruments.moc"
