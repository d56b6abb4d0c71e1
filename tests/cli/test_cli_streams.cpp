// Standard input, output and error that are closed, broken or no file.
#include "cli/cli_process.h"
#include "kit/file_content.h"
#include "kit/free_port.h"

#include <QFile>
#include <QTcpSocket>
#include <QtTest>

namespace {

const QStringList measuring{"measure",   "default",      "--set",      "NPR/FFT Len=4096",
                            "--notches", "2,4e6,-100,0", "--simulate", "rapp"};

// Words of the program, with what a shell does to its streams.
CliRun runWith(const char* redirections, const QStringList& words, CliProcess& cli)
{
    const QString script = QStringLiteral("exec \"$0\" \"$@\" ") + redirections;
    return cli.runBy("/bin/sh", QStringList{"-c", script, NOTCHBENCH_CLI} + words);
}

} // namespace

class TestCliStreams : public QObject
{
    Q_OBJECT

private slots:
    void init() { cli = std::make_unique<CliProcess>(); }
    void standardInputThatCannotBeReadIsNoEmptyConfiguration_data();
    void standardInputThatCannotBeReadIsNoEmptyConfiguration();
    void resultsAreWrittenWhateverStreamIsClosed_data();
    void resultsAreWrittenWhateverStreamIsClosed();
    void itServesWithoutAnyStream();
    void aReaderWhoHasGoneEndsNoMeasurement_data();
    void aReaderWhoHasGoneEndsNoMeasurement();
    void aMissedLimitThatCannotBePrintedIsAFailure();

private:
    std::unique_ptr<CliProcess> cli;
};

void TestCliStreams::standardInputThatCannotBeReadIsNoEmptyConfiguration_data()
{
    QTest::addColumn<QString>("redirection");
    QTest::newRow("closed") << "<&-";
    QTest::newRow("a folder") << "</";
}

void TestCliStreams::standardInputThatCannotBeReadIsNoEmptyConfiguration()
{
    QFETCH(QString, redirection);
    const CliRun run =
        runWith(qPrintable(redirection), {"signal", "-", "--set", "NPR/FFT Len=4096"}, *cli);
    QCOMPARE(run.status, 3);
    QCOMPARE(run.out, QString());
    QVERIFY2(
        run.err.startsWith("notchbench-cli: can't read the configuration from standard input: "),
        qPrintable(run.err));
}

void TestCliStreams::resultsAreWrittenWhateverStreamIsClosed_data()
{
    QTest::addColumn<QString>("redirections");
    QTest::addColumn<int>("status"); // 3 where the table can't be printed
    QTest::newRow("input") << "<&-" << 0;
    QTest::newRow("output") << ">&-" << 3;
    QTest::newRow("error") << "2>&-" << 0;
    QTest::newRow("input and output") << "<&- >&-" << 3;
    QTest::newRow("output and error") << ">&- 2>&-" << 3;
    QTest::newRow("all") << "<&- >&- 2>&-" << 3;
}

void TestCliStreams::resultsAreWrittenWhateverStreamIsClosed()
{
    QFETCH(QString, redirections);
    const CliRun run =
        runWith(qPrintable(redirections), measuring + QStringList{"--csv", "points.csv"}, *cli);
    QTEST(run.status, "status");
    QCOMPARE(contentOf(cli->path("points.csv")).count('\n'), 3);
}

// Services start programs so. Neither the port nor the warning may reach what else is open: the
// socket that ends the program, for one.
void TestCliStreams::itServesWithoutAnyStream()
{
    const quint16 port = freePort();
    cli->process.start("/bin/sh", {"-c", "exec \"$0\" \"$@\" <&- >&- 2>&-", NOTCHBENCH_CLI, "serve",
                                   "default", "--port", QString::number(port), "--set",
                                   "NPR/FFT Len=4096", "--set", "NPR/Phase Mode=2"});
    QTcpSocket client;
    QTRY_VERIFY_WITH_TIMEOUT(
        (client.connectToHost(QHostAddress::LocalHost, port), client.waitForConnected(1000)),
        20000);
    QVERIFY(client.waitForReadyRead(10000)); // the greeting
    cli->process.terminate();
    QVERIFY(cli->process.waitForFinished(10000));
    QCOMPARE(cli->process.exitCode(), 3); // it couldn't tell its port
}

void TestCliStreams::aReaderWhoHasGoneEndsNoMeasurement_data()
{
    QTest::addColumn<QString>("redirections");
    QTest::addColumn<QString>("status"); // as by SIGPIPE where it is the table that got lost
    QTest::newRow("of messages") << "2>&1 >table"
                                 << "0\n";
    QTest::newRow("of the points") << ""
                                   << "141\n";
}

// The reader closes the pipe before the program begins. The signal isn't noise-like, which is a
// message before the readings.
void TestCliStreams::aReaderWhoHasGoneEndsNoMeasurement()
{
    QFETCH(QString, redirections);
    const QString script =
        "(while [ ! -e gone ]; do sleep 0.02; done; \"$0\" \"$@\"; echo $? >status) " +
        redirections + " | (exec <&-; touch gone)";
    const QStringList files{"--csv", "-", "--json", "r.json"};
    cli->runBy("/bin/sh", QStringList{"-c", script, NOTCHBENCH_CLI} + measuring +
                              QStringList{"--set", "NPR/Phase Mode=2"} + files);
    QVERIFY(contentOf(cli->path("r.json")).contains("not-noise-like"));
    QTEST(QString(contentOf(cli->path("status"))), "status");
}

void TestCliStreams::aMissedLimitThatCannotBePrintedIsAFailure()
{
    if (!QFile::exists("/dev/full")) {
        QSKIP("the system has no device that is always full");
    }
    const CliRun run = runWith(">/dev/full", measuring + QStringList{"--limit", "200"}, *cli);
    QCOMPARE(run.status, 3);
}

QTEST_GUILESS_MAIN(TestCliStreams)
#include "test_cli_streams.moc"
