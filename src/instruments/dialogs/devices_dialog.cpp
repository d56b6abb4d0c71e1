#include "instruments/dialogs/devices_dialog.h"

#include "look/house_style.h"
#include "remote/rs232_interface.h"
#include "remote/visa_function_table.h"
#include "ui_devices_dialog.h"

#include <QSerialPortInfo>
#include <QSignalBlocker>

#include <initializer_list>

namespace {

constexpr int tlnkRow = 2;
constexpr int rs232Row = 6;

// The instruments of this link are no longer made; a saved configuration may still hold it.
bool tlnkSelectable()
{
    return false;
}

void disableRow(QComboBox* box, int row)
{
    box->model()->setData(box->model()->index(row, 0), QVariant(0), Qt::UserRole - 1);
}

QStringList systemPorts()
{
    QStringList names;
    for (const QSerialPortInfo& port : QSerialPortInfo::availablePorts()) {
        names.append(port.portName());
    }
    return names;
}

QString inMegahertz(double hertz)
{
    return QString::number(hertz / 1e6, 'f', 6);
}

void appendPorts(QComboBox* box, const QStringList& names, quint32 row)
{
    // Filling an empty list selects its first row, which must not reach the record.
    const QSignalBlocker blocker(box);
    box->addItems(names);
    box->setCurrentIndex(static_cast<int>(row));
}

int pageOf(InterfaceKind kind)
{
    switch (kind) {
    case InterfaceKind::LanTlnk:
    case InterfaceKind::LanVxi11:
    case InterfaceKind::LanSocket:
    case InterfaceKind::LanHislip:
        return 1;
    case InterfaceKind::Rs232:
        return 2;
    default:
        return 0;
    }
}

} // namespace

struct DevicesDialog::CommonWidgets
{
    QComboBox* type;
    QComboBox* interface;
    QLineEdit* message;
    QStackedWidget* pages;
    QSpinBox* gpibAddress;
    QLineEdit* address;
    QLineEdit* frequency;
    QDoubleSpinBox* level;
    QPushButton* set;
    QPushButton* reset;
};

DevicesDialog::DevicesDialog(QWidget* parent)
    : QDialog(parent, Qt::WindowTitleHint | Qt::WindowCloseButtonHint),
      ui(std::make_unique<Ui::DevicesDialog>())
{
    ui->setupUi(this);
    setStyleSheet(houseStyleSheet());
    ensurePolished();
    setFixedSize(sizeHint());
    connect(ui->ok_button, &QPushButton::clicked, this, &QDialog::close);
    disableMissingInterfaces();
}

DevicesDialog::~DevicesDialog() = default;

DevicesDialog::CommonWidgets DevicesDialog::generatorWidgets() const
{
    return {ui->g_type,      ui->g_interface, ui->g_message,   ui->g_stacked_widget,
            ui->g_gpib_addr, ui->g_address,   ui->g_frequency, ui->g_level,
            ui->g_set,       ui->g_reset};
}

DevicesDialog::CommonWidgets DevicesDialog::analyzerWidgets() const
{
    return {ui->a_type,      ui->a_interface, ui->a_message,   ui->a_stacked_widget,
            ui->a_gpib_addr, ui->a_address,   ui->a_frequency, ui->a_level,
            ui->a_set,       ui->a_reset};
}

DevicesDialog::CommonWidgets DevicesDialog::microwaveWidgets() const
{
    return {ui->m_type,      ui->m_interface, ui->m_message,   ui->m_stacked_widget,
            ui->m_gpib_addr, ui->m_address,   ui->m_frequency, ui->m_level,
            ui->m_set,       ui->m_reset};
}

void DevicesDialog::disableMissingInterfaces()
{
    const bool visa = visaAvailable();
    const bool serial = serialPortsAvailable();
    for (QComboBox* box : {ui->g_interface, ui->a_interface, ui->m_interface}) {
        if (!visa) {
            for (const int row : {0, 1, 2, 3, 5}) {
                disableRow(box, row);
            }
        } else if (!tlnkSelectable()) {
            disableRow(box, tlnkRow);
        }
        if (!serial) {
            disableRow(box, rs232Row);
        }
    }
}

void DevicesDialog::setSetup(MeasurementSetup* newSetup)
{
    setSetup(newSetup, systemPorts());
}

void DevicesDialog::setSetup(MeasurementSetup* newSetup, const QStringList& portNames)
{
    setup = newSetup;
    generatorSerial.setInstrument(&setup->generator);
    analyzerSerial.setInstrument(&setup->analyzer);
    microwaveSerial.setInstrument(&setup->microwave);
    appendPorts(ui->g_port, portNames, setup->generator.rs232Port);
    appendPorts(ui->a_port, portNames, setup->analyzer.rs232Port);
    appendPorts(ui->m_port, portNames, setup->microwave.rs232Port);
    notifyPropertyChanged();
}

void DevicesDialog::notifyPropertyChanged(QWidget* from)
{
    showCommon(generatorWidgets(), setup->generator, from);
    showCommon(analyzerWidgets(), setup->analyzer, from);
    showCommon(microwaveWidgets(), setup->microwave, from);
    showAnalyzer(from);
    showMicrowave(from);
    emit instrumentsChanged();
}

void DevicesDialog::showCommon(const CommonWidgets& widgets, const Instrument& instrument,
                               QWidget* from)
{
    if (from != widgets.type) {
        widgets.type->setCurrentIndex(static_cast<int>(instrument.device));
    }
    if (from != widgets.interface) {
        widgets.interface->setCurrentIndex(static_cast<int>(instrument.interfaceKind));
    }
    widgets.message->setText(instrument.deviceMessage());
    if (from != widgets.gpibAddress) {
        widgets.gpibAddress->setValue(static_cast<int>(instrument.gpibAddress));
    }
    if (from != widgets.address) {
        widgets.address->setText(instrument.ipAddress);
    }
    widgets.pages->setCurrentIndex(pageOf(instrument.interfaceKind));
    widgets.frequency->setText(inMegahertz(instrument.frequency));
    if (from != widgets.level) {
        widgets.level->setValue(instrument.level);
    }
    widgets.set->setEnabled(instrument.initialized());
    widgets.reset->setEnabled(instrument.initialized());
}

void DevicesDialog::showAnalyzer(QWidget* from)
{
    const Analyzer& analyzer = setup->analyzer;
    if (from != ui->a_rbw) {
        ui->a_rbw->setCurrentIndex(static_cast<int>(analyzer.rbwCode));
    }
    if (from != ui->a_vbw) {
        ui->a_vbw->setCurrentIndex(static_cast<int>(analyzer.vbwCode));
    }
    ui->a_span->setText(inMegahertz(analyzer.span));
    if (from != ui->a_attenuation) {
        ui->a_attenuation->setValue(static_cast<int>(analyzer.attenuation));
    }
    ui->a_attenuation->setEnabled(!analyzer.autoAttenuation);
    ui->a_sweeptime->setText(QString::number(analyzer.sweepTime, 'f', 6));
    ui->a_sweeptime->setEnabled(!analyzer.autoSweepTime);
    if (from != ui->a_atten_auto) {
        ui->a_atten_auto->setChecked(analyzer.autoAttenuation);
    }
    if (from != ui->a_swt_auto) {
        ui->a_swt_auto->setChecked(analyzer.autoSweepTime);
    }
}

void DevicesDialog::showMicrowave(QWidget* from)
{
    const MicrowaveGenerator& microwave = setup->microwave;
    if (from != ui->m_attenuation) {
        ui->m_attenuation->setValue(static_cast<int>(microwave.attenuation));
    }
    if (from != ui->m_if_input) {
        ui->m_if_input->setChecked(microwave.ifInput);
    }
    // Row 2, "ZUB", is the only model with an IF input and an output attenuator.
    const bool hasIfInput = microwave.device == 2;
    const bool driven = microwave.ifInput && hasIfInput;
    ui->m_init->setEnabled(microwave.device != 0);
    ui->m_level->setEnabled(!driven);
    ui->m_if_input->setEnabled(hasIfInput);
    ui->m_attenuation->setEnabled(driven);
}
