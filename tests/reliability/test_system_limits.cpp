// The program where the system refuses threads or memory: the end of every job is seen, everything
// works again when the shortage is over, and the program ends with status 0.
#include "kit/instrumented.h"

#include <QProcess>
#include <QtTest>

class TestSystemLimits : public QObject
{
    Q_OBJECT

private slots:
    void withoutAFurtherThreadEveryEndIsSeen_data();
    void withoutAFurtherThreadEveryEndIsSeen();
    void withoutMemoryForAThreadEveryEndIsSeen_data();
    void withoutMemoryForAThreadEveryEndIsSeen();
    void aJobThatRunsOutOfMemoryIsSeenToEnd_data();
    void aJobThatRunsOutOfMemoryIsSeenToEnd();
};

namespace {

void playToTheEnd(const QStringList& arguments)
{
    constexpr int endsWithinMs = isInstrumented ? 20000 : 5000;
    QProcess program;
    program.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    program.start(QStringLiteral(LIMITED_PROGRAM), arguments);
    QVERIFY2(program.waitForReadyRead(240000) || program.exitCode() == 77, "it plays to the end");
    QVERIFY2(program.waitForFinished(endsWithinMs) || program.state() == QProcess::NotRunning,
             "the program ends in time");
    QCOMPARE(program.exitStatus(), QProcess::NormalExit);
    if (program.exitCode() == 77) {
        QSKIP("no limit on threads binds here");
    }
    QCOMPARE(program.exitCode(), 0);
}

void addScenarios(const QStringList& names)
{
    QTest::addColumn<QString>("scenario");
    for (const QString& name : names) {
        QTest::newRow(qPrintable(name)) << name;
    }
}

const QStringList threadScenarios = {"calculation", "helpers", "files", "trace",
                                     "fit",         "sweep",   "jobs",  "waiting jobs",
                                     "preset",      "measure", "cont",  "close"};

} // namespace

void TestSystemLimits::withoutAFurtherThreadEveryEndIsSeen_data()
{
    addScenarios(threadScenarios + QStringList{"sweep middle", "cont at start"});
}

void TestSystemLimits::withoutAFurtherThreadEveryEndIsSeen()
{
    QFETCH(QString, scenario);
    playToTheEnd({scenario, "threads"});
}

void TestSystemLimits::withoutMemoryForAThreadEveryEndIsSeen_data()
{
    addScenarios(threadScenarios);
}

void TestSystemLimits::aJobThatRunsOutOfMemoryIsSeenToEnd_data()
{
    addScenarios({"great calculation", "great trace", "great sweep", "last memory", "last talk",
                  "last press"});
}

void TestSystemLimits::aJobThatRunsOutOfMemoryIsSeenToEnd()
{
    QFETCH(QString, scenario);
    if (isInstrumented) {
        QSKIP("a sanitizer needs the whole address space");
    }
    playToTheEnd({scenario});
}

void TestSystemLimits::withoutMemoryForAThreadEveryEndIsSeen()
{
    QFETCH(QString, scenario);
    if (isInstrumented) {
        QSKIP("a sanitizer needs the whole address space");
    }
    playToTheEnd({scenario, "memory"});
}

QTEST_GUILESS_MAIN(TestSystemLimits)
#include "test_system_limits.moc"
