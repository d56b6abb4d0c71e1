// The commands that measure: tables, files, statuses, interruptions; simulated and on instruments.
#include "cli/cli_process.h"
#include "kit/bench_words.h"
#include "kit/file_content.h"
#include "kit/json_object.h"
#include "kit/json_schema.h"
#include "kit/scripted_instrument.h"

#include <QFile>
#include <QtTest>

#include <csignal>
#include <sys/types.h>

namespace {

const QStringList smallSignal{"default",           "--set",     "NPR/FFT Len=8192", "--set",
                              "NPR/NBW/SRate=0.8", "--notches", "3,2e6,-100,0"};
const QStringList rapp{"--simulate", "rapp,saturation=0"};

QStringList measuring(const QStringList& options)
{
    return QStringList{"measure"} + smallSignal + options;
}

QStringList curve(const QStringList& options)
{
    return QStringList{"curve"} + smallSignal + options;
}

// CONFIG's instruments at addresses of their own.
const QStringList instruments{"--set",    "Generator1/IP Addr=127.0.0.2",
                              "--set",    "Analyzer/IP Addr=127.0.0.3",
                              "--settle", "0"};

QStringList schemaErrors(const QByteArray& bytes)
{
    const JsonSchema schema(jsonOf(contentOf(NOTCHBENCH_SOURCE_DIR "/docs/result.schema.json")));
    return schema.errorsIn(jsonOf(bytes));
}

QJsonObject pointOf(const QJsonObject& result, int point)
{
    return result["points"].toArray()[point].toObject();
}

// Those instruments; the analyzer answers every reading alike.
struct MeasuredDevices
{
    explicit MeasuredDevices(const QByteArray& reading)
    {
        generator.answer("*IDN?", "a generator\n");
        analyzer.answer("*IDN?", "an analyzer\n");
        analyzer.answer(acpQuery, reading);
    }

    ScriptedInstrument generator{5025, "127.0.0.2"};
    ScriptedInstrument analyzer{5025, "127.0.0.3"};
};

} // namespace

class TestCliMeasure : public QObject
{
    Q_OBJECT

private slots:
    void init() { cli = std::make_unique<CliProcess>(); }
    void aMeasurementIsATable();
    void everyKindOfResultFitsTheSchema_data();
    void everyKindOfResultFitsTheSchema();
    void theSchemaRefusesWhatIsWrong();
    void aCurveHasItsPeakAndRanges();
    void notchesAreChosenByTheirNumber();
    void aReferenceInAnotherNotchIsTold();
    void averagesTellTheirSeeds();
    void aSignalAloneHasNoPoints();
    void aMissedLimitIsStatusOne();
    void aSignalThatIsNoNoiseIsMarked();
    void standardOutputTakesOneResult();
    void theSameCommandGivesTheSameBytes();
    void aResultIsSubtracted();
    void anotherResultIsNotSubtracted();
    void whatCannotBeSubtractedIsToldBeforeMeasuring();
    void mistakesAreStatusTwo_data();
    void mistakesAreStatusTwo();
    void aConfigurationThatCannotBeMeasuredWithIsStatusTwo_data();
    void aConfigurationThatCannotBeMeasuredWithIsStatusTwo();
    void aFileThatCannotBeWrittenIsStatusThree_data();
    void aFileThatCannotBeWrittenIsStatusThree();
    void aNameThatTheFolderDoesNotTakeIsStatusThree();
    void aPictureThatFindsNoRoomIsStatusThree();
    void theoryStandsBesideTheReading();
    void aPictureNeedsNoDisplay();
    void anInterruptionKeepsWhatWasMeasured_data();
    void anInterruptionKeepsWhatWasMeasured();
    void theoryOfManyLevelsCanBeInterrupted();
    void instrumentsAreMeasuredWith();
    void aNotchBelowZeroHertzIsTold();
    void aLostInstrumentIsStatusFour();
    void aMeasurementWithoutAPointKeepsFormerFiles();
    void withoutInstrumentsItIsStatusFour();

private:
    std::unique_ptr<CliProcess> cli;
};

void TestCliMeasure::aMeasurementIsATable()
{
    const CliRun run = cli->run(measuring(rapp));
    QCOMPARE(run.status, 0);
    QCOMPARE(run.err, QString());
    const QStringList lines = run.out.split('\n', Qt::SkipEmptyParts);
    QCOMPARE(lines.size(), 4);
    QVERIFY(lines[0].contains("NPR/dB") && lines[0].contains("sigma/dB"));
    const QStringList cells = lines[2].simplified().split(' ');
    QCOMPARE(cells.mid(0, 3), (QStringList{"-20.00", "2", "0.000"}));
    QVERIFY(!run.out.contains('\x1b')); // no colour in pipes
}

void TestCliMeasure::everyKindOfResultFitsTheSchema_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::newRow("measure") << measuring(rapp + QStringList{"--limit", "30"});
    QTest::newRow("curve") << curve(rapp + QStringList{"--levels", "-20:0:4", "--threshold", "25",
                                                       "--threshold", "99", "--average", "2"});
    QTest::newRow("below zero") << measuring(
        {"--simulate", "rapp,saturation=-60,noise-floor=-20", "--limit", "10"});
    QTest::newRow("few peaks") << curve({"--simulate", "soft,saturation=0", "--levels", "-9:-8:1"});
    QTest::newRow("not noise-like") << measuring(QStringList{"--set", "NPR/Phase Mode=2"} + rapp);
    QTest::newRow("signal") << (QStringList{"signal"} + smallSignal);
    QTest::newRow("no noise") << (QStringList{"signal"} + smallSignal +
                                  QStringList{"--set", "NPR/Phase Mode=3"});
    QTest::newRow("trim") << (QStringList{"trim"} + smallSignal +
                              QStringList{"--target", "9", "--out", "t.pmc"});
    QTest::newRow("linear") << measuring({"--simulate", "linear"});
}

void TestCliMeasure::everyKindOfResultFitsTheSchema()
{
    QFETCH(QStringList, words);
    const CliRun run = cli->run(words + QStringList{"--json", "-"});
    QVERIFY(run.status == 0 || run.status == 1);
    const QStringList errors = schemaErrors(run.out.toUtf8());
    QVERIFY2(errors.isEmpty(), qPrintable(errors.join('\n')));
}

void TestCliMeasure::theSchemaRefusesWhatIsWrong()
{
    const QByteArray good = cli->run(measuring(rapp + QStringList{"--json", "-"})).out.toUtf8();
    QVERIFY(schemaErrors(good).isEmpty());
    for (const char* wrong : {"\"npr_db\": null, \"x\"", "\"npr_db\": \"1\", \"y\""}) {
        QVERIFY(!schemaErrors(QByteArray(good).replace("\"npr_db\"", wrong)).isEmpty());
    }
    QVERIFY(
        !schemaErrors(QByteArray(good).replace("\"marks\": [\n", "\"marks\": [\"x\"")).isEmpty());
    QVERIFY(!schemaErrors("{}").isEmpty());
}

// 12 bits: 62.71 dB at -10.99 dBm; 0.97 dB more in a band of 80 %.
void TestCliMeasure::aCurveHasItsPeakAndRanges()
{
    const CliRun run = cli->run({"curve", "default", "--notches", "1,1e6,-100,0", "--set",
                                 "NPR/NBW/SRate=1", "--simulate", "adc,bits=12,full-scale=0",
                                 "--levels", "-36:-5:1", "--threshold", "41", "--average", "16",
                                 "--json", cli->path("r.json"), "--csv", cli->path("r.csv")});
    QCOMPARE(run.status, 0);
    QVERIFY2(run.out.contains("  over 41 dB: from/dBm  to/dBm  range/dB\n"), qPrintable(run.out));
    const QJsonObject result = jsonOf(contentOf(cli->path("r.json")));
    const QJsonObject found = result["curves"].toArray()[0].toObject();
    QVERIFY(std::abs(found["peak_npr_db"].toDouble() - 62.71) < 0.5);
    const QJsonObject range = found["ranges"].toArray()[0].toObject();
    QVERIFY(std::abs(range["range_db"].toDouble() - 25.35) < 0.6);
    QCOMPARE(result["points"].toArray().size(), 32);
    QCOMPARE(contentOf(cli->path("r.csv")).count('\n'), 33);
}

void TestCliMeasure::notchesAreChosenByTheirNumber()
{
    const QByteArray json =
        cli->run(measuring(rapp + QStringList{"--notch", "3,1", "--json", "-"})).out.toUtf8();
    const QJsonObject result = jsonOf(json);
    QCOMPARE(result["points"].toArray().size(), 2);
    QCOMPARE(pointOf(result, 0)["notch"].toInt(), 1);
    QCOMPARE(pointOf(result, 1)["notch"].toInt(), 3);
    QVERIFY(pointOf(result, 0)["center_hz"].toDouble() <
            pointOf(result, 1)["center_hz"].toDouble());
}

// Notches of 6 MHz, 10 MHz apart: the channel 7.2 MHz beside one, 4.5 MHz wide, reaches from 4.95
// to 9.45 MHz and leaves 2.05 of 4.5 outside the next: 3.4 dB.
void TestCliMeasure::aReferenceInAnotherNotchIsTold()
{
    const QStringList words{"measure",          "default",    "--set",
                            "NPR/FFT Len=8192", "--simulate", "linear"};
    const CliRun wide = cli->run(words + QStringList{"--notches", "9,6e6,-100,0"});
    QCOMPARE(wide.status, 0);
    QVERIFY2(
        wide.err.contains("warning: the reference channel of notch 1, 2, 3, 4, 5 and 4 more") &&
            wide.err.contains("up to 3.4 dB too low"),
        qPrintable(wide.err));
    QCOMPARE(cli->run(words + QStringList{"--notches", "9,1e6,-100,0"}).err, QString());
}

void TestCliMeasure::averagesTellTheirSeeds()
{
    const QByteArray json = cli->run(measuring(rapp + QStringList{"--average", "3", "--set",
                                                                  "NPR/Seed=7", "--json", "-"}))
                                .out.toUtf8();
    QCOMPARE(jsonOf(json)["signal"].toObject()["seeds"].toArray(), (QJsonArray{7, 8, 9}));
}

void TestCliMeasure::aSignalAloneHasNoPoints()
{
    const QStringList words =
        QStringList{"signal"} + smallSignal +
        QStringList{"--set", "NPR/Seed=7", "--out", cli->path("s"), "--format", "cf32"};
    const CliRun run = cli->run(words + QStringList{"--json", "-"});
    QCOMPARE(run.status, 0);
    const QJsonObject result = jsonOf(run.out.toUtf8()); // and nothing else is printed
    QCOMPARE(result["signal"].toObject()["length"].toInt(), 8192);
    QCOMPARE(result["signal"].toObject()["seeds"].toArray(), QJsonArray{7});
    QVERIFY(result["points"].toArray().isEmpty() && result["curves"].toArray().isEmpty());
    QVERIFY(result["bench"].toObject()["simulated"].isNull());
    QCOMPARE(result["config"].toObject()["NPR"].toObject()["Seed"].toString(), QString("7"));
    // With a file in its place people get their table.
    const CliRun both = cli->run(words + QStringList{"--json", cli->path("s.json")});
    QVERIFY(both.out.contains("crest factor") && both.out.contains("wrote"));
    QCOMPARE(jsonOf(contentOf(cli->path("s.json")))["signal"], result["signal"]);
}

void TestCliMeasure::aMissedLimitIsStatusOne()
{
    QCOMPARE(cli->run(measuring(rapp + QStringList{"--limit", "10"})).status, 0);
    const CliRun missed = cli->run(measuring(rapp + QStringList{"--limit", "90"}));
    QCOMPARE(missed.status, 1);
    QVERIFY(missed.out.contains("FAIL"));
}

void TestCliMeasure::aSignalThatIsNoNoiseIsMarked()
{
    const CliRun run = cli->run(measuring(QStringList{"--set", "NPR/Phase Mode=2"} + rapp));
    QCOMPARE(run.status, 0);
    QVERIFY(run.err.contains("isn't noise-like"));
    QCOMPARE(run.out.count("not-noise-like"), 3);
}

void TestCliMeasure::standardOutputTakesOneResult()
{
    const CliRun csv = cli->run(measuring(rapp + QStringList{"--csv", "-"}));
    QVERIFY(csv.out.startsWith("level_dbm,"));
    QCOMPARE(csv.out.count('\n'), 4);
    const CliRun both = cli->run(measuring(rapp + QStringList{"--csv", "-", "--json", "-"}));
    QCOMPARE(both.status, 2);
}

void TestCliMeasure::theSameCommandGivesTheSameBytes()
{
    const QStringList words = curve(rapp + QStringList{"--levels", "-9:0:3", "--json", "-"});
    QString first = cli->run(words).out;
    QString second = cli->run(words).out;
    const QRegularExpression started("\"started\": \"[^\"]*\"");
    QVERIFY(first.contains(started));
    QCOMPARE(first.remove(started), second.remove(started));
}

void TestCliMeasure::aResultIsSubtracted()
{
    const QString bench = cli->path("bench.json");
    const QStringList levels{"--levels", "-12:-4:4"};
    QCOMPARE(cli->run(curve(levels +
                            QStringList{"--simulate", "linear,noise-floor=-133", "--json", bench}))
                 .status,
             0);
    const QStringList device{"--simulate", "cubic,intercept=20,noise-floor=-133"};
    const QJsonObject plain =
        jsonOf(cli->run(curve(levels + device + QStringList{"--json", "-"})).out.toUtf8());
    const QJsonObject subtracted =
        jsonOf(cli->run(curve(levels + device + QStringList{"--json", "-", "--subtract", bench}))
                   .out.toUtf8());
    const QJsonObject clean = jsonOf(
        cli->run(curve(levels + QStringList{"--simulate", "cubic,intercept=20", "--json", "-"}))
            .out.toUtf8());
    // -4 dBm, where distortion lies above the noise.
    const double npr = pointOf(subtracted, 7)["npr_db"].toDouble();
    QVERIFY(npr > pointOf(plain, 7)["npr_db"].toDouble() + 0.1);
    QVERIFY(std::abs(npr - pointOf(clean, 7)["npr_db"].toDouble()) < 0.1);
    // -12 dBm, where noise is nearly all.
    QCOMPARE(pointOf(subtracted, 1)["marks"].toArray(), QJsonArray{"margin"});
}

void TestCliMeasure::anotherResultIsNotSubtracted()
{
    const QString bench = cli->path("bench.json");
    (void)cli->run(measuring(rapp + QStringList{"--json", bench}));
    const CliRun other =
        cli->run(curve(rapp + QStringList{"--levels", "-12:-4:4", "--subtract", bench}));
    QCOMPARE(other.status, 2);
    QVERIFY2(other.err.contains("--subtract") && other.err.contains("-12 dBm"),
             qPrintable(other.err));
    QFile(bench).resize(20);
    const CliRun broken = cli->run(measuring(rapp + QStringList{"--subtract", bench}));
    QCOMPARE(broken.status, 3);
    QVERIFY(broken.err.contains("is no result"));
}

// No instrument is there, and none is looked for.
void TestCliMeasure::whatCannotBeSubtractedIsToldBeforeMeasuring()
{
    const QString bench = cli->path("bench.json");
    (void)cli->run(measuring(rapp + QStringList{"--json", bench}));
    const CliRun run = cli->run(
        measuring(instruments + QStringList{"--set", "NPR/NBW/SRate=0.7", "--subtract", bench}));
    QCOMPARE(run.status, 2);
    QVERIFY2(run.err.contains("its noise is 8e+07 Hz wide"), qPrintable(run.err));
}

void TestCliMeasure::mistakesAreStatusTwo_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<QString>("says");
    const auto device = [](const char* text) { return measuring({"--simulate", text}); };
    QTest::newRow("device") << device("rap") << "rapp";
    QTest::newRow("key") << device("rapp,saturatoin=3") << "saturation";
    QTest::newRow("other's key") << device("rapp,bits=12") << "bits";
    QTest::newRow("value") << device("adc,bits=99") << "bits takes a whole number";
    QTest::newRow("no value") << device("adc,bits") << "bits";
    QTest::newRow("both scales") << device("adc,full-scale=0,loading=5") << "exclude";
    QTest::newRow("a key twice") << device("soft,saturation=0,saturation=5") << "is given twice";
    QTest::newRow("ripple") << device("soft,ripple=3") << "DB:PERIOD";
    QTest::newRow("notch 4") << measuring(rapp + QStringList{"--notch", "4"}) << "--notch";
    QTest::newRow("no notch") << (QStringList{"measure", "default"} + rapp) << "--notches";
    QTest::newRow("carriers") << measuring(QStringList{"--set", "NPR/Notch/Carrier=1"} + rapp)
                              << "carrier mode";
    QTest::newRow("narrow") << (QStringList{"measure", "default", "--notches", "1,10,-100,0"} +
                                rapp)
                            << "too narrow";
    QTest::newRow("no levels") << curve(rapp) << "--levels";
    QTest::newRow("two numbers") << curve(rapp + QStringList{"--levels", "0:1"}) << "FROM:TO:STEP";
    QTest::newRow("no step") << curve(rapp + QStringList{"--levels", "0:1:0"}) << "step";
    QTest::newRow("average") << measuring(rapp + QStringList{"--average", "0"}) << "--average";
    QTest::newRow("settle") << measuring(rapp + QStringList{"--settle", "-1"}) << "--settle";
    const auto theory = [](const char* text) {
        return measuring(rapp + QStringList{"--theory", text});
    };
    QTest::newRow("no theory") << theory("linear") << "linear makes no distortion";
    QTest::newRow("theory's scale") << theory("adc,bits=8") << "full-scale";
    QTest::newRow("same of nothing") << measuring({"--theory", "same"}) << "--simulate";
    QTest::newRow("plot") << measuring(rapp + QStringList{"--plot", "a.pdf"}) << ".svg";
    QTest::newRow("limit") << measuring(rapp + QStringList{"--limit", "x"}) << "--limit";
    QTest::newRow("one file twice")
        << measuring(rapp + QStringList{"--csv", "a", "--json", "./a"}) << "written twice";
    QTest::newRow("a file that is read")
        << measuring(rapp + QStringList{"--subtract", "a.json", "--json", "b/../a.json"})
        << "is read and would be written over";
}

void TestCliMeasure::mistakesAreStatusTwo()
{
    QFETCH(QStringList, words);
    QFETCH(QString, says);
    const CliRun run = cli->run(words);
    QCOMPARE(run.status, 2);
    QCOMPARE(run.errLines().size(), 1);
    QVERIFY2(run.err.contains(says), qPrintable(run.err));
    QVERIFY(run.out.isEmpty());
}

void TestCliMeasure::aConfigurationThatCannotBeMeasuredWithIsStatusTwo_data()
{
    QTest::addColumn<QByteArray>("config");
    QTest::addColumn<QString>("says");
    const QByteArray row = "[Notch 1]\nfcenter = 0\nfspan = 1e+06\nStart = -5\nStop = 5\n";
    QTest::newRow("no rate") << "[NPR]\nSRate = 0\n" + row << "CONFIG's sample rate is 0 Hz";
    QTest::newRow("negative rate") << "[NPR]\nSRate = -1e+08\n" + row << "rate is -1e+08 Hz";
    QTest::newRow("infinite rate")
        << "[NPR]\nSRate = 1e+999\n" + row << "NPR/SRate takes a number, not 1e+999";
    QTest::newRow("high level") << row + "[Generator1]\nLevel = 1e+09\n"
                                << "CONFIG's level is 1e+09 dBm";
    QTest::newRow("infinite row") << row + "[Notch 2]\nfcenter = -1e+999\n"
                                  << "Notch 2/fcenter takes a number";
}

void TestCliMeasure::aConfigurationThatCannotBeMeasuredWithIsStatusTwo()
{
    QFETCH(QByteArray, config);
    QFETCH(QString, says);
    const CliRun run = cli->run(QStringList{"measure", "-"} + rapp, config);
    QCOMPARE(run.status, 2);
    QVERIFY2(run.errLines().last().contains(says), qPrintable(run.err));
    QCOMPARE(run.out, QString());
}

void TestCliMeasure::aFileThatCannotBeWrittenIsStatusThree_data()
{
    QTest::addColumn<QString>("option");
    QTest::addColumn<QString>("file");
    for (const char* option : {"--csv", "--json"}) {
        QTest::addRow("%s, no folder", option) << option << "/nowhere/at/all";
        QTest::addRow("%s, full", option) << option << "/dev/full";
    }
    QTest::newRow("--plot, no folder") << "--plot"
                                       << "/nowhere/at/all.png";
}

// Before anything is measured.
void TestCliMeasure::aFileThatCannotBeWrittenIsStatusThree()
{
    QFETCH(QString, option);
    QFETCH(QString, file);
    const CliRun run = cli->run(measuring(rapp + QStringList{option, file, "--json", "r.json"}));
    QCOMPARE(run.status, 3);
    QCOMPARE(run.err, "notchbench-cli: can't write " + file +
                          "; is there such a folder, and room on its disk?\n");
    QCOMPARE(run.out, QString());
    QVERIFY(!QFile::exists(cli->path("r.json")));
}

// It shows when the file is to take its place, and then the table is printed all the same.
void TestCliMeasure::aNameThatTheFolderDoesNotTakeIsStatusThree()
{
    const QString name(256, 'n');
    for (const char* option : {"--csv", "--json"}) {
        const CliRun run = cli->run(measuring(rapp + QStringList{option, name}));
        QCOMPARE(run.status, 3);
        QVERIFY(run.err.contains("can't write " + name));
        QVERIFY(run.out.contains("NPR/dB"));
    }
}

// The table is printed all the same: what was measured isn't lost. A limit of 512 or 1024 bytes for
// each file, by the shell, stands for a full disk.
void TestCliMeasure::aPictureThatFindsNoRoomIsStatusThree()
{
    for (const char* picture : {"c.png", "c.svg"}) {
        const QStringList words = measuring(rapp + QStringList{"--plot", picture});
        cli->process.start(
            "sh", QStringList{"-c", "ulimit -f 1; exec \"$0\" \"$@\"", NOTCHBENCH_CLI} + words);
        QVERIFY(cli->process.waitForFinished(240000));
        QCOMPARE(cli->process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(cli->process.exitCode(), 3);
        QVERIFY(cli->process.readAllStandardError().contains(picture));
        QVERIFY(cli->process.readAllStandardOutput().contains("NPR/dB"));
        QVERIFY(!QFile::exists(cli->path(picture)));
    }
}

void TestCliMeasure::theoryStandsBesideTheReading()
{
    const CliRun run =
        cli->run(measuring(rapp + QStringList{"--theory", "same", "--set", "Generator1/Level=-6"}));
    QCOMPARE(run.status, 0);
    const QStringList row = run.out.split('\n')[2].simplified().split(' ');
    const double npr = row[4].toDouble();
    const double sigma = row[5].toDouble();
    const double theory = row[6].toDouble();
    QVERIFY2(std::abs(npr - theory) < 4.0 * sigma, qPrintable(run.out));
    QVERIFY(theory > 24.49 && theory < 25.2); // 24.49 dB for a notch without width
}

void TestCliMeasure::aPictureNeedsNoDisplay()
{
    const QStringList pictures{"--plot", cli->path("c.png"), "--plot", cli->path("c.svg")};
    const CliRun run = cli->run(
        curve(rapp + pictures +
              QStringList{"--levels", "-12:0:2", "--threshold", "25", "--theory", "same"}));
    QCOMPARE(run.status, 0);
    QVERIFY(contentOf(cli->path("c.png")).startsWith("\x89PNG"));
    QVERIFY(contentOf(cli->path("c.svg")).contains("<svg"));
}

void TestCliMeasure::anInterruptionKeepsWhatWasMeasured_data()
{
    QTest::addColumn<int>("signal");
    QTest::addColumn<int>("status");
    QTest::newRow("Ctrl+C") << SIGINT << 130;
    QTest::newRow("SIGTERM") << SIGTERM << 143;
    QTest::newRow("a terminal that closes") << SIGHUP << 129;
}

// A campaign that would take hours; the first file tells that it has begun.
void TestCliMeasure::anInterruptionKeepsWhatWasMeasured()
{
    QFETCH(int, signal);
    QFETCH(int, status);
    MeasuredDevices devices("-40.0,-20.0,-20.0\n");
    const QString file = cli->path("r.json");
    cli->process.start(NOTCHBENCH_CLI,
                       curve(instruments + QStringList{"--levels", "-40:-30:1", "--average",
                                                       "100000", "--json", file}));
    // The third reading is asked for.
    QByteArray received;
    QTRY_VERIFY_WITH_TIMEOUT((received += devices.analyzer.takeReceived()).count("RES? ACP") > 2,
                             20000);
    ::kill(static_cast<pid_t>(cli->process.processId()), signal);
    QVERIFY(cli->process.waitForFinished(20000));
    QCOMPARE(cli->process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(cli->process.exitCode(), status);
    const QByteArray json = contentOf(file);
    QVERIFY(schemaErrors(json).isEmpty());
    QCOMPARE(jsonOf(json)["points"].toArray().size(), 1);
    // CONFIG's -20 dBm is above the highest level.
    QVERIFY(devices.generator.takeReceivedUpTo("POW -30.000000\n*IDN?\n&GTL\n")
                .endsWith("POW -30.000000\n*IDN?\n&GTL\n"));
}

// It would take minutes, and begins when the warning has been told.
void TestCliMeasure::theoryOfManyLevelsCanBeInterrupted()
{
    const QStringList levels{"--levels", "-50:49:0.01", "--theory", "same"};
    cli->process.start(NOTCHBENCH_CLI,
                       curve(rapp + levels + QStringList{"--set", "NPR/Phase Mode=2"}));
    QByteArray err;
    QTRY_VERIFY_WITH_TIMEOUT((err += cli->process.readAllStandardError()).contains("noise-like"),
                             20000);
    ::kill(static_cast<pid_t>(cli->process.processId()), SIGINT);
    QVERIFY(cli->process.waitForFinished(20000));
    QCOMPARE(cli->process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(cli->process.exitCode(), 130);
}

void TestCliMeasure::instrumentsAreMeasuredWith()
{
    MeasuredDevices devices("-40.0,-20.0,-20.0\n");
    const CliRun run = cli->run(measuring(instruments + QStringList{"--json", "-"}));
    QCOMPARE(run.status, 0);
    QVERIFY2(run.err.contains("must already play") && run.err.contains("3 readings, about 7 s"),
             qPrintable(run.err));
    QVERIFY(schemaErrors(run.out.toUtf8()).isEmpty());
    const QJsonObject result = jsonOf(run.out.toUtf8());
    QVERIFY(result["bench"].toObject()["simulated"].isNull());
    QCOMPARE(result["bench"].toObject()["generator"].toString(), QString("a generator"));
    QVERIFY(std::abs(pointOf(result, 0)["npr_db"].toDouble() - 10.0 * std::log10(99.0)) < 1e-9);
    QCOMPARE(pointOf(result, 0)["level_dbm"].toDouble(), -20.0);
}

// Three notches in 80 MHz lie 20 MHz apart; lines are 12.2 kHz apart.
void TestCliMeasure::aNotchBelowZeroHertzIsTold()
{
    const MeasuredDevices devices("-40.0,-20.0,-20.0\n");
    const QStringList at{"--set", "Analyzer/Frequency=1e7"};
    const CliRun low = cli->run(measuring(instruments + at));
    QCOMPARE(low.status, 0);
    QVERIFY2(low.err.contains("warning: notch 1 lies at -99"), qPrintable(low.err));
    const QStringList above{"--set", "Analyzer/Frequency=1e9"};
    QVERIFY(!cli->run(measuring(instruments + above)).err.contains("warning"));
    QVERIFY(!cli->run(measuring(rapp)).err.contains("warning"));
}

void TestCliMeasure::aLostInstrumentIsStatusFour()
{
    const MeasuredDevices devices("-40.0\n");
    const QString file = cli->path("r.json");
    const CliRun run = cli->run(measuring(instruments + QStringList{"--json", file}));
    QCOMPARE(run.status, 4);
    QVERIFY2(run.err.contains("analyzer 127.0.0.3: its answer has fewer than three numbers"),
             qPrintable(run.err));
    QVERIFY(schemaErrors(contentOf(file)).isEmpty());
    QVERIFY(jsonOf(contentOf(file))["points"].toArray().isEmpty());
}

void TestCliMeasure::aMeasurementWithoutAPointKeepsFormerFiles()
{
    const QString json = cli->path("monday.json");
    const QString csv = cli->path("monday.csv");
    const QString plot = cli->path("monday.png");
    const QStringList files{"--json", json, "--csv", csv, "--plot", plot};
    QCOMPARE(cli->run(measuring(rapp + files)).status, 0);
    const QList<QByteArray> monday{contentOf(json), contentOf(csv), contentOf(plot)};

    const MeasuredDevices devices("-40.0\n"); // too few numbers: no reading at all
    const CliRun run = cli->run(measuring(instruments + files));
    QCOMPARE(run.status, 4);
    QVERIFY2(run.err.contains(json + " stays as it was, for nothing was measured"),
             qPrintable(run.err));
    QCOMPARE((QList<QByteArray>{contentOf(json), contentOf(csv), contentOf(plot)}), monday);
}

void TestCliMeasure::withoutInstrumentsItIsStatusFour()
{
    const CliRun run = cli->run(measuring(instruments));
    QCOMPARE(run.status, 4);
    QVERIFY2(run.err.contains("127.0.0.3"), qPrintable(run.err));
}

QTEST_GUILESS_MAIN(TestCliMeasure)
#include "test_cli_measure.moc"
