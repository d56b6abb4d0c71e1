// How the program ends, seen from outside: with status 0, or not at all where that is settled.
#include "kit/fresh_home.h"
#include "kit/instrumented.h"
#include "kit/thread_state.h"

#include <QProcess>
#include <QtTest>

class TestClosing : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void idleWindowEndsTheProgram();
    void firstExitOnABareAccountSaves();
    void endedCalculationLetsTheProgramEnd();
    void forcedCloseOfARunningCalculationHangs();
    void sweepThatIsStillRunningLetsTheProgramEnd();
    void measurementThatIsStillRunningLetsTheProgramEnd();
    void presetThatIsStillRunningLetsTheProgramEnd();
    void otherWindowsDoNotKeepTheProgramAlive();
    void anInstrumentThatKeepsSilentDoesNotHoldTheEndUp_data();
    void anInstrumentThatKeepsSilentDoesNotHoldTheEndUp();
    void aCallIntoTheVisaLibraryRunsOut();

private:
    void startWithABareAccount(const char* scenario, const QTemporaryDir& account);
    QByteArray nextLine();
    void requireTheEnd(const QTemporaryDir& account);
    void endsWithStatus0(const char* scenario);

    QProcess program;
};

void TestClosing::init()
{
    program.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    program.setProgram(QStringLiteral(CLOSING_SCENARIO));
}

void TestClosing::endsWithStatus0(const char* scenario)
{
    program.setArguments({QLatin1String(scenario)});
    program.start();
    QVERIFY(program.waitForFinished(150000));
    QCOMPARE(program.exitStatus(), QProcess::NormalExit);
    QCOMPARE(program.exitCode(), 0);
}

void TestClosing::idleWindowEndsTheProgram()
{
    endsWithStatus0("idle");
}

void TestClosing::firstExitOnABareAccountSaves()
{
    QTemporaryDir bare;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("HOME", bare.path());
    environment.insert("XDG_DATA_HOME", bare.filePath("not/made/yet"));
    program.setProcessEnvironment(environment);
    endsWithStatus0("idle");
    program.setProcessEnvironment(QProcessEnvironment::systemEnvironment());
    QFile saved(bare.filePath("not/made/yet/closing_scenario/Notchbench.cfg"));
    QVERIFY(saved.open(QIODevice::ReadOnly));
    QVERIFY(saved.readAll().contains("SRate = 1e+08\n"));
}

void TestClosing::endedCalculationLetsTheProgramEnd()
{
    endsWithStatus0("wait");
}

void TestClosing::forcedCloseOfARunningCalculationHangs()
{
    program.setArguments({QStringLiteral("force")});
    program.start();
    QCOMPARE(nextLine(), QByteArray("forced\n"));
    QCOMPARE(nextLine(), QByteArray("calculated\n"));
    const qint64 id = program.processId(); // and that of its window's thread
    const double before = secondsOfThread(id, id);
    QTRY_VERIFY_WITH_TIMEOUT(secondsOfThread(id, id) > before + 0.5, 30000);
    QCOMPARE(program.state(), QProcess::Running);
    program.kill();
    QVERIFY(program.waitForFinished());
}

void TestClosing::sweepThatIsStillRunningLetsTheProgramEnd()
{
    endsWithStatus0("sweep");
}

void TestClosing::measurementThatIsStillRunningLetsTheProgramEnd()
{
    endsWithStatus0("measuring");
}

void TestClosing::presetThatIsStillRunningLetsTheProgramEnd()
{
    endsWithStatus0("presetting");
}

void TestClosing::otherWindowsDoNotKeepTheProgramAlive()
{
    endsWithStatus0("windows");
}

// Returns when the window is about to close.
void TestClosing::startWithABareAccount(const char* scenario, const QTemporaryDir& account)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("HOME", account.path());
    environment.insert("XDG_DATA_HOME", account.filePath("data"));
    environment.insert("LD_LIBRARY_PATH", STAND_IN_VISA_FOLDER);
    program.setProcessEnvironment(environment);
    program.setArguments({QLatin1String(scenario)});
    program.start();
    QCOMPARE(nextLine(), QByteArray("closing\n"));
}

// Nothing when the program ends without one.
QByteArray TestClosing::nextLine()
{
    while (!program.canReadLine() && program.waitForReadyRead(60000)) {
    }
    return program.readLine();
}

void TestClosing::requireTheEnd(const QTemporaryDir& account)
{
    QVERIFY(program.waitForFinished(20000));
    program.setProcessEnvironment(QProcessEnvironment::systemEnvironment());
    QCOMPARE(program.exitStatus(), QProcess::NormalExit);
    QCOMPARE(program.exitCode(), 0);
    QFile saved(account.filePath("data/closing_scenario/Notchbench.cfg"));
    QVERIFY(saved.open(QIODevice::ReadOnly));
    const QByteArray settings = saved.readAll();
    QVERIFY(settings.contains("SRate = 1e+08\n"));
    QVERIFY(settings.contains("[Analyzer]\n"));
}

void TestClosing::anInstrumentThatKeepsSilentDoesNotHoldTheEndUp_data()
{
    QTest::addColumn<QByteArray>("scenario");
    for (const char* each : {"init", "set", "reset", "preset", "measure", "cont", "everything",
                             "connect", "hang up"}) {
        QTest::newRow(each) << QByteArray(each);
    }
}

void TestClosing::anInstrumentThatKeepsSilentDoesNotHoldTheEndUp()
{
    QFETCH(QByteArray, scenario);
    const QTemporaryDir account;
    startWithABareAccount(scenario, account);
    QElapsedTimer sinceTheWindowCloses;
    sinceTheWindowCloses.start();
    requireTheEnd(account);
    const qint64 taken = sinceTheWindowCloses.elapsed();
    QVERIFY2(taken < (isInstrumented ? 8000 : 2000), QByteArray::number(taken));
}

void TestClosing::aCallIntoTheVisaLibraryRunsOut()
{
    const QTemporaryDir account;
    startWithABareAccount("visa", account);
    QVERIFY2(!program.waitForFinished(1000), "it doesn't wait for the library");
    program.write("\n");
    requireTheEnd(account);
    QCOMPARE(program.readAllStandardOutput(), QByteArray("released\n"));
}

QTEST_GUILESS_MAIN(TestClosing)
#include "test_closing.moc"
