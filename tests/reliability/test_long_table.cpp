// A table of a thousand notches, and more rows than anybody types: the window goes on answering.
#include "app/main_window.h"
#include "kit/fresh_home.h"
#include "setup/config_file.h"

#include <QElapsedTimer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>
#include <QtTest>

#include <algorithm>
#include <atomic>
#include <ctime>
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

// How many milliseconds each beat of a 10 ms timer came late while somebody else worked.
QVector<qint64> delaysDuring(const std::atomic<bool>& work)
{
    constexpr int interval = 10; // ms
    QVector<qint64> delays;
    QElapsedTimer sinceLast;
    QTimer timer;
    timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer, &QTimer::timeout, &timer,
                     [&] { delays.append(sinceLast.restart() - interval); });
    sinceLast.start();
    timer.start(interval);
    while (work) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return delays;
}

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
    QTcpServer probe; // for a port that anybody may use
    QVERIFY(probe.listen(QHostAddress::LocalHost));
    const quint16 port = probe.serverPort();
    probe.close();
    MainWindow window(nullptr, port);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    std::atomic<bool> working = true;
    int greeted = 0;
    std::thread peer([&] {
        greeted = connectAndGo(port, clients);
        working = false;
    });
    QVector<qint64> delays = delaysDuring(working);
    peer.join();
    QCOMPARE(greeted, clients);
    QVERIFY(!delays.isEmpty());
    std::sort(delays.begin(), delays.end());
    const qint64 median = delays.at(delays.size() / 2);
    qInfo("%d beats, median %lld ms late, at most %lld ms", delays.size(), median, delays.last());
    QVERIFY2(median < 50, QByteArray::number(median).constData());
    QVERIFY2(delays.last() <= 300, QByteArray::number(delays.last()).constData());
}

// After a file of a mebibyte; time of calculation, for others may be at work.
void TestLongTable::windowAnswersBesideFortyThousandRows()
{
    saveDefaultConfig(withRows(40000), QStringLiteral("Notchbench.cfg"));
    MainWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QCoreApplication::processEvents();
    const std::clock_t start = std::clock();
    for (int refresh = 0; refresh < 10; ++refresh) {
        window.notifyPropertyChanged();
        QCoreApplication::processEvents();
    }
    const double seconds = double(std::clock() - start) / CLOCKS_PER_SEC / 10;
    QVERIFY2(seconds < 0.3, QByteArray::number(seconds).constData());
}

QTEST_MAIN(TestLongTable)
#include "test_long_table.moc"
