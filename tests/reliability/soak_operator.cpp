#include "reliability/soak_operator.h"

#include "base/worker_threads.h"
#include "fit/dialogs/load_trace_dialog.h"
#include "kit/background_jobs.h"
#include "kit/file_content.h"
#include "kit/free_port.h"
#include "setup/config_file.h"
#include "signal/dialogs/crest_factor_dialog.h"

#include <QElapsedTimer>
#include <QHeaderView>

struct SoakOperator::Action
{
    const char* name;
    int weight;
    void (SoakOperator::*act)();
};

const SoakOperator::Action SoakOperator::table[] = {
    {"calculate", 8, &SoakOperator::calculate},
    {"calculate from files", 3, &SoakOperator::calculateFromFiles},
    {"make notches", 5, &SoakOperator::makeNotches},
    {"edit a cell", 12, &SoakOperator::editCell},
    {"drag on the graph", 12, &SoakOperator::dragOnTheGraph},
    {"load a configuration", 3, &SoakOperator::loadAnyConfig},
    {"save the waveform", 2, &SoakOperator::saveWaveform},
    {"save the configuration", 2, &SoakOperator::saveConfigFile},
    {"init the instruments", 3, &SoakOperator::initInstruments},
    {"preset", 3, &SoakOperator::preset},
    {"measure", 5, &SoakOperator::measure},
    {"measure continuously", 2, &SoakOperator::measureContinuously},
    {"measure from the start", 2, &SoakOperator::measureFromTheStart},
    {"sweep the seeds", 4, &SoakOperator::sweepSeeds},
    {"load a trace", 4, &SoakOperator::loadTrace},
    {"kill the simulator", 1, &SoakOperator::killSimulator},
    {"resize", 2, &SoakOperator::resize},
};

SoakOperator::SoakOperator(MainWindow& drivenWindow, const QString& configFolder, quint32 seed)
    : window(drivenWindow), operate(drivenWindow), random(seed)
{
    const QFileInfoList found = QDir(configFolder).entryInfoList(QDir::Files, QDir::Name);
    for (const QFileInfo& info : found) {
        configs << info.filePath();
    }
    makeInputs();
    port = freePort();
    for (QProcess* process : {&clients, &simulator}) {
        process->setStandardErrorFile(QProcess::nullDevice());
    }
    simulator.setStandardOutputFile(QProcess::nullDevice());
    operate.find<QLabel>("npr_upper")->clear();
    QObject::connect(&window, &MainWindow::fftFinished, &boxes, [this] {
        come.madeSignals += operate.text("fft_status_label") == QLatin1String("Data valid") ? 1 : 0;
    });
    boxes.setInterval(20);
    QObject::connect(&boxes, &QTimer::timeout, &boxes, [this] {
        answerBoxes();
        observe();
    });
    boxes.start();
}

SoakOperator::~SoakOperator()
{
    end(clients);
    end(simulator);
}

// The files that are read: a spectrum, samples that are a good mean between noise and nothing, and
// the trace of a tilted path.
void SoakOperator::makeInputs()
{
    QByteArray spectrum = "4096\n";
    QByteArray samples;
    for (int line = 0; line < 4096; ++line) {
        spectrum += QByteArray::number(line) + " 0." + QByteArray::number(line) + " 1.0\n";
        samples += QByteArray::number(line * 7919 % 100).rightJustified(2, '0');
    }
    QByteArray trace;
    for (int point = 0; point <= 1000; ++point) {
        trace += QByteArray::number(1e9 + (point - 500) * 1e5) + ";" +
                 QByteArray::number(-20.0 - point * 0.003) + "\n";
    }
    putContent(folder.filePath("s.pmc"), spectrum);
    putContent(folder.filePath("s.wav"), samples);
    putContent(folder.filePath("t.txt"), trace);
    MeasurementSetup base;
    base.fftLengthIndex = 8; // 16384
    base.tcpPort = port;
    base.phaseMagFile = folder.filePath("s.pmc");
    base.iFile = folder.filePath("s.wav");
    base.qFile = base.iFile;
    for (Instrument* instrument :
         {static_cast<Instrument*>(&base.generator), static_cast<Instrument*>(&base.analyzer)}) {
        instrument->frequency = 1e9;
    }
    saveConfig(base, folder.filePath("base.cfg"));
}

void SoakOperator::startClients()
{
    clients.start(SOAK_CLIENTS, {QString::number(port)});
    come.missedStarts += clients.waitForStarted() ? 0 : 1;
}

void SoakOperator::startSimulator()
{
    simulator.start(SIMULATOR, {"--fast", "--signal-port", QString::number(port)});
    come.missedStarts += simulator.waitForStarted() ? 0 : 1;
}

void SoakOperator::end(QProcess& process)
{
    process.kill();
    process.waitForFinished();
}

// No box and no menu stays on the screen.
void SoakOperator::answerBoxes()
{
    if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
        if (box->informativeText().startsWith(QLatin1String("Closing"))) {
            WorkerThreads::ofProcess().waitForDone(); // to force it earlier hangs on purpose
        }
        // A file that exists may be replaced; an instrument's failure is taken note of.
        QAbstractButton* yes = box->button(QMessageBox::Yes);
        (yes != nullptr ? yes : box->buttons().constFirst())->click();
    } else if (QApplication::activePopupWidget() != nullptr) {
        QApplication::activePopupWidget()->close();
    }
}

// The clients say a byte for each answer.
void SoakOperator::observe()
{
    if (clients.isOpen()) {
        come.answers += clients.readAllStandardOutput().size();
    }
    auto* reading = operate.find<QLabel>("npr_upper");
    if (!reading->text().isEmpty()) {
        ++come.readings;
        reading->clear(); // so that the next one is seen, too
    }
    for (auto* dialog : dialogs<DevicesDialog>()) {
        const bool isConnected = WindowDriver(*dialog).isEnabled("a_set");
        come.connections += isConnected && !wasConnected ? 1 : 0;
        wasConnected = isConnected;
    }
}

// Libraries, fonts and caches that are loaded with the first use of something stay.
void SoakOperator::warmUp()
{
    load(folder.filePath("base.cfg"));
    startSimulator();
    for (int round = 0; round < 3; ++round) {
        for (const Action& action : table) {
            (this->*action.act)();
            QTest::qWait(random.bounded(30));
        }
    }
    end(simulator);
}

void SoakOperator::work(int seconds)
{
    load(folder.filePath("base.cfg"));
    startClients();
    startSimulator();
    int sumOfWeights = 0;
    for (const Action& action : table) {
        sumOfWeights += action.weight;
    }
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < seconds * 1000LL && !stopped) {
        int drawn = random.bounded(sumOfWeights);
        const Action* action = table;
        while (drawn >= action->weight) {
            drawn -= action->weight;
            ++action;
        }
        (this->*action->act)();
        ++actionCount;
        QTest::qWait(random.bounded(30));
    }
}

void SoakOperator::restore()
{
    end(clients);
    end(simulator);
    for (auto* dialog : dialogs<CrestFactorDialog>()) {
        dialog->on_stop_button_clicked();
    }
    const auto isIdle = [this] { return operate.isEnabled("calc_fft_button"); };
    (void)QTest::qWaitFor(isIdle, 120000);
    load(folder.filePath("base.cfg"));
    // Thrice, because a click on a window behind the box of a lost instrument is lost, too.
    for (int attempt = 0; attempt < 3; ++attempt) {
        operate.click("calc_fft_button");
        (void)QTest::qWaitFor(isIdle, 120000);
        (void)backgroundJobsEnd(20000); // an instrument's failure ends in a box
        (void)QTest::qWaitFor([] { return QApplication::activeModalWidget() == nullptr; });
    }
    loadTraceBy("load_direct_button", 10000);
    window.resize(1000, 800);
}

void SoakOperator::load(const QString& path)
{
    operate.answerFileDialog(path);
    operate.trigger("actionLoad_Cfg_File");
    operate.type("port_input", QString::number(port));
}

void SoakOperator::calculate()
{
    static const char* const sources[] = {"internal_ratio_button", "mp_load_ratio_button",
                                          "iq_load_ratio_button"};
    operate.click(sources[random.bounded(8) < 6 ? 0 : random.bounded(3)]);
    operate.pick("fft_length_input", random.bounded(20) == 0 ? 1 : 5 + random.bounded(12));
    operate.pick("phase_mode_combobox", random.bounded(4));
    if (operate.isEnabled("calc_fft_button")) {
        operate.click("calc_fft_button");
    }
}

void SoakOperator::calculateFromFiles()
{
    operate.click(random.bounded(2) == 0 ? "mp_load_ratio_button" : "iq_load_ratio_button");
    if (operate.isEnabled("calc_fft_button")) {
        operate.click("calc_fft_button");
    }
}

void SoakOperator::makeNotches()
{
    operate.pick("nc_combobox", random.bounded(4) == 0 ? 1 : 0);
    operate.type("notch_count_input", QString::number(random.bounded(20)));
    operate.type("notch_width_input", QString::number(random.bounded(3.0)));
    operate.type("notch_offset_input", QString::number(random.bounded(10.0)));
    operate.click("autocalc_notches_button");
}

void SoakOperator::editCell()
{
    static const char* const texts[] = {"0", "-5", "3.25", "1e300", "-1e300", "nan",
                                        "",  "x",  "12,5", "-40.5", "100",    "99999999999"};
    auto* view = operate.find<QTableView>("main_table");
    if (operate.rowCount() == 0) {
        return;
    }
    const QModelIndex index =
        view->model()->index(random.bounded(operate.rowCount()), random.bounded(7));
    view->setCurrentIndex(index);
    view->edit(index);
    auto* editor = view->viewport()->findChild<QLineEdit*>();
    if (editor == nullptr) {
        return; // a column that is hidden
    }
    editor->setText(QLatin1String(texts[random.bounded(12)]));
    QTest::keyClick(editor, Qt::Key_Return);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void SoakOperator::dragOnTheGraph()
{
    auto* graph = operate.find<QWidget>("graph_widget");
    const auto anywhere = [&] {
        return QPoint(random.bounded(-10, graph->width() + 10),
                      random.bounded(-10, graph->height() + 10));
    };
    const auto move = [graph](QPoint to, Qt::MouseButtons buttons) {
        QMouseEvent event(QEvent::MouseMove, to, graph->mapToGlobal(to), Qt::NoButton, buttons,
                          Qt::NoModifier);
        QApplication::sendEvent(graph, &event);
    };
    const QPoint from = anywhere();
    const QPoint to = anywhere();
    const bool isRight = random.bounded(5) == 0;
    const Qt::MouseButton button = isRight ? Qt::RightButton : Qt::LeftButton;
    move(from, Qt::NoButton);
    QTest::mousePress(graph, button, Qt::NoModifier, from);
    for (int step = 1; step <= 5; ++step) {
        move(from + (to - from) * step / 5, button);
    }
    QTest::mouseRelease(graph, button, Qt::NoModifier, to);
}

void SoakOperator::loadAnyConfig()
{
    const int index = random.bounded(configs.size() * 2 + 1);
    load(index < configs.size() ? configs.at(index) : folder.filePath("base.cfg"));
    // A signal of millions of samples at every second step would leave time for nothing else.
    operate.pick("fft_length_input", 8);
}

void SoakOperator::saveWaveform()
{
    static const char* const names[] = {"w.i", "w.i.wav", "w.wv"};
    if (operate.text("fft_status_label") == QLatin1String("Data valid")) {
        operate.answerFileDialog(folder.filePath(names[random.bounded(3)]));
        operate.trigger("actionSave_Waveform");
    }
}

void SoakOperator::saveConfigFile()
{
    operate.answerFileDialog(folder.filePath("saved.cfg"));
    operate.trigger("actionSave_Cfg_File");
}

void SoakOperator::initInstruments()
{
    static const char* const buttons[] = {"g_init", "a_init",  "g_set",
                                          "a_set",  "g_reset", "a_reset"};
    operate.trigger("actionDevices");
    for (auto* dialog : dialogs<DevicesDialog>()) {
        const WindowDriver hand(*dialog);
        hand.click(buttons[random.bounded(6)]);
        QTest::qWait(random.bounded(30));
        dialog->hide();
    }
}

void SoakOperator::preset()
{
    operate.click("preset_button");
}

void SoakOperator::measure()
{
    operate.type("measure_notch", QString::number(random.bounded(4)));
    operate.pick("measure_mode", 1);
    operate.click("measure_button");
}

void SoakOperator::measureContinuously()
{
    operate.type("measure_notch", "1");
    operate.pick("measure_mode", 0);
    QTest::qWait(random.bounded(500));
}

// The others seldom meet: a preset that has ended, notches, and a simulator that lives.
void SoakOperator::measureFromTheStart()
{
    operate.pick("nc_combobox", 0);
    operate.type("notch_count_input", "3");
    operate.type("notch_width_input", "1");
    operate.type("notch_offset_input", "0");
    operate.click("autocalc_notches_button");
    operate.pick("measure_mode", 1);
    operate.click("preset_button");
    (void)backgroundJobsEnd(10000);
    operate.type("measure_notch", "1");
    operate.click("measure_button");
    (void)backgroundJobsEnd(10000);
}

// A sweep of signals of millions of samples would outlast the soak.
void SoakOperator::sweepSeeds()
{
    operate.pick("fft_length_input", 8);
    operate.trigger("actionOptimize_Crest_Fector");
    for (auto* dialog : dialogs<CrestFactorDialog>()) {
        const WindowDriver hand(*dialog);
        hand.click("stop_button"); // a former sweep that was left running
        hand.type("seed_count_input", QString::number(random.bounded(1, 60)));
        hand.click("start_button");
        QTest::qWait(random.bounded(200));
        switch (random.bounded(3)) {
        case 0:
            hand.click("stop_button");
            break;
        case 1:
            hand.click("ok_button");
            break;
        default:
            break; // runs on
        }
        dialog->close();
    }
}

void SoakOperator::loadTrace()
{
    static const char* const buttons[] = {"load_direct_button", "load_poly_button",
                                          "cancel_button"};
    loadTraceBy(buttons[random.bounded(3)], random.bounded(500));
}

// A button that the trace or the source doesn't enable is left for Cancel.
void SoakOperator::loadTraceBy(const char* button, int patience)
{
    operate.answerFileDialog(folder.filePath("t.txt"));
    operate.trigger("actionLoad_SAN_Mag");
    for (auto* dialog : dialogs<LoadTraceDialog>()) {
        const WindowDriver hand(*dialog);
        (void)QTest::qWaitFor([&] { return hand.isEnabled(button); }, patience);
        hand.click(hand.isEnabled(button) ? button : "cancel_button");
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void SoakOperator::killSimulator()
{
    end(simulator);
    QTest::qWait(random.bounded(500));
    startSimulator();
}

void SoakOperator::resize()
{
    window.resize(random.bounded(300, 1600), random.bounded(200, 1200));
}
