#include "instruments/dialogs/devices_dialog.h"

#include "look/house_style.h"
#include "look/typed_input.h"
#include "remote/rs232_interface.h"
#include "remote/visa_function_table.h"
#include "ui_devices_dialog.h"

#include <QSerialPortInfo>
#include <QSignalBlocker>

#include <initializer_list>

namespace {

constexpr double megahertz = 1e6; // Hz
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

// Shows the value of a setting in its widget, of whichever kind that is.
struct Show
{
    QWidget* widget;
    double unit;

    void operator()(const quint32* number) const
    {
        if (auto* box = qobject_cast<QComboBox*>(widget)) {
            box->setCurrentIndex(static_cast<int>(*number));
        } else {
            showNumber(*static_cast<QSpinBox*>(widget), static_cast<int>(*number));
        }
    }
    void operator()(const InterfaceKind* kind) const
    {
        static_cast<QComboBox*>(widget)->setCurrentIndex(static_cast<int>(*kind));
    }
    void operator()(const double* number) const
    {
        if (auto* box = qobject_cast<QDoubleSpinBox*>(widget)) {
            showNumber(*box, *number / unit);
        } else {
            showText(*static_cast<QLineEdit*>(widget), QString::number(*number / unit, 'f', 6));
        }
    }
    void operator()(const bool* isOn) const { static_cast<QCheckBox*>(widget)->setChecked(*isOn); }
    void operator()(const QString* text) const
    {
        showText(*static_cast<QLineEdit*>(widget), *text);
    }
};

} // namespace

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

// In the order of the refresh.
std::vector<DevicesDialog::Setting> DevicesDialog::listSettings()
{
    SignalGenerator& generator = setup->generator;
    Analyzer& analyzer = setup->analyzer;
    MicrowaveGenerator& microwave = setup->microwave;
    return {
        {ui->g_type, &generator.device},
        {ui->a_type, &analyzer.device},
        {ui->m_type, &microwave.device},
        {ui->g_interface, &generator.interfaceKind},
        {ui->a_interface, &analyzer.interfaceKind},
        {ui->m_interface, &microwave.interfaceKind},
        {ui->g_gpib_addr, &generator.gpibAddress},
        {ui->a_gpib_addr, &analyzer.gpibAddress},
        {ui->m_gpib_addr, &microwave.gpibAddress},
        {ui->g_address, &generator.ipAddress},
        {ui->a_address, &analyzer.ipAddress},
        {ui->m_address, &microwave.ipAddress},
        {ui->g_port, &generator.rs232Port},
        {ui->a_port, &analyzer.rs232Port},
        {ui->m_port, &microwave.rs232Port},
        {ui->g_frequency, &generator.frequency, megahertz},
        {ui->g_level, &generator.level},
        {ui->a_frequency, &analyzer.frequency, megahertz},
        {ui->a_level, &analyzer.level},
        {ui->a_rbw, &analyzer.rbwCode},
        {ui->a_vbw, &analyzer.vbwCode},
        {ui->a_span, &analyzer.span, megahertz},
        {ui->a_attenuation, &analyzer.attenuation},
        {ui->a_sweeptime, &analyzer.sweepTime},
        {ui->a_atten_auto, &analyzer.autoAttenuation},
        {ui->a_swt_auto, &analyzer.autoSweepTime},
        {ui->m_frequency, &microwave.frequency, megahertz},
        {ui->m_level, &microwave.level},
        {ui->m_attenuation, &microwave.attenuation},
        {ui->m_if_input, &microwave.ifInput},
    };
}

std::vector<DevicesDialog::LinkDisplay> DevicesDialog::listLinks()
{
    return {
        {&setup->generator, ui->g_message, ui->g_stacked_widget, ui->g_set, ui->g_reset},
        {&setup->analyzer, ui->a_message, ui->a_stacked_widget, ui->a_set, ui->a_reset},
        {&setup->microwave, ui->m_message, ui->m_stacked_widget, ui->m_set, ui->m_reset},
    };
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
    settings = listSettings();
    for (const Setting& setting : settings) {
        if (auto* line = qobject_cast<QLineEdit*>(setting.widget)) {
            line->setModified(false); // what is being typed belongs to the former record
        }
    }
    links = listLinks();
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
    for (const Setting& setting : settings) {
        if (setting.widget != from) {
            std::visit(Show{setting.widget, setting.unit}, setting.field);
        }
    }
    for (const LinkDisplay& link : links) {
        link.message->setText(link.instrument->deviceMessage());
        link.pages->setCurrentIndex(pageOf(link.instrument->interfaceKind));
        const bool connected = link.instrument->initialized();
        link.set->setEnabled(connected);
        link.reset->setEnabled(connected);
    }
    showAvailability();
    emit instrumentsChanged();
}

void DevicesDialog::showAvailability()
{
    ui->a_attenuation->setEnabled(!setup->analyzer.autoAttenuation);
    ui->a_sweeptime->setEnabled(!setup->analyzer.autoSweepTime);
    // Row 2, "ZUB", is the only model with an IF input and an output attenuator.
    const bool hasIfInput = setup->microwave.device == 2;
    const bool driven = setup->microwave.ifInput && hasIfInput;
    ui->m_init->setEnabled(setup->microwave.device != 0);
    ui->m_level->setEnabled(!driven);
    ui->m_if_input->setEnabled(hasIfInput);
    ui->m_attenuation->setEnabled(driven);
}
