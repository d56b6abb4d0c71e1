// The slots of the devices dialog: each stores into the record and refreshes.
#include "instruments/dialogs/devices_dialog.h"

#include "ui_devices_dialog.h"

#include <algorithm>

const DevicesDialog::Setting& DevicesDialog::settingOf(const QWidget* widget) const
{
    return *std::find_if(settings.begin(), settings.end(),
                         [widget](const Setting& setting) { return setting.widget == widget; });
}

template <class Field, class Value> void DevicesDialog::store(QWidget* widget, Value value)
{
    *std::get<Field*>(settingOf(widget).field) = static_cast<Field>(value);
    notifyPropertyChanged(widget);
}

// A row below 0 stands for a stored value that has no row; the value stays.
template <class Field> void DevicesDialog::storeRow(QComboBox* box, int row)
{
    if (row >= 0) {
        store<Field>(box, row);
    }
}

void DevicesDialog::storeText(QLineEdit* line)
{
    line->setModified(false); // no longer being typed
    store<QString>(line, line->text());
}

// Text that is no number stores nothing, and the refresh brings the former value back.
void DevicesDialog::storeNumber(QLineEdit* line)
{
    line->setModified(false);
    bool isNumber = false;
    const double value = line->text().toDouble(&isNumber);
    if (isNumber) {
        const Setting& setting = settingOf(line);
        *std::get<double*>(setting.field) = value * setting.unit;
    }
    notifyPropertyChanged();
}

void DevicesDialog::on_g_type_currentIndexChanged(int index)
{
    storeRow<quint32>(ui->g_type, index);
}

void DevicesDialog::on_a_type_currentIndexChanged(int index)
{
    storeRow<quint32>(ui->a_type, index);
}

void DevicesDialog::on_m_type_currentIndexChanged(int index)
{
    storeRow<quint32>(ui->m_type, index);
    emit generatorFrequencyChanged();
}

void DevicesDialog::on_g_interface_currentIndexChanged(int index)
{
    storeRow<InterfaceKind>(ui->g_interface, index);
}

void DevicesDialog::on_a_interface_currentIndexChanged(int index)
{
    storeRow<InterfaceKind>(ui->a_interface, index);
}

void DevicesDialog::on_m_interface_currentIndexChanged(int index)
{
    storeRow<InterfaceKind>(ui->m_interface, index);
}

void DevicesDialog::on_g_gpib_addr_valueChanged(int arg1)
{
    store<quint32>(ui->g_gpib_addr, arg1);
}

void DevicesDialog::on_a_gpib_addr_valueChanged(int arg1)
{
    store<quint32>(ui->a_gpib_addr, arg1);
}

void DevicesDialog::on_m_gpib_addr_valueChanged(int arg1)
{
    store<quint32>(ui->m_gpib_addr, arg1);
}

void DevicesDialog::on_g_address_editingFinished()
{
    storeText(ui->g_address);
}

void DevicesDialog::on_a_address_editingFinished()
{
    storeText(ui->a_address);
}

void DevicesDialog::on_m_address_editingFinished()
{
    storeText(ui->m_address);
}

void DevicesDialog::on_g_port_currentIndexChanged(int index)
{
    storeRow<quint32>(ui->g_port, index);
}

void DevicesDialog::on_a_port_currentIndexChanged(int index)
{
    storeRow<quint32>(ui->a_port, index);
}

void DevicesDialog::on_m_port_currentIndexChanged(int index)
{
    storeRow<quint32>(ui->m_port, index);
}

void DevicesDialog::on_g_level_valueChanged(double arg1)
{
    store<double>(ui->g_level, arg1);
}

void DevicesDialog::on_a_level_valueChanged(double arg1)
{
    store<double>(ui->a_level, arg1);
}

void DevicesDialog::on_m_level_valueChanged(double arg1)
{
    store<double>(ui->m_level, arg1);
}

void DevicesDialog::on_g_frequency_editingFinished()
{
    storeNumber(ui->g_frequency);
    emit generatorFrequencyChanged();
}

void DevicesDialog::on_a_frequency_editingFinished()
{
    storeNumber(ui->a_frequency);
}

void DevicesDialog::on_m_frequency_editingFinished()
{
    storeNumber(ui->m_frequency);
    emit generatorFrequencyChanged();
}

void DevicesDialog::on_a_span_editingFinished()
{
    storeNumber(ui->a_span);
}

void DevicesDialog::on_a_sweeptime_editingFinished()
{
    storeNumber(ui->a_sweeptime);
}

void DevicesDialog::on_a_rbw_currentIndexChanged(int index)
{
    storeRow<quint32>(ui->a_rbw, index);
}

void DevicesDialog::on_a_vbw_currentIndexChanged(int index)
{
    storeRow<quint32>(ui->a_vbw, index);
}

void DevicesDialog::on_a_attenuation_valueChanged(int arg1)
{
    store<quint32>(ui->a_attenuation, arg1);
}

void DevicesDialog::on_a_atten_auto_toggled(bool checked)
{
    store<bool>(ui->a_atten_auto, checked);
}

void DevicesDialog::on_a_swt_auto_toggled(bool checked)
{
    setup->analyzer.setAutoSweepTime(checked);
    notifyPropertyChanged(ui->a_swt_auto);
}

void DevicesDialog::on_m_attenuation_valueChanged(int arg1)
{
    store<quint32>(ui->m_attenuation, arg1);
}

void DevicesDialog::on_m_if_input_toggled(bool checked)
{
    store<bool>(ui->m_if_input, checked);
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
