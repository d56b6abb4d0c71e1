// "analyze" of the built program: recordings that "signal" writes, and those of converters.
#include "cli/cli_process.h"
#include "kit/file_content.h"
#include "kit/json_object.h"
#include "kit/json_schema.h"

#include <QFile>
#include <QtEndian>
#include <QtTest>

#include <algorithm>
#include <cmath>
#include <complex>

#ifdef Q_OS_UNIX
#include <sys/resource.h>
#endif

namespace {

const QStringList config{"default", "--notches", "3,1e6,-100,0"};

// Of every point.
QVector<double> numbersOf(const QJsonObject& result, const char* member)
{
    QVector<double> numbers;
    for (const QJsonValue point : result["points"].toArray()) {
        numbers << point.toObject()[member].toDouble();
    }
    return numbers;
}

qint64 bytesReadBy(qint64 process)
{
    QFile file(QStringLiteral("/proc/%1/io").arg(process));
    const QByteArray first = file.open(QIODevice::ReadOnly) ? file.readLine() : QByteArray();
    return first.mid(int(sizeof("rchar:"))).trimmed().toLongLong();
}

} // namespace

class TestCliAnalyze : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void everyFormThatSignalWritesReadsBack_data();
    void everyFormThatSignalWritesReadsBack();
    void aConverterDrawsItsCurveOverItsOwnLevel();
    void levelsThatAreGivenAreTheAxis();
    void theoryStandsBesideAConvertersReadings();
    void resultsInDbfsAreDrawnWithAConvertersTheory();
    void theoryOfAConverterIsThatOfCONFIGsRate();
    void aChosenNotchIsReadAlone();
    void whatFillsTheNotchesWithoutTheDeviceIsSubtracted();
    void frequenciesOfRecordingAndCONFIGTellWhereTheCarrierLies_data();
    void frequenciesOfRecordingAndCONFIGTellWhereTheCarrierLies();
    void frequenciesTooFarApartAreTold();
    void clippedRecordingsAreToldAndMarked();
    void aMissedLimitIsTheStatus();
    void wrongUsageIsToldBeforeAnythingIsRead_data();
    void wrongUsageIsToldBeforeAnythingIsRead();
    void filesThatCantBeReadAreTold_data();
    void filesThatCantBeReadAreTold();
    void aRecordingThatCantBeReadIsLeftOut();
    void whatCameBeforeAMistakeIsKept();
    void whatCameBeforeAnInterruptionIsKept_data();
    void whatCameBeforeAnInterruptionIsKept();
    void resultsInOtherUnitsAreNotDrawnTogether();
    void gigabytesTakeLittleMemoryAndCanBeLeft();

private:
    CliRun analyze(const QStringList& words)
    {
        return cli.run(QStringList{"analyze"} + config + words);
    }
    QString quantised(const QString& name, double k) const;
    void writeShifted(const QString& base, int lines, const QByteArray& capture) const;

    CliProcess cli;
};

void TestCliAnalyze::initTestCase()
{
    const CliRun run = cli.run(QStringList{"signal"} + config +
                               QStringList{"--out", "noise", "--format", "cf32", "--format", "npy",
                                           "--format", "sigmf", "--format", "wav"});
    QCOMPARE(run.status, 0);
}

// The signal through two converters of 8 bits whose full scale is k times the rms of a component;
// its mean power is 0.97, for three of a hundred lines are notches.
QString TestCliAnalyze::quantised(const QString& name, double k) const
{
    const QByteArray floats = contentOf(cli.path("noise.cf32"));
    QByteArray codes;
    for (int at = 0; at < floats.size(); at += 4) {
        const double value = qFromLittleEndian<float>(floats.constData() + at);
        const double code = std::floor(value * 128.0 / (k * std::sqrt(0.97 / 2.0)) + 0.5);
        codes += static_cast<char>(std::min(std::max(code, -128.0), 127.0));
    }
    putContent(cli.path(name), codes);
    return name;
}

// The signal so many of its lines higher, as a SigMF recording of a capture.
void TestCliAnalyze::writeShifted(const QString& base, int lines, const QByteArray& capture) const
{
    const QByteArray floats = contentOf(cli.path("noise.cf32"));
    const qint64 samples = floats.size() / 8;
    QByteArray data(floats.size(), '\0');
    for (qint64 k = 0; k < samples; ++k) {
        const std::complex<double> value(qFromLittleEndian<float>(floats.constData() + 8 * k),
                                         qFromLittleEndian<float>(floats.constData() + 8 * k + 4));
        const double turns =
            static_cast<double>(lines * k % samples) / static_cast<double>(samples);
        const std::complex<double> turned = value * std::polar(1.0, 2.0 * M_PI * turns);
        qToLittleEndian(static_cast<float>(turned.real()), data.data() + 8 * k);
        qToLittleEndian(static_cast<float>(turned.imag()), data.data() + 8 * k + 4);
    }
    putContent(cli.path(base + ".sigmf-data"), data);
    putContent(cli.path(base + ".sigmf-meta"),
               R"({"global":{"core:datatype":"cf32_le","core:version":"1.0.0",)"
               R"("core:sample_rate":1e8},"captures":[{"core:sample_start":0)" +
                   capture + "}]}");
}

void TestCliAnalyze::everyFormThatSignalWritesReadsBack_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<double>("least");
    QTest::addColumn<double>("most");
    // Single precision rounds 50 dB below the notches; 16 bits at a quarter of their range don't.
    QTest::newRow("raw") << QStringList{"noise.cf32", "--rate", "1e8"} << 99.9 << 100.1;
    QTest::newRow("npy") << QStringList{"noise.npy", "--rate", "1e8"} << 99.9 << 100.1;
    QTest::newRow("sigmf") << QStringList{"noise.sigmf-meta"} << 99.9 << 100.1;
    QTest::newRow("wav") << QStringList{"noise.q.wav"} << 60.0 << 75.0;
    QTest::newRow("beside the lines")
        << QStringList{"noise.npy", "--rate", "1e8", "--skip", "1e-6"} << 99.0 << 101.0;
}

void TestCliAnalyze::everyFormThatSignalWritesReadsBack()
{
    QFETCH(QStringList, words);
    QFETCH(double, least);
    QFETCH(double, most);
    const CliRun run = analyze(words + QStringList{"--json", "-"});
    QVERIFY2(run.status == 0 && run.err.isEmpty(), qPrintable(run.err));
    const QJsonObject result = jsonOf(run.out.toUtf8());
    const QJsonObject schema = jsonOf(contentOf(NOTCHBENCH_SOURCE_DIR "/docs/result.schema.json"));
    QCOMPARE(JsonSchema(schema).errorsIn(result), QStringList());
    QCOMPARE(result["level_unit"].toString(), QString("dBFS"));
    const QVector<double> ratios = numbersOf(result, "npr_db");
    QCOMPARE(ratios.size(), 3);
    for (const double npr : ratios) {
        QVERIFY2(npr > least && npr < most, qPrintable(QString::number(npr)));
    }
    const QJsonObject facts = result["recordings"].toArray().at(0).toObject();
    const bool isWhole = !words.contains("--skip");
    QCOMPARE(facts["way"].toString(), QString(isWhole ? "whole-periods" : "averaged-periodograms"));
    QCOMPARE(facts["inverted"], QJsonValue(false));
}

// 8 bits: 40.60 dB at k = 3.92, which is 3.01 - 20 lg 3.92 = -8.86 dBFS.
void TestCliAnalyze::aConverterDrawsItsCurveOverItsOwnLevel()
{
    QStringList files;
    for (const double k : {3.0, 3.5, 4.0, 4.5, 6.0, 8.0}) {
        files << quantised(QString("k%1.ci8").arg(k), k);
    }
    const CliRun run = analyze(files + QStringList{"--rate", "1e8", "--threshold", "38", "--json",
                                                   "curve.json", "--csv", "curve.csv"});
    QVERIFY2(run.status == 0, qPrintable(run.err));
    QVERIFY(run.out.contains("level/dBFS") && run.out.contains("whole periods"));
    QVERIFY(contentOf(cli.path("curve.csv")).startsWith("level_dbfs,notch,"));
    const QJsonObject result = jsonOf(contentOf(cli.path("curve.json")));
    QCOMPARE(numbersOf(result, "npr_db").size(), 18);
    for (const QJsonValue value : result["curves"].toArray()) {
        const QJsonObject curve = value.toObject();
        QVERIFY2(std::abs(curve["peak_npr_db"].toDouble() - 40.6) < 0.7, qPrintable(run.out));
        QVERIFY2(std::abs(curve["peak_level_dbfs"].toDouble() + 8.86) < 0.8, qPrintable(run.out));
        // Rounding alone falls by 1 dB a dB: 2.6 dB below the peak's 41.6 without clipping.
        const QJsonObject range = curve["ranges"].toArray().at(0).toObject();
        QVERIFY(range["from_dbfs"].toDouble() < -11.0 && range["to_dbfs"].toDouble() > -8.0);
    }
}

void TestCliAnalyze::levelsThatAreGivenAreTheAxis()
{
    const CliRun run = analyze({quantised("one.ci8", 8.0), quantised("two.ci8", 4.0), "--rate",
                                "1e8", "--level", "-20", "--level=-14", "--json", "-"});
    QVERIFY2(run.status == 0, qPrintable(run.err));
    const QJsonObject result = jsonOf(run.out.toUtf8());
    QCOMPARE(result["level_unit"].toString(), QString("dBm"));
    QCOMPARE(numbersOf(result, "level_dbm"), (QVector<double>{-20, -20, -20, -14, -14, -14}));
    QVERIFY(result["points"].toArray().at(0).toObject()["power_dbm"].isNull());
}

// 8 bits, full scale of 8 times the rms of a component: nothing clips, and rounding leaves
// 10 lg(3 4^8 / 64) = 34.87 dB, with 0.13 dB more for 97 of 100 lines have all of the power.
void TestCliAnalyze::theoryStandsBesideAConvertersReadings()
{
    const QString file = quantised("theory.ci8", 8.0);
    const QStringList words{file, "--rate", "1e8"};
    const CliRun overLoading = analyze(words + QStringList{"--theory", "adc,bits=8"});
    QVERIFY2(overLoading.status == 0, qPrintable(overLoading.err));
    QVERIFY2(overLoading.out.contains("theory/dB"), qPrintable(overLoading.out));
    QCOMPARE(overLoading.out.count(" 35.00 ") + overLoading.out.count(" 35.01 "), 3);
    // The same where the level in dBm of the generator is 10 dB above its -15.05 dBFS.
    const CliRun overDrive =
        analyze(words + QStringList{"--level=-5.05", "--theory", "adc,bits=8,full-scale=10"});
    QVERIFY2(overDrive.status == 0, qPrintable(overDrive.err));
    QCOMPARE(overDrive.out.count(" 35.00 ") + overDrive.out.count(" 35.01 "), 3);
}

// 0 dBFS is full scale; what drove another device isn't known.
void TestCliAnalyze::resultsInDbfsAreDrawnWithAConvertersTheory()
{
    const QString file = quantised("drawn.ci8", 8.0);
    QCOMPARE(analyze({file, "--rate", "1e8", "--json", "drawn.json"}).status, 0);
    const QStringList plot{"plot", "drawn.json", "--plot", "drawn.svg", "--theory"};
    const CliRun converter = cli.run(plot + QStringList{"adc,bits=8"});
    QVERIFY2(converter.status == 0, qPrintable(converter.err));
    QVERIFY(contentOf(cli.path("drawn.svg")).contains("theory adc,bits=8"));
    const CliRun amplifier = cli.run(plot + QStringList{"rapp,saturation=0"});
    QCOMPARE(amplifier.status, 2);
    QVERIFY2(amplifier.err.contains("needs levels in dBm"), qPrintable(amplifier.err));
}

void TestCliAnalyze::theoryOfAConverterIsThatOfCONFIGsRate()
{
    const QString file = quantised("faster.ci8", 8.0);
    const QStringList theory{"--theory", "adc,bits=8", "--rate"};
    const CliRun faster = analyze(QStringList(file) + theory + QStringList("1.1e8"));
    QCOMPARE(faster.status, 2);
    QVERIFY2(faster.err.contains("faster.ci8 has 1.1e+08 Hz"), qPrintable(faster.err));
    const CliRun real = analyze(QStringList(file) + theory + QStringList{"1e8", "--type", "ri16"});
    QCOMPARE(real.status, 2);
    QVERIFY2(real.err.contains("faster.ci8 holds real samples"), qPrintable(real.err));
}

void TestCliAnalyze::aChosenNotchIsReadAlone()
{
    const QStringList words{quantised("chosen.ci8", 8.0), "--rate", "1e8", "--json", "-"};
    const QVector<double> all = numbersOf(jsonOf(analyze(words).out.toUtf8()), "npr_db");
    const QJsonObject chosen = jsonOf(analyze(words + QStringList{"--notch", "3,1"}).out.toUtf8());
    QCOMPARE(numbersOf(chosen, "notch"), (QVector<double>{1, 3}));
    QCOMPARE(numbersOf(chosen, "npr_db"), (QVector<double>{all.at(0), all.at(2)}));
    const CliRun none = analyze(words + QStringList{"--notch", "4"});
    QCOMPARE(none.status, 2);
    QVERIFY2(none.err.contains("--notch"), qPrintable(none.err));
}

void TestCliAnalyze::whatFillsTheNotchesWithoutTheDeviceIsSubtracted()
{
    const QStringList bench{quantised("bench.ci8", 4.5), "--rate", "1e8", "--level", "-10"};
    const QStringList device{quantised("device.ci8", 9.0), "--rate", "1e8", "--level", "-10"};
    const CliRun before = analyze(bench + QStringList{"--json", "bench.json"});
    QVERIFY2(before.status == 0, qPrintable(before.err));
    const QVector<double> without = numbersOf(jsonOf(contentOf(cli.path("bench.json"))), "npr_db");
    const QStringList toJson{"--json", "-"};
    const QVector<double> with = numbersOf(jsonOf(analyze(device + toJson).out.toUtf8()), "npr_db");
    const CliRun run = analyze(device + toJson + QStringList{"--subtract", "bench.json"});
    QVERIFY2(run.status == 0, qPrintable(run.err));
    const QVector<double> left = numbersOf(jsonOf(run.out.toUtf8()), "npr_db");
    QCOMPARE(left.size(), 3);
    for (int k = 0; k < left.size(); ++k) {
        const double share =
            std::pow(10.0, -0.1 * with.at(k)) - std::pow(10.0, -0.1 * without.at(k));
        QVERIFY(left.at(k) > with.at(k) + 0.5);
        QVERIFY2(std::abs(left.at(k) + 10.0 * std::log10(share)) < 1e-6,
                 qPrintable(QString::number(left.at(k))));
    }
    const CliRun elsewhere =
        analyze({"device.ci8", "--rate", "1e8", "--level", "-9", "--subtract", "bench.json"});
    QCOMPARE(elsewhere.status, 2);
    QVERIFY2(elsewhere.err.contains("no point at -9 dBm"), qPrintable(elsewhere.err));
}

void TestCliAnalyze::frequenciesOfRecordingAndCONFIGTellWhereTheCarrierLies_data()
{
    QTest::addColumn<QByteArray>("capture");
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<double>("center"); // Hz, where the carrier is looked for
    const QStringList carrier{"--set", "Generator1/Frequency=2.4e9"};
    const QStringList none{"--set", "Generator1/Frequency=0"};
    const QByteArray lower = R"(,"core:frequency":2396875000)"; // 4096 lines, 3.125 MHz
    QTest::newRow("both tell it") << lower << carrier << 3.125e6;
    QTest::newRow("--center counts")
        << lower << carrier + QStringList{"--center", "3.125e6"} << 3.125e6;
    QTest::newRow("--center counts more") << lower << carrier + QStringList{"--center", "0"} << 0.0;
    QTest::newRow("no carrier in CONFIG") << lower << none << 0.0;
    QTest::newRow("none in the recording") << QByteArray() << carrier << 0.0;
    QTest::newRow("baseband") << QByteArray(R"(,"core:frequency":0)") << carrier << 0.0;
}

// The signal lies 3.125 MHz above the middle: looked for elsewhere, its notches are full.
void TestCliAnalyze::frequenciesOfRecordingAndCONFIGTellWhereTheCarrierLies()
{
    QFETCH(QByteArray, capture);
    QFETCH(QStringList, words);
    QFETCH(double, center);
    writeShifted("carried", 4096, capture);
    const CliRun run = analyze(QStringList{"carried.sigmf-meta", "--json", "-"} + words);
    QVERIFY2(run.status == 0, qPrintable(run.err));
    const QJsonObject result = jsonOf(run.out.toUtf8());
    const QJsonObject facts = result["recordings"].toArray().at(0).toObject();
    QCOMPARE(facts["center_hz"].toDouble(), center);
    for (const QJsonValue point : result["points"].toArray()) {
        const double npr = point.toObject()["npr_db"].toDouble(); // 0 for one that is below zero
        QVERIFY2(center == 0.0 ? npr < 10.0 : npr > 99.0, qPrintable(run.out));
    }
}

void TestCliAnalyze::frequenciesTooFarApartAreTold()
{
    writeShifted("elsewhere", 0, R"(,"core:frequency":5.8e9)");
    const CliRun run = analyze({"elsewhere.sigmf-meta", "--set", "Generator1/Frequency=2.4e9"});
    QCOMPARE(run.status, 3);
    QVERIFY2(run.err.contains("with the carrier at -3.4e+09 Hz"), qPrintable(run.err));
}

void TestCliAnalyze::clippedRecordingsAreToldAndMarked()
{
    const CliRun run = analyze({quantised("clipped.ci8", 2.0), "--rate", "1e8"});
    QCOMPARE(run.status, 0);
    QVERIFY2(run.err.contains("clipped.ci8 is clipped: 4."), qPrintable(run.err));
    QCOMPARE(run.out.count(" clipped\n"), 3);
}

void TestCliAnalyze::aMissedLimitIsTheStatus()
{
    const QString file = quantised("limit.ci8", 4.0);
    QCOMPARE(analyze({file, "--rate", "1e8", "--limit", "30"}).status, 0);
    QCOMPARE(analyze({file, "--rate", "1e8", "--limit", "60"}).status, 1);
}

void TestCliAnalyze::wrongUsageIsToldBeforeAnythingIsRead_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<QString>("message");
    QTest::newRow("no recording") << QStringList{} << "needs a recording";
    QTest::newRow("no rate") << QStringList{"noise.npy"} << "--rate";
    QTest::newRow("type") << QStringList{"noise.cf32", "--type", "cf16"} << "cf32|cf64";
    QTest::newRow("theory of a device without levels")
        << QStringList{"noise.cf32", "--rate", "1e8", "--theory", "rapp"} << "--level";
    QTest::newRow("subtraction without levels")
        << QStringList{"noise.cf32", "--rate", "1e8", "--subtract", "nothing.json"} << "--level";
    QTest::newRow("levels") << QStringList{"a", "b", "--level", "3"} << "once for each";
}

void TestCliAnalyze::wrongUsageIsToldBeforeAnythingIsRead()
{
    QFETCH(QStringList, words);
    QFETCH(QString, message);
    const CliRun run = analyze(words);
    QCOMPARE(run.status, 2);
    QVERIFY2(run.err.contains(message), qPrintable(run.err));
    QCOMPARE(run.errLines().size(), 1);
}

void TestCliAnalyze::filesThatCantBeReadAreTold_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<QString>("message");
    QTest::newRow("missing") << QStringList{"nothing.npy"} << "no such file";
    QTest::newRow("a folder") << QStringList{"."} << "folder";
    QTest::newRow("unknown") << QStringList{"noise.q"} << "--type";
    QTest::newRow("too slow") << QStringList{"noise.npy", "--rate", "1e6"} << "none of";
    QTest::newRow("elsewhere") << QStringList{"noise.cf32", "--rate", "1e8", "--center", "9e8"}
                               << "--center";
    QTest::newRow("skipped") << QStringList{"noise.cf32", "--rate", "1e8", "--skip", "1"}
                             << "skipped";
}

void TestCliAnalyze::filesThatCantBeReadAreTold()
{
    QFETCH(QStringList, words);
    QFETCH(QString, message);
    putContent(cli.path("noise.q"), "");
    const CliRun run = analyze(words);
    QVERIFY2(run.status == 3, qPrintable(run.err));
    QVERIFY2(run.errLines().last().contains(message), qPrintable(run.err));
}

// One of 8 bits that is missing, one that is empty, and one at a rate with no notch in it.
void TestCliAnalyze::aRecordingThatCantBeReadIsLeftOut()
{
    const QString good = quantised("good.ci8", 4.0);
    putContent(cli.path("empty.ci8"), "");
    const CliRun run = analyze({"missing.ci8", good, "empty.ci8", good, "--rate", "1e8", "--level",
                                "-9", "--level=-8", "--level=-7", "--level=-6", "--limit", "99",
                                "--json", "kept.json", "--csv", "kept.csv"});
    QCOMPARE(run.status, 3);
    QCOMPARE(run.errLines().size(), 2);
    QVERIFY2(run.errLines().constFirst().contains("missing.ci8: there is no such file; it is left"),
             qPrintable(run.err));
    QVERIFY2(run.errLines().constLast().contains("empty.ci8 holds no sample; it is left out"),
             qPrintable(run.err));
    QVERIFY2(run.out.contains("peak/dB"), qPrintable(run.out));
    const QJsonObject result = jsonOf(contentOf(cli.path("kept.json")));
    QCOMPARE(numbersOf(result, "level_dbm"), (QVector<double>{-8, -8, -8, -6, -6, -6}));
    QCOMPARE(numbersOf(result, "recording"), (QVector<double>{0, 0, 0, 1, 1, 1}));
    QCOMPARE(result["recordings"].toArray().size(), 2);
    QCOMPARE(contentOf(cli.path("kept.csv")).count('\n'), 7);
}

// The second recording doesn't tell its rate; the third one isn't read.
void TestCliAnalyze::whatCameBeforeAMistakeIsKept()
{
    const CliRun run =
        analyze({"noise.sigmf-meta", "noise.npy", "noise.sigmf-meta", "--json", "before.json"});
    QCOMPARE(run.status, 2);
    QCOMPARE(run.errLines().size(), 1);
    QVERIFY2(run.err.contains("noise.npy doesn't tell its sample rate"), qPrintable(run.err));
    const QJsonObject result = jsonOf(contentOf(cli.path("before.json")));
    QCOMPARE(numbersOf(result, "recording"), (QVector<double>{0, 0, 0}));
}

void TestCliAnalyze::whatCameBeforeAnInterruptionIsKept_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::newRow("alone") << QStringList{};
    QTest::newRow("with theory") << QStringList{"--theory", "adc,bits=12"};
}

// The second recording is the signal and a hole, long enough to be caught in.
void TestCliAnalyze::whatCameBeforeAnInterruptionIsKept()
{
#ifdef Q_OS_UNIX
    QFETCH(QStringList, words);
    QFile file(cli.path("hole.cf32"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(file.write(contentOf(cli.path("noise.cf32"))) > 0);
    QVERIFY(file.resize(qint64{5} << 30));
    file.close();
    QFile::remove(cli.path("left.json"));
    cli.process.start(NOTCHBENCH_CLI, QStringList{"analyze"} + config +
                                          QStringList{"noise.cf32", "hole.cf32", "--rate", "1e8",
                                                      "--json", "left.json"} +
                                          words);
    // The first one takes less than half of that. A sanitizer is slow to a piece's end.
    QTRY_VERIFY_WITH_TIMEOUT(bytesReadBy(cli.process.processId()) > 3000000, 60000);
    cli.process.terminate();
    QVERIFY(cli.process.waitForFinished(120000));
    QVERIFY(file.remove());
    QCOMPARE(cli.process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(cli.process.exitCode(), 143);
    QVERIFY(cli.process.readAllStandardOutput().contains("NPR/dB"));
    const QJsonObject result = jsonOf(contentOf(cli.path("left.json")));
    QCOMPARE(numbersOf(result, "notch"), (QVector<double>{1, 2, 3}));
    QCOMPARE(result["recordings"].toArray().size(), 1);
#endif
}

void TestCliAnalyze::resultsInOtherUnitsAreNotDrawnTogether()
{
    const QString file = quantised("units.ci8", 4.0);
    QCOMPARE(analyze({file, "--rate", "1e8", "--json", "dbfs.json"}).status, 0);
    QCOMPARE(analyze({file, "--rate", "1e8", "--level", "-3", "--json", "dbm.json"}).status, 0);
    const CliRun run = cli.run({"plot", "dbfs.json", "dbm.json", "--csv", "both.csv"});
    QCOMPARE(run.status, 2);
    QVERIFY2(run.err.contains("dbm.json has its levels in dBm"), qPrintable(run.err));
    QCOMPARE(cli.run({"plot", "dbfs.json", "dbfs.json", "--csv", "both.csv"}).status, 0);
    QVERIFY(contentOf(cli.path("both.csv")).contains("distortion_npr_db,result\n"));
}

// Of which the signal is the beginning, and a hole is the rest.
void TestCliAnalyze::gigabytesTakeLittleMemoryAndCanBeLeft()
{
#if defined(Q_OS_UNIX) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    const QString path = cli.path("long.cf64");
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QVERIFY(file.write(contentOf(cli.path("noise.cf32"))) > 0);
        QVERIFY(file.resize(qint64{5} << 30));
    }
    // The beginning are pairs of floats and not doubles: anything that is no zero will do.
    const QStringList words{path, "--rate", "1e8", "--quiet"};
    cli.process.start(NOTCHBENCH_CLI, QStringList{"analyze"} + config + words);
    QTRY_VERIFY_WITH_TIMEOUT(bytesReadBy(cli.process.processId()) > 100000000, 60000);
    cli.process.terminate();
    QVERIFY(cli.process.waitForFinished(30000));
    QCOMPARE(cli.process.exitCode(), 143);
    const CliRun run = analyze(words);
    QFile::remove(path);
    QVERIFY2(run.status == 0, qPrintable(run.err));
    rusage usage{};
    QCOMPARE(getrusage(RUSAGE_CHILDREN, &usage), 0);
    QVERIFY2(usage.ru_maxrss < 300 * 1024L, qPrintable(QString::number(usage.ru_maxrss)));
#endif
}

QTEST_GUILESS_MAIN(TestCliAnalyze)
#include "test_cli_analyze.moc"
