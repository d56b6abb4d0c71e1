#include "app/main_window.h"

#include "app/failure_door.h"
#include "base/background.h"
#include "fit/dialogs/load_trace_dialog.h"
#include "graph/graph_tool_tip.h"
#include "look/house_style.h"
#include "look/typed_input.h"
#include "setup/config_file.h"
#include "signal/dialogs/crest_factor_dialog.h"
#include "status/status_server.h"
#include "ui_main_window.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCloseEvent>
#include <QDebug>
#include <QDir>
#include <QHeaderView>
#include <QMessageBox>
#include <QPushButton>
#include <QScrollBar>
#include <QStandardItemModel>

// What a calculation brings. Made by default it stands for one that failed.
struct CalculationResult
{
    SignalData signal; // length 0 when the source failed or memory ran out
    double crestFactor = 0.0;
};

namespace {

const char defaultConfigName[] = "Notchbench.cfg";

QString fixedPoint(double value)
{
    return QString::number(value, 'f', 6);
}

class RaisedFlag
{
public:
    explicit RaisedFlag(std::atomic<bool>& raised) : flag(raised) { flag = true; }
    ~RaisedFlag() { flag = false; }
    RaisedFlag(const RaisedFlag&) = delete;
    RaisedFlag& operator=(const RaisedFlag&) = delete;

private:
    std::atomic<bool>& flag;
};

CalculationResult calculate(MeasurementSetup& setup, std::atomic<bool>& running)
{
    const RaisedFlag raised(running);
    setup.calculateSignal();
    return {setup.signal, setup.crestFactor};
}

} // namespace

MainWindow::MainWindow(QWidget* parent, quint16 startPort)
    : QMainWindow(parent),
      ui(std::make_unique<Ui::MainWindow>()),
      crestFactorDialog(std::make_unique<CrestFactorDialog>()),
      statusServer(std::make_unique<StatusServer>(setup, this)),
      calculationRunning(std::make_shared<std::atomic<bool>>(false)),
      failureDoor(
          std::make_shared<FailureDoor>([this](KORemoteException* e) { emit remoteError(e); }))
{
    ui->setupUi(this);
    setStyleSheet(houseStyleSheet());
    ui->main_table->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    ui->graph_widget->setSetup(&setup);
    setWindowFlags(Qt::WindowMinimizeButtonHint | Qt::WindowMaximizeButtonHint |
                   Qt::WindowContextHelpButtonHint | Qt::WindowCloseButtonHint);
    QDir::setCurrent(QDir::homePath());
    connect(ui->actionDevices, &QAction::triggered, this, &MainWindow::devices_clicked);
    connect(ui->actionOptimize_Crest_Fector, &QAction::triggered, this,
            &MainWindow::crest_factor_clicked);

    setup = loadDefaultConfig(QLatin1String(defaultConfigName));
    devicesDialog.setSetup(&setup);
    crestFactorDialog->setSetup(&setup);
    bindTable();
    // A loaded port other than 1000 opens a server here, through port_input.
    notifyPropertyChanged();
    // Deliberate: the same port after every start and not the loaded one, so that a client always
    // finds the program there. A server that the refresh opened stays open beside it.
    statusServer->listen(startPort);

    connectMeasurement();
    connect(statusServer.get(), &StatusServer::clientChanged, this, &MainWindow::showClient);
    connect(ui->graph_widget, &GraphWidget::graphChanged, this, &MainWindow::graphChanged);
    connect(this, &MainWindow::fftFinished, this, &MainWindow::fftCalculationFinished);
    ui->sample_rate_input->setFocus(); // not the first input, whose arrow keys empty the table
}

MainWindow::~MainWindow()
{
    measurementThread.stop();
    failureDoor->close();
    saveDefaultConfig(setup, QLatin1String(defaultConfigName));
    breakOffLinks();
    statusServer.reset();
    // Left to the base, these would report their end to slots of a window that is half gone.
    const QList<LoadTraceDialog*> dialogs =
        findChildren<LoadTraceDialog*>(QString(), Qt::FindDirectChildrenOnly);
    for (LoadTraceDialog* dialog : dialogs) {
        dialog->disconnect(this);
        delete dialog;
    }
}

void MainWindow::notifyPropertyChanged(QWidget* from)
{
    if (from != ui->nc_combobox) {
        ui->nc_combobox->setCurrentIndex(static_cast<int>(setup.notchOrCarrier));
    }
    ui->seed_input->setEnabled(setup.phaseMode == PhaseLaw::Seeded);
    showSource();
    showDerivedValues();
    showNotchInputs(from);
    showSignalInputs(from);
    showDataState();
    ui->tcp_status->setState(setup.tcpState);
    ui->crest_factor_output->setText(crestFactorText());
    showServer(from);
    showMeasurement(from);
    if (from != ui->sinx_checkbox) {
        ui->sinx_checkbox->setChecked(setup.sinxCompensation);
    }
    // NOLINTNEXTLINE(clang-analyzer-core.CallAndMessage): a child of the form is never null
    ui->sinx_checkbox->setEnabled(setup.customSource == SignalSource::Internal);
    ui->graph_widget->setToolTip(graphToolTip(setup));
    ui->graph_widget->update();
    showTable();
}

void MainWindow::showSource()
{
    ui->le_custom_file->setText(setup.phaseMagFile);
    ui->i_file->setText(setup.iFile);
    ui->q_file->setText(setup.qFile);
    const SignalSource source = setup.customSource;
    ui->signal_stacked_widget->setCurrentIndex(static_cast<int>(source));
    ui->internal_ratio_button->setChecked(source == SignalSource::Internal);
    ui->mp_load_ratio_button->setChecked(source == SignalSource::MagnitudePhaseFile);
    ui->iq_load_ratio_button->setChecked(source == SignalSource::IQFiles);
}

void MainWindow::showDerivedValues()
{
    ui->line_spacing_input->setText(fixedPoint(setup.sampleRate / setup.fftLength() / 1000.0));
    ui->noise_bw_output->setText(fixedPoint(setup.nbwSrate * setup.sampleRate / 1000000.0));
}

void MainWindow::showNotchInputs(QWidget* from)
{
    const bool notchMode = setup.notchOrCarrier == NotchOrCarrier::Notch;
    if (from != ui->notch_count_input) {
        showNumber(*ui->notch_count_input, static_cast<int>(setup.notchCount));
    }
    if (from != ui->notch_width_input) {
        showNumber(*ui->notch_width_input, setup.notchWidth / 1e6);
    }
    // NOLINTNEXTLINE(clang-analyzer-core.CallAndMessage): a child of the form is never null
    ui->notch_width_input->setEnabled(notchMode);
    if (from != ui->notch_offset_input) {
        showNumber(*ui->notch_offset_input, setup.notchOffset / 1e6);
    }
    ui->notch_depth_input->setEnabled(notchMode);
    if (from != ui->notch_depth_input) {
        showNumber(*ui->notch_depth_input, setup.notchDepth);
    }
}

void MainWindow::showSignalInputs(QWidget* from)
{
    if (from != ui->sample_rate_input) {
        showNumber(*ui->sample_rate_input, setup.sampleRate / 1e6);
    }
    if (from != ui->nbw_srate_input) {
        showNumber(*ui->nbw_srate_input, setup.nbwSrate);
    }
    if (from != ui->fft_length_input) {
        ui->fft_length_input->setCurrentIndex(setup.fftLengthIndex);
    }
    if (from != ui->phase_mode_combobox) {
        ui->phase_mode_combobox->setCurrentIndex(static_cast<int>(setup.phaseMode));
    }
    if (from != ui->seed_input) {
        showNumber(*ui->seed_input, static_cast<int>(setup.seed));
    }
    ui->compensate_checkbox->setEnabled(setup.traceLoaded);
    if (from != ui->compensate_checkbox) {
        ui->compensate_checkbox->setChecked(setup.compensate);
    }
}

void MainWindow::showDataState()
{
    static const char* const texts[] = {"Data valid", "Data invalid", "Calculating ..."};
    const auto state = static_cast<int>(setup.dataState);
    ui->fft_status->setState(state);
    ui->fft_status_label->setText(QLatin1String(texts[state]));
    calculationFocus.setEnabled(*ui->calc_fft_button, setup.dataState != DataState::Calculating);
    ui->actionLoad_SAN_Mag->setEnabled(setup.dataState == DataState::Valid);
    ui->actionSave_Waveform->setEnabled(setup.dataState == DataState::Valid);
}

QString MainWindow::crestFactorText() const
{
    if (setup.crestFactor == 0.0) {
        return QStringLiteral("---");
    }
    return QString::number(setup.crestFactor, 'g', 6) + QLatin1String(" dB");
}

void MainWindow::showServer(QWidget* from)
{
    if (setup.tcpState == 0) {
        ui->tcp_status_label->setText(QStringLiteral("connected"));
    } else if (setup.tcpState == 1) {
        ui->tcp_status_label->setText(QStringLiteral("not connected"));
    }
    if (from != ui->port_input) {
        showNumber(*ui->port_input, setup.tcpPort);
    }
}

void MainWindow::showMeasurement(QWidget* from)
{
    ui->preset_button->setEnabled(setup.measureMode == MeasureMode::Single);
    // Fewer rows may change the picked notch, and its tuning may end the choice.
    ui->measure_notch->setMaximum(setup.notches->items.size());
    if (from != ui->measure_notch) {
        showNumber(*ui->measure_notch, setup.measureNotch);
    }
    ui->measure_mode->setEnabled(setup.measureNotch != 0);
    if (from != ui->measure_mode) {
        ui->measure_mode->setCurrentIndex(static_cast<int>(setup.measureMode));
    }
    ui->measure_button->setEnabled(setup.measureNotch != 0 &&
                                   setup.measureMode == MeasureMode::Single);
}

void MainWindow::showTable()
{
    // The rebuild starts from an empty model; the operator's place in a long table is kept.
    const int scrolledTo = ui->main_table->verticalScrollBar()->value();
    const bool rebuilt = setup.notches->fillTable(setup.effectiveFrequency());
    QStandardItemModel* model = setup.notches->model();
    ui->main_table->selectionModel()->select(
        model->index(setup.measureNotch - 1, 0),
        QItemSelectionModel::Clear | QItemSelectionModel::Select | QItemSelectionModel::Rows);
    const bool carrierMode = setup.notchOrCarrier == NotchOrCarrier::Carrier;
    for (const int column : {1, 2, 3, 5, 6}) {
        ui->main_table->setColumnHidden(column, carrierMode);
    }
    if (carrierMode) {
        model->setHorizontalHeaderItem(4, new QStandardItem(QStringLiteral("Index")));
    }
    if (rebuilt && scrolledTo > 0) {
        ui->main_table->doItemsLayout(); // the new rows give the scroll bar its range
        ui->main_table->verticalScrollBar()->setValue(scrolledTo);
    }
}

void MainWindow::invalidate(QWidget* from)
{
    setup.setDataState(DataState::Invalid);
    notifyPropertyChanged(from);
}

void MainWindow::on_calc_fft_button_clicked()
{
    try {
        setup.setDataState(DataState::Calculating);
        notifyPropertyChanged();
        startCalculation();
    } catch (const std::bad_alloc&) { // there was none even to ask for it
        storeResult({});
    }
}

void MainWindow::startCalculation()
{
    inBackground(
        this,
        [copy = setup.forOtherThread(), running = calculationRunning]() mutable {
            return calculate(copy, *running);
        },
        [this](const CalculationResult& result) { storeResult(result); });
}

void MainWindow::storeResult(const CalculationResult& result)
{
    setup.signal = result.signal;
    setup.crestFactor = result.crestFactor;
    emit fftFinished();
}

// Deliberate: the end of a job makes the data valid even if a parameter changed meanwhile.
void MainWindow::fftCalculationFinished()
{
    setup.setDataState(setup.signal.size() != 0 ? DataState::Valid : DataState::Invalid);
    notifyPropertyChanged();
}

void MainWindow::graphChanged()
{
    setup.notches->fillTable(setup.effectiveFrequency());
    invalidate();
}

void MainWindow::on_quit_button_clicked()
{
    qDebug() << "Quit Clicked";
    close();
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    measurementThread.stop();
    if (*calculationRunning) {
        QMessageBox box;
        box.setText(QStringLiteral("Calculation in Progress"));
        box.setInformativeText(QStringLiteral("Closing...\nPlease Wait"));
        box.setStandardButtons(QMessageBox::Close);
        box.button(QMessageBox::Close)->setText(QStringLiteral("Force Close"));
        box.setDefaultButton(QMessageBox::NoButton);
        box.exec();
        // Deliberate: read once, and never again. Forcing the close of a running calculation
        // hangs the program until it is killed, so no half-finished state is ever saved. The
        // read is volatile because a loop without effect may be removed otherwise.
        const volatile bool running = *calculationRunning;
        while (running) {
        }
    }
    event->accept();
    // The other windows have no parent, and one that stayed open would keep the program alive.
    QApplication::closeAllWindows();
}
