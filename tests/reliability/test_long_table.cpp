// A table of a thousand notches, and more rows than anybody types: the window goes on answering.
// What counts is the time that it calculates, for others may be at work.
#include "app/main_window.h"
#include "kit/free_port.h"
#include "kit/fresh_home.h"
#include "kit/heartbeat.h"
#include "kit/instrumented.h"
#include "setup/config_file.h"

#include <QTcpSocket>
#include <QtTest>

#include <atomic>
#include <thread>

namespace {

MeasurementSetup withRows(int count)
{
    MeasurementSetup setup;
    for (int row = 0; row < count; ++row) {
        Notch notch;
        notch.center = 1000.0 * row;
        notch.startIndex = row;
        notch.stopIndex = row;
        setup.notches->insert(row, notch);
    }
    return setup;
}

// One after the other; how many were greeted.
int connectAndGo(quint16 port, int clients)
{
    int greeted = 0;
    for (int i = 0; i < clients; ++i) {
        QTcpSocket socket;
        socket.connectToHost(QStringLiteral("127.0.0.1"), port);
        greeted += socket.waitForConnected(10000) && socket.waitForReadyRead(10000) ? 1 : 0;
    }
    return greeted;
}

// An instrumented program is several times slower.
constexpr qint64 slowdown = isInstrumented ? 10 : 1;

} // namespace

class TestLongTable : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void clientsThatComeAndGoDelayNothing();
    void windowAnswersBesideFortyThousandRows();
};

void TestLongTable::init()
{
    forgetSavedSettings();
}

void TestLongTable::clientsThatComeAndGoDelayNothing()
{
    constexpr int clients = 200;
    saveDefaultConfig(withRows(1000), QStringLiteral("Notchbench.cfg"));
    const quint16 port = freePort();
    MainWindow window(nullptr, port);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    std::atomic<bool> working = true;
    int greeted = 0;
    std::thread peer([&] {
        greeted = connectAndGo(port, clients);
        working = false;
    });
    Heartbeat heartbeat(300);
    while (working) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    peer.join();
    QCOMPARE(greeted, clients);
    QVERIFY(heartbeat.beats > 0);
    qInfo("%d beats, at most %lld ms of calculation between two", heartbeat.beats,
          heartbeat.longestOwn);
    QVERIFY(heartbeat.longestOwn < 12 * slowdown); // 3; 19 where each one makes the rows anew
}

// After a file of a mebibyte.
void TestLongTable::windowAnswersBesideFortyThousandRows()
{
    saveDefaultConfig(withRows(40000), QStringLiteral("Notchbench.cfg"));
    MainWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QCoreApplication::processEvents();
    Heartbeat heartbeat(300);
    for (int refresh = 0; refresh < 10; ++refresh) {
        window.notifyPropertyChanged();
        QTRY_VERIFY(heartbeat.beats > refresh);
    }
    qInfo("at most %lld ms of calculation for a refresh", heartbeat.longestOwn);
    QVERIFY(heartbeat.longestOwn < 150 * slowdown); // 40; 317 where it makes the rows anew
}

QTEST_MAIN(TestLongTable)
#include "test_long_table.moc"
