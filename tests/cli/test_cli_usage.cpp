// The built program: help, mistakes, the configuration it takes, and how it ends.
#include "cli/cli_process.h"
#include "kit/caught_signals.h"
#include "kit/file_content.h"

#include <QtTest>

#include <csignal>

namespace {

const char oneNotch[] = "[NPR]\nFFT Len = 4096\nNBW/SRate = 0.8\n\n[Notch 1]\nfcenter = 1e+07\n"
                        "fspan = 1e+06\nfstart = 9.5e+06\nfstop = 1.05e+07\nStart = 389\n"
                        "Stop = 430\nNotch Depth = -100\n";

// The third word of a row of the table that begins so.
QString valueOf(const CliRun& run, const QString& row)
{
    for (const QString& line : run.out.split('\n')) {
        if (line.startsWith(row)) {
            return line.mid(row.size()).simplified().section(' ', 0, 0);
        }
    }
    return "no row";
}

} // namespace

class TestCliUsage : public QObject
{
    Q_OBJECT

private slots:
    void init() { cli = std::make_unique<CliProcess>(); }
    void helpNamesEveryCommandAndEveryOption();
    void helpTellsUnitAndDefaultOfADevicesKeys();
    void theExamplesOfTheHelpRunAsTheyStand();
    void versionIsOneLine();
    void mistakesAreOneLineAndStatusTwo_data();
    void mistakesAreOneLineAndStatusTwo();
    void configComesFromAFileOrFromStandardInput();
    void theWaitForStandardInputEndsByASignal();
    void setOverridesALineOfTheConfiguration();
    void aRowOfTheNotchTableCanBeOverridden();
    void ignoredLinesAreNamedWithTheirNumber();
    void notchesAreLaidOutAsInTheWindow();
    void notchesThatFindNoRoomAreTold();
    void whatCannotBeReadIsStatusThree_data();
    void whatCannotBeReadIsStatusThree();
    void aFullDiskOfStandardOutputIsStatusThree();

private:
    std::unique_ptr<CliProcess> cli;
};

void TestCliUsage::helpNamesEveryCommandAndEveryOption()
{
    const CliRun help = cli->run({"--help"});
    QCOMPARE(help.status, 0);
    QCOMPARE(help.err, QString());
    for (const char* command : {"signal", "trim", "measure", "curve", "analyze", "serve"}) {
        QVERIFY(help.out.contains(QString("\n  ") + command + ' '));
        const CliRun own = cli->run({command, "--help"});
        QCOMPARE(own.status, 0);
        QVERIFY(own.out.startsWith(QString("usage: notchbench-cli %1 CONFIG").arg(command)));
        QVERIFY(own.out.contains("--set SECTION/KEY=VALUE"));
        QVERIFY(own.out.contains("--notches COUNT,WIDTH_HZ,DEPTH_DB[,OFFSET_HZ]"));
        for (const QString& line : own.out.split('\n')) {
            QVERIFY2(line.size() <= 80, qPrintable(line));
        }
    }
    QVERIFY(cli->run({"serve", "--help"}).out.contains("--port N"));
}

void TestCliUsage::helpTellsUnitAndDefaultOfADevicesKeys()
{
    for (const char* command : {"measure", "curve", "analyze", "plot"}) {
        const QString help = cli->run({command, "--help"}).out;
        QVERIFY(help.contains("\nDevices are linear, rapp, soft, saleh, cubic, adc.\n"));
        for (const char* key : {"saturation=DBM", "smoothness=P", "intercept=DBM", "bits=N",
                                "full-scale=DBM", "loading=K", "device-noise=DBM_HZ",
                                "noise-floor=DBM_HZ", "source-notch=DB", "ripple=DB:PERIOD_HZ"}) {
            QVERIFY2(help.contains(QString("\n  %1 ").arg(key)), key);
        }
        QVERIFY(help.simplified().contains("give at most this (default 10)."));
        QVERIFY(help.simplified().contains("resolution in bits, 1 to 24 (default 12)."));
    }
    QVERIFY(!cli->run({"trim", "--help"}).out.contains("Devices are"));
}

// As a shell runs them, one after the other in an empty folder.
void TestCliUsage::theExamplesOfTheHelpRunAsTheyStand()
{
    const auto examplesOf = [this](const QStringList& words) {
        const QString help = cli->run(words).out.remove("\\\n");
        const QString examples = help.section(QRegularExpression("Examples?:\n"), 1);
        return examples.section("\n\n", 0, 0).split('\n', Qt::SkipEmptyParts);
    };
    QStringList lines = examplesOf({"--help"});
    QCOMPARE(lines.size(), 3);
    for (const char* command : {"signal", "trim", "measure", "curve"}) {
        lines += examplesOf({command, "--help"});
    }
    QCOMPARE(lines.size(), 7);
    for (const QString& line : lines) {
        const QString command =
            line.trimmed().replace(0, QString("notchbench-cli").size(), "\"" NOTCHBENCH_CLI "\"");
        cli->process.start("sh", {"-c", command});
        QVERIFY(cli->process.waitForFinished(240000));
        QVERIFY2(cli->process.exitCode() == 0, qPrintable(command));
        QCOMPARE(cli->process.readAllStandardError(), QByteArray());
    }
}

void TestCliUsage::versionIsOneLine()
{
    const CliRun run = cli->run({"--version"});
    QCOMPARE(run.status, 0);
    QVERIFY(QRegularExpression("^notchbench-cli \\d+\\.\\d+\\.\\d+\\.\\d+\n$")
                .match(run.out)
                .hasMatch());
}

void TestCliUsage::mistakesAreOneLineAndStatusTwo_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<QString>("text");
    const auto row = [](const char* name, const QStringList& words, const QString& text) {
        QTest::newRow(name) << words << text;
    };
    row("nothing", {}, "no command; notchbench-cli --help lists them");
    row("command", {"single"}, "unknown command single; did you mean signal?");
    row("no config", {"signal"}, "CONFIG is missing: a .cfg file, - or default");
    row("two configs", {"signal", "default", "b.cfg"}, "unexpected argument b.cfg");
    row("option", {"signal", "default", "--seed", "7"},
        "unknown option --seed; did you mean --set?");
    const auto setting = [&row](const char* name, const char* value, const QString& text) {
        row(name, {"signal", "default", "--set", value}, "--set" + text);
    };
    setting("no key", "NPR/Seed", " takes SECTION/KEY=VALUE, such as NPR/Seed=7, not \"NPR/Seed\"");
    setting("key", "NPR/FFT Length=64", ": unknown key NPR/FFT Length; did you mean NPR/FFT Len?");
    setting("section", "NPT/Seed=7", ": unknown key NPT/Seed; did you mean NPR/Seed?");
    setting("row", "Notch 1/fspan=7", ": CONFIG has no [Notch 1]; --notches makes rows");
    setting("number", "NPR/Seed=many", ": NPR/Seed takes a whole number, not \"many\"");
    setting("infinite", "NPR/SRate=inf", ": NPR/SRate takes a number, not \"inf\"");
    setting("real", "NPR/SRate=fast", ": NPR/SRate takes a number, not \"fast\"");
    row("notches", {"signal", "default", "--notches", "9"},
        "--notches takes COUNT,WIDTH_HZ,DEPTH_DB[,OFFSET_HZ], such as 9,1e6,-100, not \"9\"");
    row("count", {"signal", "default", "--notches", "0,1e6,-100"},
        "--notches COUNT takes a whole number from 1 to 999, not \"0\"");
    row("depth", {"signal", "default", "--notches", "9,1e6,60"},
        "--notches DEPTH_DB takes a number from -100 to 0 dB, not \"60\"");
    row("format", {"signal", "default", "--out", "x", "--format", "wave"},
        "--format: unknown format wave; did you mean wav?");
    row("out alone", {"signal", "default", "--out", "x"},
        "--out and --format belong together; formats are text, wav, wv, npy, sigmf, cf32");
    row("trim", {"trim", "default", "--target", "9"}, "trim needs --target DB and --out FILE.pmc");
    row("target", {"trim", "default", "--target", "low", "--out", "x"},
        "--target takes a number from 0.1 to 100 dB, not \"low\"");
    row("port", {"serve", "default", "--port", "65536"},
        "--port takes a whole number from 0 to 65535, not \"65536\"");
}

void TestCliUsage::mistakesAreOneLineAndStatusTwo()
{
    QFETCH(QStringList, words);
    QFETCH(QString, text);
    const CliRun run = cli->run(words);
    QCOMPARE(run.err, "notchbench-cli: " + text + '\n');
    QCOMPARE(run.out, QString());
    QCOMPARE(run.status, 2);
}

void TestCliUsage::configComesFromAFileOrFromStandardInput()
{
    putContent(cli->path("one.cfg"), oneNotch);
    const CliRun fromFile = cli->run({"signal", "one.cfg"});
    QCOMPARE(fromFile.status, 0);
    QCOMPARE(fromFile.err, QString());
    QCOMPARE(valueOf(fromFile, "length"), QString("4096"));
    QCOMPARE(valueOf(fromFile, "notches"), QString("1"));
    QCOMPARE(cli->run({"signal", "-"}, oneNotch).out, fromFile.out);
    QCOMPARE(valueOf(cli->run({"signal", "default"}), "length"), QString("131072"));
}

void TestCliUsage::theWaitForStandardInputEndsByASignal()
{
    cli->process.start(NOTCHBENCH_CLI, {"signal", "-"});
    QVERIFY(cli->process.waitForStarted());
    // The program catches signals by the time that it waits for its input.
    const qint64 process = cli->process.processId();
    QTRY_VERIFY(catches(process, SIGTERM) && catches(process, SIGINT));
    QCOMPARE(kill(pid_t(cli->process.processId()), SIGTERM), 0);
    QVERIFY(cli->process.waitForFinished(10000));
    QCOMPARE(cli->process.exitCode(), 143);
    QCOMPARE(cli->process.readAllStandardError(), QByteArray("notchbench-cli: interrupted\n"));
}

void TestCliUsage::setOverridesALineOfTheConfiguration()
{
    const CliRun run = cli->run({"signal", "-", "--set", "NPR/FFT Len=1024", "--set",
                                 "NPR/NBW/SRate=0.5", "--set=Display/Sinus(x)/x=1", "--set",
                                 "User/I File=/a = 5/b", "--set", "TCP/IP/Port=7"},
                                oneNotch);
    QCOMPARE(run.err, QString());
    QCOMPARE(valueOf(run, "length"), QString("1024"));
    QCOMPARE(valueOf(run, "noise bandwidth"), QString("50000000"));
    const CliRun seeds[] = {cli->run({"signal", "default", "--set", "NPR/Seed=7"}),
                            cli->run({"signal", "default"})};
    QVERIFY(valueOf(seeds[0], "crest factor") != valueOf(seeds[1], "crest factor"));
    // Text needs no quotes, and takes any sign: the file that can't be read is named whole.
    const CliRun missing = cli->run({"signal", "default", "--set", "NPR/Custom=1", "--set",
                                     "User/PhaseMag File=/no = 5/\"such\" file"});
    QCOMPARE(missing.status, 3);
    QVERIFY2(missing.err.contains("/no = 5/\"such\" file"), qPrintable(missing.err));
}

void TestCliUsage::aRowOfTheNotchTableCanBeOverridden()
{
    // A notch over the whole band leaves nothing but what is 100 dB down: another crest factor.
    const CliRun wide = cli->run({"signal", "-", "--set", "Notch 1/Start=-2000"}, oneNotch);
    QCOMPARE(wide.err, QString());
    QVERIFY(valueOf(wide, "crest factor") !=
            valueOf(cli->run({"signal", "-"}, oneNotch), "crest factor"));
    QCOMPARE(cli->run({"signal", "-", "--set", "Notch 1/Strat=1"}, oneNotch).err,
             QString("notchbench-cli: --set: unknown key Notch 1/Strat; did you mean Notch "
                     "1/Start?\n"));
}

void TestCliUsage::ignoredLinesAreNamedWithTheirNumber()
{
    const CliRun run = cli->run({"signal", "-"}, "# mine\n[NPR]\nFFT Len = 1024\nSpeed = 3\n");
    QCOMPARE(run.status, 0);
    QCOMPARE(run.errLines().size(), 2);
    QVERIFY(
        run.errLines().at(0).startsWith("notchbench-cli: warning: standard input:1: ignored: "));
    QCOMPARE(run.errLines().at(1), QString("notchbench-cli: warning: standard input:4: ignored: "
                                           "[NPR] has no key \"Speed\""));
}

void TestCliUsage::notchesAreLaidOutAsInTheWindow()
{
    const CliRun run = cli->run({"signal", "-", "--notches", "9,1e6,-100,0"}, oneNotch);
    QCOMPARE(run.err, QString());
    QCOMPARE(valueOf(run, "notches"), QString("9")); // in place of CONFIG's
}

// The offset of the defaults is 10 MHz: the ninth of nine notches over 100 MHz would lie on the
// upper edge.
void TestCliUsage::notchesThatFindNoRoomAreTold()
{
    const CliRun run = cli->run({"signal", "default", "--notches", "9,1e6,-100"});
    QCOMPARE(run.status, 0);
    QCOMPARE(run.err, QString("notchbench-cli: warning: --notches: only 8 of 9 rows were made; no "
                              "more of this width fit the noise band at an offset of 1e+07 Hz\n"));
    QCOMPARE(valueOf(run, "notches"), QString("8"));
    const CliRun narrow = cli->run({"signal", "default", "--notches", "20,1e7,-100,0"});
    QVERIFY(narrow.err.contains("only 9 of 20 rows were made"));
}

void TestCliUsage::whatCannotBeReadIsStatusThree_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<QString>("text");
    const auto row = [](const char* name, const QStringList& words, const QString& text) {
        QTest::newRow(name) << words << text;
    };
    row("missing", {"none.cfg"}, "can't read configuration none.cfg: there is no such file");
    row("folder", {"."}, "can't read configuration .: it is no file; - reads standard input");
    row("spectrum", {"default", "--set", "NPR/Custom=1", "--set", "User/PhaseMag File=x.pmc"},
        "can't read a signal from \"PhaseMag File\" x.pmc");
    row("samples", {"default", "--set", "NPR/Custom=2", "--set", "User/I File=i.wav"},
        "can't read a signal from \"I File\" i.wav and \"Q File\" ; they must be of the same size");
    row("law", {"default", "--set", "NPR/Phase Mode=9"},
        "no signal can be made: check \"NPR/FFT Len\" (131072), \"NPR/Phase Mode\" (9) and "
        "\"NPR/Custom\" (0)");
    row("too long", {"default", "--set", "NPR/FFT Len=1073741824"},
        "no signal can be made: check \"NPR/FFT Len\" (1073741824), \"NPR/Phase Mode\" (0) and "
        "\"NPR/Custom\" (0)");
    row("write", {"default", "--out", "no/such/folder", "--format", "wv"},
        "can't write no/such/folder.wv; is there such a folder, and room on its disk?");
}

void TestCliUsage::whatCannotBeReadIsStatusThree()
{
    QFETCH(QStringList, words);
    QFETCH(QString, text);
    const CliRun run = cli->run(QStringList{"signal"} + words);
    QCOMPARE(run.err, "notchbench-cli: " + text + '\n');
    QCOMPARE(run.status, 3);
}

void TestCliUsage::aFullDiskOfStandardOutputIsStatusThree()
{
    cli->process.setStandardOutputFile("/dev/full");
    const CliRun run = cli->run({"signal", "default"});
    QCOMPARE(run.err, QString("notchbench-cli: standard output can't be written; is its disk "
                              "full?\n"));
    QCOMPARE(run.status, 3);
}

QTEST_GUILESS_MAIN(TestCliUsage)
#include "test_cli_usage.moc"
