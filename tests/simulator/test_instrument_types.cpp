// Models: each knows the words of its row of the program's dialects and no others, and refuses what
// is outside its ranges.
#include "scpi_session_test.h"

namespace {

// All words that set a generator up, and the models that know them.
struct Word
{
    const char* line;
    QStringList models;
};

const QStringList plain{"RIGL", "DENB", "ORI", "PHD(A)", "CYG", "KAU(A)"};
const QStringList digital{"DENB", "ORI", "PHD(A)", "PHD(B)", "CYG"};
const QStringList secondPath{"PHD(B)", "KAU(B)"};

const Word words[] = {
    {"OUTP ON", plain},
    {":OUTP2 ON", secondPath},
    {"LEV:ON", {"LYR"}},
    {"L:ON", {"ALTAIR"}},
    {"IQ:STAT ON", {"RIGL"}},
    {"IQ:ON", {"ALTAIR"}},
    {":DM:IQ:STAT ON;:DM:IQ:PRAM OFF", digital},
    {"FREQ 2000000000.000000", plain},
    {"RF 2000000000.000000", {"LYR", "ALTAIR"}},
    {"SOUR2:FREQ 2000000000.000000", secondPath},
    {"POW -20.000000", plain},
    {"L -20.000000", {"LYR", "ALTAIR"}},
    {"SOUR2:POW -20.000000", secondPath},
};

// Whether the instrument takes both ends of the range and nothing beyond them.
bool keepsLimits(ScpiSession& session, const QByteArray& word, Range range)
{
    const auto isTaken = [&](double value) {
        tell(session, "*CLS;" + word + ' ' + QByteArray::number(value, 'f', 9));
        return tell(session, "SYST:ERR?") == noError;
    };
    const double beyond = 1e-6 * range.highest;
    return isTaken(range.lowest) && isTaken(range.highest) && !isTaken(range.lowest - beyond) &&
           !isTaken(range.highest + beyond);
}

void addRows(const QStringList& models)
{
    QTest::addColumn<QString>("model");
    for (const QString& name : models) {
        QTest::newRow(qPrintable(name)) << name;
    }
}

} // namespace

Q_DECLARE_METATYPE(Range)

class TestInstrumentTypes : public ScpiSessionTest
{
    Q_OBJECT

private slots:
    void aGeneratorKnowsItsOwnWordsOnly_data() { addRows(typeNames(generatorTypes())); }
    void aGeneratorKnowsItsOwnWordsOnly();
    void aMicrowaveGeneratorKnowsItsOwnWordsOnly();
    void anOptionThatIsMissingIsTold();
    void everyAnalyzerKnowsTheSameWords_data() { addRows(typeNames(analyzerTypes())); }
    void everyAnalyzerKnowsTheSameWords();
    void rangesAreTheModels();
    void everyGeneratorKeepsItsLimits_data();
    void everyGeneratorKeepsItsLimits();
    void everyMicrowaveGeneratorKeepsItsLimits();
    void everyAnalyzerKeepsItsLimits_data();
    void everyAnalyzerKeepsItsLimits();
    void identityAndOptionsAreTheModels();
    void unknownModelsAreNotFound();
};

void TestInstrumentTypes::aGeneratorKnowsItsOwnWordsOnly()
{
    QFETCH(QString, model);
    BenchModels models;
    models.generator = findType(generatorTypes(), model);
    SimulatedInstrument instrument(bench, BenchFace::GeneratorAndAnalyzer, models);
    ScpiSession session(instrument);
    int known = 0;
    for (const Word& word : words) {
        tell(session, word.line);
        const QByteArray error = tell(session, "SYST:ERR?");
        tell(session, "*CLS");
        if (word.models.contains(model)) {
            QCOMPARE(error, QByteArray(noError));
            ++known;
        } else {
            QVERIFY2(error.startsWith("-113,"), word.line);
        }
    }
    QVERIFY(known >= 3);
}

void TestInstrumentTypes::aMicrowaveGeneratorKnowsItsOwnWordsOnly()
{
    BenchModels models;
    models.microwave = findType(microwaveTypes(), "TAU");
    SimulatedInstrument tau(bench, BenchFace::Microwave, models);
    ScpiSession session(tau);
    for (const char* line : {"FREQ 18000000000.000000", "OUTP ON", "POW 3.500000"}) {
        tell(session, line);
        QCOMPARE(tell(session, "SYST:ERR?"), QByteArray(noError));
    }
    for (const char* line : {":INP:IF:STAT ON", "OUTP1:ATT 10.000000", "RF 1", ":OUTP2 ON"}) {
        tell(session, line);
        QVERIFY2(tell(session, "SYST:ERR?").startsWith("-113,"), line);
    }
}

void TestInstrumentTypes::anOptionThatIsMissingIsTold()
{
    const struct
    {
        const char* options;
        bool hasIfInput;
        bool hasAttenuator;
    } rows[] = {{"B15,B17,B23,B24", true, true},
                {"B24", true, false},
                {"B23", true, false},
                {"B15", false, true},
                {"B17,K3", false, true},
                {"", false, false},
                {"B151,B2", false, false}};
    for (const auto& row : rows) {
        BenchModels models = withOptions(row.options);
        models.microwave = findType(microwaveTypes(), "ZUB");
        SimulatedInstrument zub(bench, BenchFace::Microwave, models);
        ScpiSession session(zub);
        QCOMPARE(tell(session, "*OPT?"), QByteArray(row.options));
        tell(session, ":INP:IF:STAT OFF");
        QCOMPARE(tell(session, "SYST:ERR?").startsWith("-241,\"Hardware missing"), !row.hasIfInput);
        bench.settings.microwave.attenuation = 0.0;
        tell(session, "OUTP1:ATT 10.000000");
        QCOMPARE(tell(session, "SYST:ERR?").startsWith("-241,"), !row.hasAttenuator);
        QCOMPARE(bench.settings.microwave.attenuation, row.hasAttenuator ? 10.0 : 0.0);
    }
}

void TestInstrumentTypes::everyAnalyzerKnowsTheSameWords()
{
    QFETCH(QString, model);
    BenchModels models;
    models.analyzer = findType(analyzerTypes(), model);
    SimulatedInstrument instrument(bench, BenchFace::Analyzer, models);
    ScpiSession session(instrument);
    const QList<QByteArray> measuring = {"FREQ:CENT 1008800000.00000000000",
                                         "FREQ:SPAN 3500000.00000000000",
                                         "POW:ACH:BWID 750000.00000000000",
                                         "POW:ACH:BWID:ACH 750000.00000000000",
                                         "POW:ACH:SPAC 1200000.00000000000",
                                         "BAND:RES 30000.00000000000",
                                         "BAND:VID 300000.00000000000",
                                         "INIT:CONT OFF",
                                         "INIT;*WAI",
                                         "",
                                         ";*CLS"};
    for (const QByteArray& line : channelPowerPreset + measuring) {
        QVERIFY2(isUnderstood(session, line), line);
    }
    QCOMPARE(tell(session, "*CLS;:CALC1:MARK1:FUNC:POW:RES? ACP").count(','), 2);
}

void TestInstrumentTypes::rangesAreTheModels()
{
    BenchModels models;
    models.generator = findType(generatorTypes(), "LYR");
    models.analyzer = findType(analyzerTypes(), "MUS");
    SimulatedInstrument instrument(bench, BenchFace::GeneratorAndAnalyzer, models);
    ScpiSession session(instrument);
    for (const char* line :
         {"RF 0.000000", "RF 2400000001.000000", "L 13.100000", "L -127.100000", "FREQ:CENT 4e9",
          "FREQ:CENT -0.5", "FREQ:SPAN 4e9", "INP:ATT 71", "INP:ATT -1", "BAND:RES 0.5",
          "BAND:VID 2e7", "SWE:TIME 0.0001", "SWE:TIME 20000", "DISP:TRAC:Y:RLEV 31"}) {
        tell(session, line);
        QVERIFY2(tell(session, "SYST:ERR?").startsWith("-222,"), line);
    }
    for (const char* line : {"RF 2400000000.000000", "L 13.000000", "FREQ:CENT 3.5e9",
                             "FREQ:SPAN 0", "INP:ATT 70", "BAND:RES 1", "SWE:TIME 16000"}) {
        tell(session, line);
        QCOMPARE(tell(session, "SYST:ERR?"), QByteArray(noError));
    }
}

void TestInstrumentTypes::everyGeneratorKeepsItsLimits_data()
{
    QTest::addColumn<QByteArray>("frequencyWord");
    QTest::addColumn<Range>("frequency");
    QTest::addColumn<QByteArray>("levelWord");
    QTest::addColumn<Range>("level");
    QTest::addColumn<QByteArray>("options");
    const auto row = [](const char* model, const char* frequencyWord, Range frequency,
                        const char* levelWord, Range level, const char* options) {
        QTest::newRow(model) << QByteArray(frequencyWord) << frequency << QByteArray(levelWord)
                             << level << QByteArray(options);
    };
    row("RIGL", "FREQ", {100e3, 6e9}, "POW", {-120.0, 18.0}, "B4,K7");
    row("LYR", "RF", {10e3, 2.4e9}, "L", {-127.0, 13.0}, "0");
    row("ALTAIR", "RF", {10e3, 5.4e9}, "L", {-137.0, 13.0}, "0");
    row("DENB", "FREQ", {300e3, 3.3e9}, "POW", {-144.0, 16.0}, "B11,B13");
    row("ORI", "FREQ", {300e3, 6.4e9}, "POW", {-144.0, 16.0}, "B11,B13");
    row("PHD(A)", "FREQ", {100e3, 6e9}, "POW", {-145.0, 18.0}, "B10,B20");
    row("PHD(B)", "SOUR2:FREQ", {100e3, 3e9}, "SOUR2:POW", {-145.0, 18.0}, "B10,B20");
    row("CYG", "FREQ", {9e3, 6e9}, "POW", {-120.0, 18.0}, "B10");
    row("KAU(A)", "FREQ", {9e3, 3e9}, "POW", {-120.0, 13.0}, "0");
    row("KAU(B)", "SOUR2:FREQ", {9e3, 3e9}, "SOUR2:POW", {-120.0, 13.0}, "0");
}

void TestInstrumentTypes::everyGeneratorKeepsItsLimits()
{
    QFETCH(QByteArray, frequencyWord);
    QFETCH(Range, frequency);
    QFETCH(QByteArray, levelWord);
    QFETCH(Range, level);
    BenchModels models;
    models.generator = findType(generatorTypes(), QTest::currentDataTag());
    SimulatedInstrument instrument(bench, BenchFace::Generator, models);
    ScpiSession session(instrument);
    QVERIFY(keepsLimits(session, frequencyWord, frequency));
    QVERIFY(keepsLimits(session, levelWord, level));
    QFETCH(QByteArray, options);
    QCOMPARE(tell(session, "*OPT?"), options);
}

void TestInstrumentTypes::everyMicrowaveGeneratorKeepsItsLimits()
{
    BenchModels models;
    models.microwave = findType(microwaveTypes(), "TAU");
    SimulatedInstrument tau(bench, BenchFace::Microwave, models);
    ScpiSession toTau(tau);
    QVERIFY(keepsLimits(toTau, "FREQ", {10e6, 40e9}));
    QVERIFY(keepsLimits(toTau, "POW", {-20.0, 15.0}));
    models.microwave = findType(microwaveTypes(), "ZUB");
    SimulatedInstrument zub(bench, BenchFace::Microwave, models);
    ScpiSession toZub(zub);
    QVERIFY(keepsLimits(toZub, "FREQ", {10e6, 60e9}));
    QVERIFY(keepsLimits(toZub, "POW", {-20.0, 15.0}));
    QVERIFY(keepsLimits(toZub, "OUTP1:ATT", {0.0, 110.0}));
    QCOMPARE(tell(toZub, "*OPT?"), QByteArray("B15,B17,B23,B24"));
}

void TestInstrumentTypes::everyAnalyzerKeepsItsLimits_data()
{
    QTest::addColumn<double>("highest"); // frequency and span, Hz
    QTest::addColumn<double>("mostAttenuation");
    QTest::addColumn<double>("widestFilter"); // Hz
    QTest::addColumn<QByteArray>("options");
    QTest::newRow("ARA") << 26.5e9 << 70.0 << 10e6 << QByteArray("B4,K5");
    QTest::newRow("HYA") << 8e9 << 75.0 << 50e6 << QByteArray("B4,K5");
    QTest::newRow("ANTA") << 7e9 << 70.0 << 10e6 << QByteArray("B4");
    QTest::newRow("MUS") << 3.5e9 << 70.0 << 10e6 << QByteArray("0");
    QTest::newRow("DOR") << 40e9 << 70.0 << 10e6 << QByteArray("B4,B9");
    QTest::newRow("CRU") << 43e9 << 75.0 << 50e6 << QByteArray("B4,K5");
    QTest::newRow("IND") << 13.6e9 << 75.0 << 10e6 << QByteArray("B4");
    QTest::newRow("GRU") << 6e9 << 50.0 << 3e6 << QByteArray("0");
    QTest::newRow("NOR") << 30e9 << 70.0 << 10e6 << QByteArray("B9");
}

void TestInstrumentTypes::everyAnalyzerKeepsItsLimits()
{
    QFETCH(double, highest);
    QFETCH(double, mostAttenuation);
    QFETCH(double, widestFilter);
    BenchModels models;
    models.analyzer = findType(analyzerTypes(), QTest::currentDataTag());
    SimulatedInstrument instrument(bench, BenchFace::Analyzer, models);
    ScpiSession session(instrument);
    QVERIFY(keepsLimits(session, "FREQ:CENT", {0.0, highest}));
    QVERIFY(keepsLimits(session, "FREQ:SPAN", {0.0, highest}));
    QVERIFY(keepsLimits(session, "DISP:TRAC:Y:RLEV", {-130.0, 30.0}));
    QVERIFY(keepsLimits(session, "INP:ATT", {0.0, mostAttenuation}));
    QVERIFY(keepsLimits(session, "BAND:RES", {1.0, widestFilter}));
    QVERIFY(keepsLimits(session, "BAND:VID", {1.0, widestFilter}));
    QVERIFY(keepsLimits(session, "SWE:TIME", {0.001, 16000.0}));
    QFETCH(QByteArray, options);
    QCOMPARE(tell(session, "*OPT?"), options);
}

void TestInstrumentTypes::identityAndOptionsAreTheModels()
{
    BenchModels models;
    const auto identity = [this, &models](BenchFace face) {
        SimulatedInstrument instrument(bench, face, models);
        ScpiSession session(instrument);
        return tell(session, "*IDN?;*OPT?");
    };
    QCOMPARE(identity(BenchFace::GeneratorAndAnalyzer),
             QByteArray("Notchbench,Simulated Bench,0,1.0;B15,B17,B23,B24"));
    QCOMPARE(identity(BenchFace::Analyzer),
             QByteArray("Notchbench,Simulated Analyzer,0,1.0;B15,B17,B23,B24"));
    models.generator = findType(generatorTypes(), "PHD(A)");
    models.analyzer = findType(analyzerTypes(), "ARA");
    models.microwave = findType(microwaveTypes(), "TAU");
    QCOMPARE(identity(BenchFace::GeneratorAndAnalyzer),
             QByteArray("Notchbench,Simulated Bench PHD(A) ARA,0,1.0;B10,B20"));
    QCOMPARE(identity(BenchFace::Generator),
             QByteArray("Notchbench,Simulated Signal Generator PHD(A),0,1.0;B10,B20"));
    QCOMPARE(identity(BenchFace::Analyzer),
             QByteArray("Notchbench,Simulated Analyzer ARA,0,1.0;B4,K5"));
    QCOMPARE(identity(BenchFace::Microwave),
             QByteArray("Notchbench,Simulated Microwave Generator TAU,0,1.0;0"));
}

void TestInstrumentTypes::unknownModelsAreNotFound()
{
    QCOMPARE(findType(generatorTypes(), "TAU"), nullptr);
    QCOMPARE(findType(analyzerTypes(), "ara"), nullptr);
    QCOMPARE(typeNames(generatorTypes()).size(), 10);
    QCOMPARE(typeNames(analyzerTypes()).size(), 9);
    QCOMPARE(typeNames(microwaveTypes()), QStringList({"TAU", "ZUB"}));
}

QTEST_APPLESS_MAIN(TestInstrumentTypes)
#include "test_instrument_types.moc"
