// The main window: owner of the one record, and the place where every input of the operator
// lands. A slot stores into the record, says whether the signal still matches the settings, and
// calls notifyPropertyChanged, the only path from the record to the screen.
//
// The slots are spread over files by concern: main_window.cpp (construction, refresh,
// calculation, closing), main_window_panel.cpp, main_window_table.cpp, main_window_server.cpp,
// main_window_measurement.cpp, main_window_menus.cpp. Slots named on_<object>_<signal> are
// connected by name.
//
// Main thread only. Calculations run in the background, on a copy of the record.
#pragma once

#include "app/kept_focus.h"
#include "instruments/dialogs/devices_dialog.h"
#include "measurement/npr_measurement_thread.h"
#include "setup/measurement_setup.h"

#include <QMainWindow>

#include <atomic>
#include <memory>

class CrestFactorDialog;
class QStandardItem;
class FailureDoor;
class KORemoteException;
class StatusServer;
struct CalculationResult;

namespace Ui {
class MainWindow;
}

class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    // Reads the default configuration and opens the status server on the start port, which only
    // tests choose. Moves the process to the home directory, where the file dialogs start.
    explicit MainWindow(QWidget* parent = nullptr, quint16 startPort = 1000);

    // Writes the default configuration.
    ~MainWindow() override;

signals:
    // A calculation has ended and its result stands in the record.
    void fftFinished();
    // An instrument failed. Emitted on another thread it is dropped with a warning.
    void remoteError(KORemoteException* e);

public slots:
    // Copies the record to all widgets. from is the widget that the operator is moving: its
    // value is not written back. No signals are blocked: a write that changes a widget's value
    // comes back through that widget's slot, rounded and clamped as the widget shows it.
    void notifyPropertyChanged(QWidget* from = nullptr);

    void devices_clicked();
    void crest_factor_clicked();
    void new_connection();
    void read_connection();
    void disconnected();
    void fftCalculationFinished();
    void graphChanged();
    void remoteErrorCalled(KORemoteException* e);
    void newNPR();
    void on_autocalc_notches_button_clicked();
    void on_quit_button_clicked();
    void on_notch_count_input_valueChanged(int value);
    void table_cell_changed(QStandardItem* item);
    void on_fft_length_input_currentIndexChanged(int index);
    void on_notch_width_input_valueChanged(double value);
    void on_notch_offset_input_valueChanged(double value);
    void on_notch_depth_input_valueChanged(double value);
    void on_sample_rate_input_valueChanged(double value);
    void on_nbw_srate_input_valueChanged(double value);
    void on_calc_fft_button_clicked();
    void on_internal_ratio_button_toggled(bool checked);
    void on_mp_load_ratio_button_toggled(bool checked);
    void on_iq_load_ratio_button_toggled(bool checked);
    void on_phase_mode_combobox_currentIndexChanged(int index);
    void on_le_custom_file_button_clicked();
    void on_i_file_button_clicked();
    void on_q_file_button_clicked();
    void on_nc_combobox_currentIndexChanged(int index);
    void on_seed_input_valueChanged(int value);
    void on_port_input_valueChanged(int value);
    void on_sinx_checkbox_toggled(bool checked);
    void on_measure_notch_valueChanged(int value);
    void on_measure_mode_currentIndexChanged(int index);
    void on_actionAbout_triggered();
    void on_actionHelp_triggered();
    void on_preset_button_clicked();
    void on_actionLoad_Cfg_File_triggered();
    void on_actionSave_Cfg_File_triggered();
    void on_compensate_checkbox_toggled(bool checked);
    void on_actionSave_Waveform_triggered();
    void on_actionQuit_triggered();
    void on_actionLoad_SAN_Mag_triggered();
    void on_measure_button_clicked();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    QString crestFactorText() const;
    void showSource();
    void showDerivedValues();
    void showNotchInputs(QWidget* from);
    void showSignalInputs(QWidget* from);
    void showDataState();
    void showServer(QWidget* from);
    void showMeasurement(QWidget* from);
    void showTable();

    void invalidate(QWidget* from = nullptr);
    void startCalculation();
    void storeResult(const CalculationResult& result);
    void connectMeasurement();
    void retireLinks();
    void breakOffLinks();
    void bindTable();
    void connectTable();
    void disconnectTable();
    void selectSource(SignalSource source, bool checked);
    void pickFile(QString& field, const QString& title, const QString& filter);
    void showClient(bool connected);

    std::unique_ptr<Ui::MainWindow> ui;
    DevicesDialog devicesDialog;                          // no parent: a window of its own
    std::unique_ptr<CrestFactorDialog> crestFactorDialog; // points to setup, which never moves
    MeasurementSetup setup;
    std::unique_ptr<StatusServer> statusServer; // tells of setup; the window owns its sockets
    // True while a calculation runs. One flag for all: the first that ends clears it. A calculation
    // may outlive the window.
    std::shared_ptr<std::atomic<bool>> calculationRunning;
    std::shared_ptr<FailureDoor> failureDoor;
    KeptFocus calculationFocus; // of the button that is disabled while a calculation runs
    // Of replaced records: their devices keep the connection until the program ends.
    QVector<std::shared_ptr<InstrumentLink>> retiredLinks;
    NPRMeasurementThread measurementThread;
};
