// Slots of the parameter panel. Parameters of the signal invalidate it; the four inputs that only
// prepare "Auto-Calculate" do not.
#include "app/main_window.h"
#include "ui_main_window.h"

#include <QDebug>
#include <QDir>
#include <QFileDialog>

namespace {

// What the rewriting adds behind the cursor is selected, so that the next digit replaces it.
void rewriteTyped(QDoubleSpinBox& box)
{
    auto* edit = box.findChild<QLineEdit*>();
    const int cursor = edit->cursorPosition();
    box.setValue(box.value());
    const int added = edit->text().size() - cursor;
    if (box.hasFocus() && added > 0 && !edit->hasSelectedText()) {
        edit->setSelection(edit->text().size(), -added);
    }
}

} // namespace

// A row below 0 stands for a stored number that has no row; the number stays.
void MainWindow::on_nc_combobox_currentIndexChanged(int index)
{
    const auto row = static_cast<NotchOrCarrier>(index);
    if (index < 0 || row == setup.notchOrCarrier) {
        return;
    }
    setup.notchOrCarrier = row;
    setup.notches->clear();
    invalidate(ui->nc_combobox);
}

void MainWindow::on_sample_rate_input_valueChanged(double value)
{
    setup.sampleRate = value * 1e6;
    invalidate(ui->sample_rate_input);
}

void MainWindow::on_nbw_srate_input_valueChanged(double value)
{
    setup.nbwSrate = value;
    // Deliberate: names the other widget and rewrites this one with its own value, so that the box
    // always shows the ratio with all its decimals.
    invalidate(ui->sample_rate_input);
    rewriteTyped(*ui->nbw_srate_input);
}

void MainWindow::on_fft_length_input_currentIndexChanged(int index)
{
    if (index < 0) { // a loaded length that has no row stays
        return;
    }
    setup.fftLengthIndex = index;
    qDebug() << "FFT Length Changed To: " << setup.fftLength();
    invalidate(ui->fft_length_input);
}

void MainWindow::on_notch_count_input_valueChanged(int value)
{
    qDebug() << "Notch Count Changed";
    setup.notchCount = static_cast<quint32>(value);
    notifyPropertyChanged(ui->notch_count_input);
}

void MainWindow::on_notch_width_input_valueChanged(double value)
{
    setup.notchWidth = value * 1e6;
    notifyPropertyChanged(ui->notch_width_input);
}

void MainWindow::on_notch_offset_input_valueChanged(double value)
{
    setup.notchOffset = value * 1e6;
    notifyPropertyChanged(ui->notch_offset_input);
}

void MainWindow::on_notch_depth_input_valueChanged(double value)
{
    setup.notchDepth = value;
    notifyPropertyChanged(ui->notch_depth_input);
}

// A change of source fires two slots; the one of the button that was left does nothing, so the
// signal is invalidated once.
void MainWindow::selectSource(SignalSource source, bool checked)
{
    if (checked) {
        setup.customSource = source;
        invalidate();
    }
}

void MainWindow::on_internal_ratio_button_toggled(bool checked)
{
    selectSource(SignalSource::Internal, checked);
}

void MainWindow::on_mp_load_ratio_button_toggled(bool checked)
{
    selectSource(SignalSource::MagnitudePhaseFile, checked);
}

void MainWindow::on_iq_load_ratio_button_toggled(bool checked)
{
    selectSource(SignalSource::IQFiles, checked);
}

// A row below 0 stands for a stored number that has no row; the number stays.
void MainWindow::on_phase_mode_combobox_currentIndexChanged(int index)
{
    if (index >= 0) {
        setup.phaseMode = static_cast<PhaseLaw>(index);
        invalidate();
    }
}

void MainWindow::on_seed_input_valueChanged(int value)
{
    setup.seed = static_cast<quint32>(value);
    invalidate(ui->seed_input);
}

void MainWindow::on_sinx_checkbox_toggled(bool checked)
{
    setup.sinxCompensation = checked;
    invalidate(ui->sinx_checkbox);
}

void MainWindow::on_compensate_checkbox_toggled(bool checked)
{
    setup.compensate = checked;
    invalidate(ui->compensate_checkbox);
}

void MainWindow::pickFile(QString& field, const QString& title, const QString& filter)
{
    const QString name = QFileDialog::getOpenFileName(this, title, QDir::homePath(), filter);
    if (name.isEmpty()) {
        return;
    }
    field = name;
    invalidate();
}

void MainWindow::on_le_custom_file_button_clicked()
{
    pickFile(setup.phaseMagFile, QStringLiteral("Load Magnitue / Phase File"),
             QStringLiteral("Magnitude/Phase File (*.pmc)"));
}

void MainWindow::on_i_file_button_clicked()
{
    pickFile(setup.iFile, QStringLiteral("Load I File"), QStringLiteral("WAV File (*.wav)"));
}

void MainWindow::on_q_file_button_clicked()
{
    pickFile(setup.qFile, QStringLiteral("Load Q File"), QStringLiteral("WAV File (*.wav)"));
}
