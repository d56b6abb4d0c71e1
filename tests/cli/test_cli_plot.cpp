// Results drawn together, and their points joined.
#include "cli/cli_process.h"
#include "kit/file_content.h"

#include <QFile>
#include <QImage>
#include <QtTest>

#include <sys/stat.h>

class TestCliPlot : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void resultsAreDrawnTogether();
    void oneResultIsDrawnAsByItself();
    void theoryIsThatOfEachDevice();
    void pointsAreJoinedWithTheirName();
    void thresholdsMayBeOthers();
    void standardOutputTakesThePointsAlone();
    void mistakesAreStatusTwo_data();
    void mistakesAreStatusTwo();
    void whatIsNoResultIsStatusThree_data();
    void whatIsNoResultIsStatusThree();
    void aPipeIsNotWaitedFor();

private:
    CliRun curve(const QString& device, const QString& name)
    {
        return cli.run({"curve", "default", "--set", "NPR/FFT Len=4096", "--set",
                        "NPR/NBW/SRate=0.8", "--notches", "2,4e6,-100,0", "--levels", "-12:0:4",
                        "--threshold", "25", "--simulate", device, "--json", cli.path(name)});
    }

    CliProcess cli;
};

void TestCliPlot::initTestCase()
{
    QCOMPARE(curve("rapp,saturation=0", "warm.json").status, 0);
    QCOMPARE(curve("soft,saturation=0", "cold, wet.json").status, 0);
}

void TestCliPlot::resultsAreDrawnTogether()
{
    const CliRun run = cli.run(
        {"plot", "warm.json", "cold, wet.json", "--plot", "both.svg", "--plot", "both.png"});
    QCOMPARE(run.err, QString());
    QCOMPARE(run.status, 0);
    QVERIFY(run.out.contains("warm\n") && run.out.contains("cold, wet\n"));
    QCOMPARE(run.out.count("over 25 dB"), 2); // the threshold of the results
    const QByteArray svg = contentOf(cli.path("both.svg"));
    for (const char* text : {"warm, notch 1", "warm, notch 2", "cold, wet, notch 2",
                             "rapp,saturation=0; soft,saturation=0", "above 25 dB"}) {
        QVERIFY2(svg.contains(text), text);
    }
    QCOMPARE(QImage(cli.path("both.png")).size(), QSize(1600, 1000));
}

// The bytes of the picture that the measurement drew.
void TestCliPlot::oneResultIsDrawnAsByItself()
{
    QCOMPARE(cli.run({"curve", "default", "--notches", "1,4e6,-100,0", "--set", "NPR/FFT Len=4096",
                      "--levels", "-12:0:4", "--threshold", "25", "--theory", "same", "--simulate",
                      "rapp,saturation=0", "--json", "one.json", "--plot", "one.svg"})
                 .status,
             0);
    QCOMPARE(cli.run({"plot", "one.json", "--theory", "same", "--plot", "again.svg"}).status, 0);
    const QByteArray picture = contentOf(cli.path("again.svg"));
    QVERIFY(picture.contains("theory rapp,saturation=0"));
    QCOMPARE(picture, contentOf(cli.path("one.svg")));
}

void TestCliPlot::theoryIsThatOfEachDevice()
{
    QCOMPARE(cli.run({"plot", "warm.json", "cold, wet.json", "--theory", "same", "--plot", "t.svg"})
                 .status,
             0);
    const QByteArray svg = contentOf(cli.path("t.svg"));
    QVERIFY(svg.contains("theory rapp,saturation=0") && svg.contains("theory soft,saturation=0"));
}

void TestCliPlot::pointsAreJoinedWithTheirName()
{
    QCOMPARE(cli.run({"plot", "warm.json", "cold, wet.json", "--csv", "all.csv"}).status, 0);
    const QList<QByteArray> lines = contentOf(cli.path("all.csv")).trimmed().split('\n');
    QCOMPARE(lines.size(), 1 + 2 * 8);
    QVERIFY(lines[0].startsWith("level_dbm,notch,") && lines[0].endsWith(",passed,result"));
    QVERIFY(lines[1].startsWith("-12,1,") && lines[1].endsWith(",warm"));
    QVERIFY(lines[9].startsWith("-12,1,") && lines[9].endsWith(",\"cold, wet\""));
}

void TestCliPlot::thresholdsMayBeOthers()
{
    const CliRun run =
        cli.run({"plot", "warm.json", "--threshold", "20", "--threshold", "30", "--csv", "x.csv"});
    QVERIFY(run.out.contains("over 20 dB") && run.out.contains("over 30 dB"));
    QVERIFY(!run.out.contains("over 25 dB"));
}

void TestCliPlot::standardOutputTakesThePointsAlone()
{
    const CliRun run = cli.run({"plot", "warm.json", "--csv", "-"});
    QVERIFY(run.out.startsWith("level_dbm,"));
    QCOMPARE(run.out.count('\n'), 9);
}

void TestCliPlot::mistakesAreStatusTwo_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<QString>("says");
    QTest::newRow("nothing") << QStringList{"--plot", "a.png"} << "plot needs a result";
    QTest::newRow("no file") << QStringList{"warm.json"} << "--csv FILE";
    QTest::newRow("ending") << QStringList{"warm.json", "--plot", "a.gif"} << ".svg";
    QTest::newRow("threshold") << QStringList{"warm.json", "--csv", "a", "--threshold", "low"}
                               << "--threshold takes";
    QTest::newRow("theory") << QStringList{"warm.json", "--csv", "a", "--theory", "linear"}
                            << "linear makes no distortion";
    QTest::newRow("scale") << QStringList{"warm.json", "--csv", "a", "--theory", "adc,bits=8"}
                           << "full-scale";
}

void TestCliPlot::mistakesAreStatusTwo()
{
    QFETCH(QStringList, words);
    QFETCH(QString, says);
    const CliRun run = cli.run(QStringList{"plot"} + words);
    QCOMPARE(run.status, 2);
    QCOMPARE(run.errLines().size(), 1);
    QVERIFY2(run.err.contains(says), qPrintable(run.err));
}

void TestCliPlot::whatIsNoResultIsStatusThree_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("says");
    QByteArray empty = contentOf(cli.path("warm.json"));
    empty = empty.left(empty.indexOf("\"points\"")) + "\"points\": [], " +
            empty.mid(empty.indexOf("\"program\""));
    QTest::newRow("no JSON") << QByteArray("level_dbm,notch\n")
                             << "it is no result of a measurement";
    QTest::newRow("nothing measured") << empty << "has no points";
}

void TestCliPlot::whatIsNoResultIsStatusThree()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, says);
    putContent(cli.path("bad.json"), bytes);
    const CliRun run = cli.run({"plot", "warm.json", "bad.json", "--csv", "a.csv"});
    QCOMPARE(run.status, 3);
    QVERIFY2(run.err.contains("bad.json") && run.err.contains(says), qPrintable(run.err));
    QVERIFY(!QFile::exists(cli.path("a.csv")));
    for (const char* none : {"none.json", ".", "/dev/zero"}) {
        const CliRun nothing = cli.run({"plot", none, "--csv", "a.csv"});
        QCOMPARE(nothing.status, 3);
        QVERIFY2(nothing.err.contains(QString("can't read result %1: ").arg(none)), none);
    }
    QCOMPARE(cli.run({"plot", "warm.json", "--csv", "no/folder/a.csv"}).status, 3);
}

void TestCliPlot::aPipeIsNotWaitedFor()
{
    QCOMPARE(mkfifo(QFile::encodeName(cli.path("pipe")).constData(), 0600), 0);
    const CliRun run = cli.run({"plot", "pipe", "--csv", "a.csv"});
    QCOMPARE(run.status, 3);
    QVERIFY2(run.err.contains("can't read result pipe: it is no file"), qPrintable(run.err));
}

QTEST_GUILESS_MAIN(TestCliPlot)
#include "test_cli_plot.moc"
