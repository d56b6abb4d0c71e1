// The slots of the devices dialog: each stores into the record and refreshes.
#include "instruments/dialogs/devices_dialog.h"

#include "ui_devices_dialog.h"

template <class Value> void DevicesDialog::store(Value& field, Value value, QWidget* from)
{
    field = value;
    notifyPropertyChanged(from);
}

// A row below 0 stands for a stored value that has no row; the value stays.
void DevicesDialog::storeRow(quint32& field, int row, QComboBox* from)
{
    if (row >= 0) {
        store(field, static_cast<quint32>(row), from);
    }
}

void DevicesDialog::storeInterface(Instrument& instrument, int row, QComboBox* from)
{
    if (row >= 0) {
        store(instrument.interfaceKind, static_cast<InterfaceKind>(row), from);
    }
}

// Text that is no number stores nothing, and the refresh brings the former value back.
void DevicesDialog::storeNumber(double& field, const QLineEdit* text, double factor)
{
    bool isNumber = false;
    const double value = text->text().toDouble(&isNumber);
    if (isNumber) {
        field = value * factor;
    }
    notifyPropertyChanged();
}

void DevicesDialog::on_g_type_currentIndexChanged(int index)
{
    storeRow(setup->generator.device, index, ui->g_type);
}

void DevicesDialog::on_a_type_currentIndexChanged(int index)
{
    storeRow(setup->analyzer.device, index, ui->a_type);
}

void DevicesDialog::on_m_type_currentIndexChanged(int index)
{
    storeRow(setup->microwave.device, index, ui->m_type);
    emit generatorFrequencyChanged();
}

void DevicesDialog::on_g_interface_currentIndexChanged(int index)
{
    storeInterface(setup->generator, index, ui->g_interface);
}

void DevicesDialog::on_a_interface_currentIndexChanged(int index)
{
    storeInterface(setup->analyzer, index, ui->a_interface);
}

void DevicesDialog::on_m_interface_currentIndexChanged(int index)
{
    storeInterface(setup->microwave, index, ui->m_interface);
}

void DevicesDialog::on_g_gpib_addr_valueChanged(int arg1)
{
    store(setup->generator.gpibAddress, static_cast<quint32>(arg1), ui->g_gpib_addr);
}

void DevicesDialog::on_a_gpib_addr_valueChanged(int arg1)
{
    store(setup->analyzer.gpibAddress, static_cast<quint32>(arg1), ui->a_gpib_addr);
}

void DevicesDialog::on_m_gpib_addr_valueChanged(int arg1)
{
    store(setup->microwave.gpibAddress, static_cast<quint32>(arg1), ui->m_gpib_addr);
}

void DevicesDialog::on_g_address_editingFinished()
{
    store(setup->generator.ipAddress, ui->g_address->text(), ui->g_address);
}

void DevicesDialog::on_a_address_editingFinished()
{
    store(setup->analyzer.ipAddress, ui->a_address->text(), ui->a_address);
}

void DevicesDialog::on_m_address_editingFinished()
{
    store(setup->microwave.ipAddress, ui->m_address->text(), ui->m_address);
}

void DevicesDialog::on_g_port_currentIndexChanged(int index)
{
    storeRow(setup->generator.rs232Port, index, ui->g_port);
}

void DevicesDialog::on_a_port_currentIndexChanged(int index)
{
    storeRow(setup->analyzer.rs232Port, index, ui->a_port);
}

void DevicesDialog::on_m_port_currentIndexChanged(int index)
{
    storeRow(setup->microwave.rs232Port, index, ui->m_port);
}

void DevicesDialog::on_g_level_valueChanged(double arg1)
{
    store(setup->generator.level, arg1, ui->g_level);
}

void DevicesDialog::on_a_level_valueChanged(double arg1)
{
    store(setup->analyzer.level, arg1, ui->a_level);
}

void DevicesDialog::on_m_level_valueChanged(double arg1)
{
    store(setup->microwave.level, arg1, ui->m_level);
}

void DevicesDialog::on_g_frequency_editingFinished()
{
    storeNumber(setup->generator.frequency, ui->g_frequency, 1e6);
    emit generatorFrequencyChanged();
}

void DevicesDialog::on_a_frequency_editingFinished()
{
    storeNumber(setup->analyzer.frequency, ui->a_frequency, 1e6);
}

void DevicesDialog::on_m_frequency_editingFinished()
{
    storeNumber(setup->microwave.frequency, ui->m_frequency, 1e6);
    emit generatorFrequencyChanged();
}

void DevicesDialog::on_a_span_editingFinished()
{
    storeNumber(setup->analyzer.span, ui->a_span, 1e6);
}

void DevicesDialog::on_a_sweeptime_editingFinished()
{
    storeNumber(setup->analyzer.sweepTime, ui->a_sweeptime, 1.0);
}

void DevicesDialog::on_a_rbw_currentIndexChanged(int index)
{
    storeRow(setup->analyzer.rbwCode, index, ui->a_rbw);
}

void DevicesDialog::on_a_vbw_currentIndexChanged(int index)
{
    storeRow(setup->analyzer.vbwCode, index, ui->a_vbw);
}

void DevicesDialog::on_a_attenuation_valueChanged(int arg1)
{
    store(setup->analyzer.attenuation, static_cast<quint32>(arg1), ui->a_attenuation);
}

void DevicesDialog::on_a_atten_auto_toggled(bool checked)
{
    store(setup->analyzer.autoAttenuation, checked, ui->a_atten_auto);
}

void DevicesDialog::on_a_swt_auto_toggled(bool checked)
{
    setup->analyzer.setAutoSweepTime(checked);
    notifyPropertyChanged(ui->a_swt_auto);
}

void DevicesDialog::on_m_attenuation_valueChanged(int arg1)
{
    store(setup->microwave.attenuation, static_cast<quint32>(arg1), ui->m_attenuation);
}

void DevicesDialog::on_m_if_input_toggled(bool checked)
{
    store(setup->microwave.ifInput, checked, ui->m_if_input);
}

void DevicesDialog::on_g_rs232configure_linkActivated(const QString& link)
{
    if (link == QLatin1String("#g_rs232configure")) {
        generatorSerial.show();
    }
}

void DevicesDialog::on_a_rs232configure_linkActivated(const QString& link)
{
    if (link == QLatin1String("#a_rs232configure")) {
        analyzerSerial.show();
    }
}

void DevicesDialog::on_m_rs232configure_linkActivated(const QString& link)
{
    if (link == QLatin1String("#m_rs232configure")) {
        microwaveSerial.show();
    }
}
