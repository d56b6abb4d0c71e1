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

void addRows(const QStringList& models)
{
    QTest::addColumn<QString>("model");
    for (const QString& name : models) {
        QTest::newRow(qPrintable(name)) << name;
    }
}

} // namespace

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
