// The program is killed 200 times at random moments of a save and of a close. What is found
// afterwards is the former configuration or the new one, whole.
#include "kit/file_content.h"
#include "setup/config_file.h"

#include <QProcess>
#include <QRandomGenerator>
#include <QtTest>

#include <algorithm>
#include <csignal>
#include <memory>

namespace {

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
    bool killAtARandomMoment(const char* scenario, int withinMicroseconds);

    std::unique_ptr<QTemporaryDir> folder;
    QByteArray one;
    QByteArray two;
};

// Of 20 kills each: a test function has five minutes, and a program under a sanitizer starts
// slowly.
void TestKilledProgram::rounds(int count)
{
    QTest::addColumn<int>("kills");
    for (int round = 1; round <= count; ++round) {
        QTest::addRow("round %d", round) << 20;
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
    QFile file(folder->filePath("saving_program/Notchbench.cfg"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(text), qint64{text.size()});
}

bool TestKilledProgram::killAtARandomMoment(const char* scenario, int withinMicroseconds)
{
    QProcess program;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("XDG_DATA_HOME", folder->path());
    program.setProcessEnvironment(environment);
    program.setStandardErrorFile(QProcess::nullDevice());
    program.start(SAVING_PROGRAM, {scenario});
    const bool hasCome = program.waitForReadyRead(60000);
    const qint64 moment = 1000LL * QRandomGenerator::global()->bounded(withinMicroseconds);
    QElapsedTimer timer;
    timer.start();
    while (timer.nsecsElapsed() < moment) { // finer than the system's timers
    }
    ::kill(pid_t(program.processId()), SIGKILL);
    return program.waitForFinished(60000) && hasCome;
}

void TestKilledProgram::killedWhileSavingLeavesAWholeConfiguration()
{
    QFETCH(int, kills);
    put(one);
    for (int kill = 0; kill < kills; ++kill) {
        QVERIFY(killAtARandomMoment("save", 8000));
        const QByteArray found = config();
        QVERIFY2(withoutOrder(found) == withoutOrder(one) ||
                     withoutOrder(found) == withoutOrder(two),
                 found.constData());
    }
}

void TestKilledProgram::killedWhileClosingLeavesAWholeConfiguration()
{
    QFETCH(int, kills);
    int saved = 0;
    for (int kill = 0; kill < kills; ++kill) {
        put(one);
        QVERIFY(killAtARandomMoment("close", 60000));
        const QByteArray found = config();
        const bool isNew = withoutOrder(found) == withoutOrder(two);
        QVERIFY2(isNew || found == one, found.constData());
        saved += isNew ? 1 : 0;
    }
    qInfo("%d of %d had saved", saved, kills);
}

QTEST_GUILESS_MAIN(TestKilledProgram)
#include "test_killed_program.moc"
