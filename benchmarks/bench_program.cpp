// The whole program offscreen, as an operator and a client meet it: from the start to the first
// painted window, idle, the memory of calculations, and the status server's answers. Counters in
// milliseconds unless their names say otherwise. The program saves its settings in HOME.
//
// Memory and start are those of processes of their own: this program, with the scenario's name.
#include "app/main_window.h"
#include "first_paint.h"
#include "kit/window_driver.h"
#include "run_benchmarks.h"
#include "setup/measurement_setup.h"
#include "status/status_replies.h"
#include "turns.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QDirIterator>
#include <QLoggingCategory>
#include <QProcess>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>

#include <algorithm>
#include <atomic>
#include <iostream>
#include <thread>

namespace {

constexpr int samples = 4194304;
constexpr int blockBytes = 8 * samples + 4;

bool calculate(const WindowDriver& operate)
{
    operate.click("calc_fft_button");
    return QTest::qWaitFor(
        [&] { return operate.text("fft_status_label") == QLatin1String("Data valid"); }, 120000);
}

void setNineNotches(const WindowDriver& operate)
{
    operate.pick("fft_length_input", 0);
    operate.type("nbw_srate_input", "0.8");
    operate.type("notch_count_input", "9");
    operate.type("notch_width_input", "1");
    operate.click("autocalc_notches_button");
}

int paintOnce()
{
    MainWindow window;
    PaintWatch watch;
    window.centralWidget()->installEventFilter(&watch);
    window.show();
    return QApplication::exec();
}

// Twice, for the second result is made while the window still holds the first.
int calculateTwice()
{
    MainWindow window;
    window.show();
    const WindowDriver operate(window);
    setNineNotches(operate);
    if (!calculate(operate) || !calculate(operate)) {
        return 1;
    }
    QFile status("/proc/self/status");
    if (!status.open(QIODevice::ReadOnly)) {
        return 1;
    }
    const QList<QByteArray> lines = status.readAll().split('\n');
    for (const QByteArray& line : lines) {
        if (line.startsWith("VmHWM:")) {
            std::cout << line.mid(6).simplified().split(' ').first().constData() << std::endl;
        }
    }
    return 0;
}

// Of all threads, in nanoseconds.
double processorTime(qint64 process)
{
    double sum = 0.0;
    QDirIterator threads(QString("/proc/%1/task").arg(process), QDir::Dirs | QDir::NoDotAndDotDot);
    while (threads.hasNext()) {
        QFile file(threads.next() + "/schedstat");
        if (file.open(QIODevice::ReadOnly)) {
            sum += file.readAll().split(' ').first().toDouble();
        }
    }
    return sum;
}

void idle(benchmark::State& state)
{
    constexpr unsigned long seconds = 5;
    QProcess program;
    program.start(NOTCHBENCH_PROGRAM, QStringList());
    program.waitForStarted(-1);
    QThread::sleep(seconds); // until everything stands
    double used = 0.0;
    while (state.KeepRunning()) {
        used = processorTime(program.processId());
        QThread::sleep(seconds);
        used = processorTime(program.processId()) - used;
    }
    state.counters["processor_us_per_s"] = used * 1e-3 / seconds;
    program.terminate();
    program.waitForFinished(-1);
}

void memory(benchmark::State& state)
{
    double kibibytes = 0.0;
    while (state.KeepRunning()) {
        QProcess program;
        program.start(QCoreApplication::applicationFilePath(), {"calculateTwice"});
        program.waitForFinished(-1);
        kibibytes = program.readAllStandardOutput().trimmed().toDouble();
    }
    state.counters["peak_MiB"] = kibibytes / 1024.0;
}

quint16 freePort()
{
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost);
    return probe.serverPort();
}

// A client with a thread of its own, as the other machine would be.
class Client
{
public:
    explicit Client(quint16 port)
    {
        socket.connectToHost("127.0.0.1", port);
        socket.waitForConnected();
        take(24); // the greeting
    }

    // Seconds until the whole answer is here.
    double ask(const char* request, qint64 answerBytes)
    {
        return secondsOf([&] {
            socket.write(request);
            socket.flush();
            take(answerBytes);
        });
    }

private:
    void take(qint64 bytes)
    {
        std::vector<char> answer(static_cast<std::size_t>(bytes));
        for (qint64 taken = 0; taken < bytes;) {
            if (socket.bytesAvailable() == 0 && !socket.waitForReadyRead(10000)) {
                return;
            }
            taken += socket.read(answer.data() + taken, bytes - taken);
        }
    }

    QTcpSocket socket;
};

// Lets the window live while the client does its work.
template <typename Work> void besideWindow(Work work)
{
    QEventLoop loop;
    std::thread client([&] {
        work();
        QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
    });
    loop.exec();
    client.join();
}

quint16 openServer(const WindowDriver& operate)
{
    const quint16 port = freePort();
    operate.type("port_input", QString::number(port));
    return port;
}

void symbolBlockReady(benchmark::State& state)
{
    SignalData signal(samples);
    Fastest ready;
    while (state.KeepRunning()) {
        ready.add(secondsOf([&] { benchmark::DoNotOptimize(symbolBlock(signal)); }));
    }
    state.counters["ms"] = ready.seconds() * 1e3;
}

void symbolBlockReceived(benchmark::State& state)
{
    MainWindow window;
    window.show();
    const WindowDriver operate(window);
    const quint16 port = openServer(operate);
    setNineNotches(operate);
    calculate(operate);
    Fastest received;
    while (state.KeepRunning()) {
        besideWindow([&] { received.add(Client(port).ask("GetSymbol", blockBytes)); });
    }
    state.counters["ms"] = received.seconds() * 1e3;
}

// Polls without news, one a millisecond as long as a calculation runs.
void pollWhileCalculating(benchmark::State& state)
{
    MainWindow window;
    window.show();
    const WindowDriver operate(window);
    const quint16 port = openServer(operate);
    setNineNotches(operate);
    std::vector<double> seconds;
    std::atomic<bool> calculating{false};
    QObject::connect(&window, &MainWindow::fftFinished, [&] { calculating = false; });
    while (state.KeepRunning()) {
        besideWindow([&] {
            Client client(port);
            client.ask("GetNewState", 8);
            calculating = true;
            QMetaObject::invokeMethod(
                &window, [&] { operate.click("calc_fft_button"); }, Qt::BlockingQueuedConnection);
            while (calculating) {
                seconds.push_back(client.ask("GetNewState", 8));
                QThread::msleep(1);
            }
        });
        seconds.pop_back(); // this one may have met the news
    }
    std::sort(seconds.begin(), seconds.end());
    state.counters["polls"] = static_cast<double>(seconds.size());
    state.counters["median_ms"] = seconds[seconds.size() / 2] * 1e3;
    const auto within = std::lower_bound(seconds.begin(), seconds.end(), 1e-3);
    state.counters["percent_within_1_ms"] =
        100.0 * static_cast<double>(within - seconds.begin()) / static_cast<double>(seconds.size());
    state.counters["longest_ms"] = seconds.back() * 1e3;
}

} // namespace

BENCHMARK(startToFirstPaint)->UseManualTime()->Iterations(10)->Unit(benchmark::kMillisecond);
BENCHMARK(idle)->UseRealTime()->Iterations(1);
BENCHMARK(memory)->UseRealTime()->Iterations(1);
BENCHMARK(symbolBlockReady)->UseRealTime()->Iterations(20)->Unit(benchmark::kMillisecond);
BENCHMARK(symbolBlockReceived)->UseRealTime()->Iterations(10)->Unit(benchmark::kMillisecond);
BENCHMARK(pollWhileCalculating)->UseRealTime()->Iterations(10)->Unit(benchmark::kMillisecond);

int main(int argc, char* argv[])
{
    QLoggingCategory::setFilterRules("*.debug=false");
    QApplication application(argc, argv);
    const QString scenario = application.arguments().value(1);
    if (scenario == QLatin1String("paintOnce")) {
        return paintOnce();
    }
    if (scenario == QLatin1String("calculateTwice")) {
        return calculateTwice();
    }
    return runBenchmarks(argc, argv);
}
