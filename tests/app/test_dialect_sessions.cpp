// The real window against each model of instrument, which knows its own words only and refuses all
// others: a whole session from preset to reading, without one refusal.
#include "kit/measuring_test.h"

class TestDialectSessions : public MeasuringTest
{
    Q_OBJECT

private slots:
    void init() { openBench(); }
    void cleanup() { closeBench(); }

    void everyGeneratorIsSpokenToInItsOwnWords_data();
    void everyGeneratorIsSpokenToInItsOwnWords();
    void everyAnalyzerReads_data();
    void everyAnalyzerReads();
    void everyMicrowaveGeneratorIsSpokenToInItsOwnWords_data();
    void everyMicrowaveGeneratorIsSpokenToInItsOwnWords();
    void theWordsOfAnotherModelAreRefused();
    void settingsOfAZeroCarrierAreRefused();

private:
    void choose(int tab, const char* name, const QString& type);
    void verifyTheNotchIsRead();
};

void TestDialectSessions::choose(int tab, const char* name, const QString& type)
{
    showTab(tab);
    const int row = devices->rowTexts(name).indexOf(type);
    QVERIFY2(row >= 0, qPrintable(type));
    devices->pick(name, row);
}

// With a notch of 40 dB and a linear device.
void TestDialectSessions::verifyTheNotchIsRead()
{
    preset();
    const Reading reading = measure(1);
    QVERIFY2(qAbs(reading.upper + 40.0) < 0.1, qPrintable(QString::number(reading.upper)));
    QVERIFY2(simulator->refusals().isEmpty(), simulator->refusals().join('\n').constData());
}

void TestDialectSessions::everyGeneratorIsSpokenToInItsOwnWords_data()
{
    QTest::addColumn<QString>("type");
    for (const char* type :
         {"RIGL", "LYR", "ALTAIR", "DENB", "ORI", "PHD(A)", "PHD(B)", "CYG", "KAU(A)", "KAU(B)"}) {
        QTest::newRow(type) << QString(type);
    }
}

// Each instrument at an address of its own, with one client at a time.
void TestDialectSessions::everyGeneratorIsSpokenToInItsOwnWords()
{
    QFETCH(QString, type);
    choose(0, "g_type", type);
    devices->type("g_address", "127.0.0.2");
    showTab(1);
    devices->type("a_address", "127.0.0.3");
    makeSignal(8, 1, 4, 10, -40);
    start({"--generator", "127.0.0.2", "--analyzer", "127.0.0.3", "--generator-type", type});
    verifyTheNotchIsRead();
}

void TestDialectSessions::everyAnalyzerReads_data()
{
    QTest::addColumn<QString>("type");
    for (const char* type : {"ARA", "HYA", "ANTA", "MUS", "DOR", "CRU", "IND", "GRU", "NOR"}) {
        QTest::newRow(type) << QString(type);
    }
}

void TestDialectSessions::everyAnalyzerReads()
{
    QFETCH(QString, type);
    choose(1, "a_type", type);
    makeSignal(8, 1, 4, 10, -40);
    start({"--analyzer-type", type});
    verifyTheNotchIsRead();
}

void TestDialectSessions::everyMicrowaveGeneratorIsSpokenToInItsOwnWords_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("options");
    QTest::newRow("TAU") << "TAU"
                         << "0";
    QTest::newRow("ZUB") << "ZUB"
                         << "B15,B24";
    QTest::newRow("ZUB without options") << "ZUB"
                                         << "0";
}

void TestDialectSessions::everyMicrowaveGeneratorIsSpokenToInItsOwnWords()
{
    QFETCH(QString, type);
    QFETCH(QString, options);
    makeSignal(8, 1, 4, 10, -40);
    choose(2, "m_type", type);
    devices->type("m_frequency", "9000");
    devices->type("m_address", "127.0.0.2");
    showTab(1);
    devices->type("a_frequency", "10000");
    start({"--microwave", "127.0.0.2", "--microwave-type", type, "--opt", options});
    verifyTheNotchIsRead();
}

void TestDialectSessions::theWordsOfAnotherModelAreRefused()
{
    choose(0, "g_type", "RIGL");
    makeSignal(8, 1, 4, 10, -40);
    start({"--generator-type", "ALTAIR"});
    preset();
    QCOMPARE(simulator->refusals(), QByteArrayList({"bench: -113,\"Undefined header;OUTP\"",
                                                    "bench: -113,\"Undefined header;IQ:STAT\"",
                                                    "bench: -113,\"Undefined header;FREQ\"",
                                                    "bench: -113,\"Undefined header;POW\""}));
    QVERIFY(measure(1).power < -150.0); // nobody switched the generator on
}

// A notch below the carrier asks the analyzer for a centre below 0.
void TestDialectSessions::settingsOfAZeroCarrierAreRefused()
{
    devices->type("a_frequency", "0");
    makeSignal(8, 1, 4, -10, -40);
    start({});
    preset();
    (void)measure(1);
    const QByteArrayList refusals = simulator->refusals();
    QVERIFY(!refusals.isEmpty());
    QVERIFY2(refusals.first().startsWith("analyzer: -222,\"Data out of range;FREQ:CENT -"),
             refusals.first().constData());
}

QTEST_MAIN(TestDialectSessions)
#include "test_dialect_sessions.moc"
