// Programs that are started without standard input, output and error: no file and no socket of
// theirs takes these numbers, where their messages would go. And windows whose messages lose their
// reader.
#include "kit/caught_signals.h"

#include <QFileInfo>
#include <QProcess>
#include <QtTest>

#include <csignal>

namespace {

// What a descriptor of the process stands for, as the system names it.
QString openedAs(qint64 process, int descriptor)
{
    const QString link = QStringLiteral("/proc/%1/fd/%2").arg(process).arg(descriptor);
    return QFileInfo(link).symLinkTarget();
}

} // namespace

class TestClosedStreams : public QObject
{
    Q_OBJECT

private slots:
    void theirNumbersAreHeld_data();
    void theirNumbersAreHeld();
    void aReaderOfMessagesWhoHasGoneEndsNoWindow();
};

void TestClosedStreams::theirNumbersAreHeld_data()
{
    QTest::addColumn<QString>("program");
    QTest::addColumn<QString>("arguments");
    QTest::newRow("notchbench") << NOTCHBENCH << "";
    QTest::newRow("notchbench-curves") << NOTCHBENCH_CURVES << "";
    QTest::newRow("notchbench-simulator") << NOTCHBENCH_SIMULATOR << "--port 0 --signal-port 1";
}

void TestClosedStreams::theirNumbersAreHeld()
{
    QFETCH(QString, program);
    QFETCH(QString, arguments);
    QProcess process;
    process.start("sh", {"-c", "exec \"$0\" " + arguments + " <&- >&- 2>&-", program});
    QVERIFY(process.waitForStarted());
    for (const int descriptor : {0, 1, 2}) {
        QTRY_COMPARE_WITH_TIMEOUT(openedAs(process.processId(), descriptor), QString("/dev/null"),
                                  20000);
    }
    process.terminate();
    QVERIFY(process.waitForFinished(20000));
}

// The platform has said some lines before the window heeds what stops it.
void TestClosedStreams::aReaderOfMessagesWhoHasGoneEndsNoWindow()
{
    QProcess process;
    process.start(NOTCHBENCH_CURVES, QStringList());
    process.closeReadChannel(QProcess::StandardError);
    QVERIFY(process.waitForStarted());
    QTRY_VERIFY_WITH_TIMEOUT(catches(process.processId(), SIGTERM), 20000);
    process.terminate();
    QVERIFY(process.waitForFinished(20000));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 0);
}

QTEST_GUILESS_MAIN(TestClosedStreams)
#include "test_closed_streams.moc"
