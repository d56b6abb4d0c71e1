// The program is killed 200 times at random moments of a save and of a close, half of them a little
// after its end. What is found afterwards is the former configuration or the new one, whole.
#include "kit/file_content.h"
#include "setup/config_file.h"

#include <QProcess>
#include <QRandomGenerator>
#include <QtTest>

#include <algorithm>
#include <csignal>
#include <memory>

namespace {

constexpr int killCount = 20;
constexpr double mostBusy = 100.0; // times as slow as the program that was left alone
constexpr int rowCount = 300; // a file of more than 20 kB, so that a moment of the write is hit

QByteArray textOf(quint32 seed, const QTemporaryDir& folder)
{
    MeasurementSetup setup;
    setup.seed = seed;
    setup.analyzer.sweepTime = 0.0; // as a read record has it
    for (int row = 0; row < rowCount; ++row) {
        Notch notch;
        notch.startIndex = row;
        notch.stopIndex = row;
        setup.notches->insert(row, notch);
    }
    saveConfig(setup, folder.filePath("text"));
    return contentOf(folder.filePath("text"));
}

// The rows of a file come back in any order.
QByteArrayList withoutOrder(const QByteArray& text)
{
    QByteArrayList lines = text.split('\n');
    std::sort(lines.begin(), lines.end());
    return lines;
}

} // namespace

class TestKilledProgram : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void killedWhileSavingLeavesAWholeConfiguration_data() { rounds(7); }
    void killedWhileSavingLeavesAWholeConfiguration();
    void killedWhileClosingLeavesAWholeConfiguration_data() { rounds(3); }
    void killedWhileClosingLeavesAWholeConfiguration();

private:
    static void rounds(int count);
    QByteArray config() const;
    void put(const QByteArray& text) const;
    void start(QProcess& program, const char* scenario) const;
    double nanosecondsOf(const char* scenario) const;
    bool killAt(double nanoseconds, const char* scenario) const;
    QVector<double> moments(const char* scenario, int seed) const;

    std::unique_ptr<QTemporaryDir> folder;
    QByteArray one;
    QByteArray two;
};

// Of 20 kills each: a test function has five minutes, and a program under a sanitizer starts
// slowly.
void TestKilledProgram::rounds(int count)
{
    QTest::addColumn<int>("seed");
    for (int seed = 1; seed <= count; ++seed) {
        QTest::addRow("seed %d", seed) << seed;
    }
}

void TestKilledProgram::init()
{
    folder = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir(folder->path()).mkdir("saving_program"));
    one = textOf(1, *folder);
    two = textOf(2, *folder);
    QVERIFY(one.size() > 20000);
    QVERIFY(one != two);
}

QByteArray TestKilledProgram::config() const
{
    return contentOf(folder->filePath("saving_program/Notchbench.cfg"));
}

void TestKilledProgram::put(const QByteArray& text) const
{
    putContent(folder->filePath("saving_program/Notchbench.cfg"), text);
}

void TestKilledProgram::start(QProcess& program, const char* scenario) const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("XDG_DATA_HOME", folder->path());
    program.setProcessEnvironment(environment);
    program.setStandardErrorFile(QProcess::nullDevice());
    program.start(SAVING_PROGRAM, {scenario});
}

// How long the scenario takes when it is left alone.
double TestKilledProgram::nanosecondsOf(const char* scenario) const
{
    QProcess program;
    start(program, scenario);
    QByteArrayList lines;
    while (lines.size() < 2 && (program.canReadLine() || program.waitForReadyRead(60000))) {
        lines << program.readLine();
    }
    program.kill();
    program.waitForFinished(60000);
    return 1e3 * lines.value(1).toDouble();
}

bool TestKilledProgram::killAt(double nanoseconds, const char* scenario) const
{
    QProcess program;
    start(program, scenario);
    const bool hasCome = program.waitForReadyRead(60000);
    QElapsedTimer timer;
    timer.start();
    while (double(timer.nsecsElapsed()) < nanoseconds) { // finer than the system's timers
    }
    ::kill(pid_t(program.processId()), SIGKILL);
    return program.waitForFinished(60000) && hasCome;
}

// Drawn one from each of as many equal parts of twice the time that the scenario takes.
QVector<double> TestKilledProgram::moments(const char* scenario, int seed) const
{
    const double part = 2.0 * nanosecondsOf(scenario) / killCount;
    QRandomGenerator random(static_cast<quint32>(seed));
    QVector<double> drawn;
    for (int i = 0; i < killCount; ++i) {
        drawn << part * (i + random.generateDouble());
    }
    return drawn;
}

void TestKilledProgram::killedWhileSavingLeavesAWholeConfiguration()
{
    QFETCH(int, seed);
    put(one);
    const QVector<double> drawn = moments("save", seed);
    put(one);
    int saved = 0;
    int early = 0;
    for (double busy = 1.0; saved == 0 && busy < mostBusy; busy *= 2.0) {
        for (const double moment : drawn) {
            QVERIFY(killAt(busy * moment, "save"));
            const QByteArray found = config();
            const bool isNew = withoutOrder(found) == withoutOrder(two);
            QVERIFY2(isNew || withoutOrder(found) == withoutOrder(one), found.constData());
            (isNew ? saved : early) += 1;
        }
    }
    QVERIFY2(saved > 0 && early > 0, QByteArray::number(saved));
}

void TestKilledProgram::killedWhileClosingLeavesAWholeConfiguration()
{
    QFETCH(int, seed);
    put(one);
    const QVector<double> drawn = moments("close", seed);
    int saved = 0;
    int early = 0;
    for (double busy = 1.0; saved == 0 && busy < mostBusy; busy *= 2.0) {
        for (const double moment : drawn) {
            put(one);
            QVERIFY(killAt(busy * moment, "close"));
            const QByteArray found = config();
            const bool isNew = withoutOrder(found) == withoutOrder(two);
            QVERIFY2(isNew || found == one, found.constData());
            (isNew ? saved : early) += 1;
        }
    }
    QVERIFY2(saved > 0 && early > 0, QByteArray::number(saved));
}

QTEST_GUILESS_MAIN(TestKilledProgram)
#include "test_killed_program.moc"
