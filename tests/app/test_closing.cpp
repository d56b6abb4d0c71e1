// How the program ends, seen from outside: with status 0, or not at all where that is settled.
#include "kit/fresh_home.h"

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

private:
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
    QVERIFY(program.waitForStarted());
    QVERIFY2(!program.waitForFinished(4000), "the program ended");
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

QTEST_GUILESS_MAIN(TestClosing)
#include "test_closing.moc"
