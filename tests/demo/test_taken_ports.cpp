// A stranger on one of the ports that a demonstration needs is noticed and named, before anything
// is measured.
#include "kit/free_port.h"

#include <QCoreApplication>
#include <QProcess>
#include <QTcpServer>
#include <QtTest>

namespace {

struct Outcome
{
    int exitCode;
    QString said;
};

Outcome run(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    const bool ended = process.waitForFinished(60000);
    return {ended ? process.exitCode() : -1, QString::fromLocal8Bit(process.readAll())};
}

Outcome askFor(const QStringList& ports)
{
    return run(QStringLiteral(NOTCHBENCH_SOURCE_DIR "/scripts/free-ports"), ports);
}

} // namespace

class TestTakenPorts : public QObject
{
    Q_OBJECT

private slots:
    void freePortsAreFree();
    void theProgramOnAPortIsNamed_data();
    void theProgramOnAPortIsNamed();
    void everyTakenPortIsTold();
    void theDemonstrationDoesNotMeasureWithoutItsServer();
};

void TestTakenPorts::freePortsAreFree()
{
    const Outcome outcome = askFor({QString::number(freePort())});
    QCOMPARE(outcome.said, QString());
    QCOMPARE(outcome.exitCode, 0);
}

void TestTakenPorts::theProgramOnAPortIsNamed_data()
{
    QTest::addColumn<QString>("address");
    QTest::newRow("this machine only") << "127.0.0.1";
    QTest::newRow("every address of both kinds") << "::";
}

void TestTakenPorts::theProgramOnAPortIsNamed()
{
    QFETCH(QString, address);
    QTcpServer stranger;
    QVERIFY(stranger.listen(QHostAddress(address)));
    const Outcome outcome = askFor({QString::number(stranger.serverPort())});
    QCOMPARE(outcome.said, QStringLiteral("Port %1 is taken by test_taken_port (process %2).\n")
                               .arg(stranger.serverPort())
                               .arg(QCoreApplication::applicationPid()));
    QCOMPARE(outcome.exitCode, 1);
}

void TestTakenPorts::everyTakenPortIsTold()
{
    QTcpServer one;
    QTcpServer other;
    QVERIFY(one.listen() && other.listen());
    const Outcome outcome = askFor({QString::number(one.serverPort()), QString::number(freePort()),
                                    QString::number(other.serverPort())});
    QCOMPARE(outcome.said.count(QStringLiteral("is taken by")), 2);
    QCOMPARE(outcome.exitCode, 1);
}

void TestTakenPorts::theDemonstrationDoesNotMeasureWithoutItsServer()
{
    QTcpServer stranger;
    QVERIFY(stranger.listen());
    const QString port = QString::number(stranger.serverPort());
    const Outcome outcome =
        run(QStringLiteral(NOTCHBENCH_DEMO), {QStringLiteral("none.png"), port});
    QVERIFY2(outcome.said.contains("can't have port " + port), qPrintable(outcome.said));
    QCOMPARE(outcome.exitCode, 1);
}

QTEST_GUILESS_MAIN(TestTakenPorts)
#include "test_taken_ports.moc"
