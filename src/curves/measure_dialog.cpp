#include "curves/measure_dialog.h"

#include "base/background.h"
#include "cli/device_argument.h"
#include "dut/device.h"
#include "look/house_style.h"
#include "ui_measure_dialog.h"

#include <QClipboard>
#include <QDir>
#include <QFileDialog>

namespace {

const char figurePrefix[] = "figure_";

QString keyOf(const QWidget& field)
{
    return field.objectName().mid(int(sizeof(figurePrefix)) - 1).replace('_', '-');
}

QList<QLineEdit*> figureFields(const QWidget& dialog)
{
    return dialog.findChildren<QLineEdit*>(QRegularExpression("^" + QString(figurePrefix)));
}

} // namespace

MeasureDialog::MeasureDialog(QWidget* parent)
    : QDialog(parent), ui(std::make_unique<Ui::MeasureDialog>())
{
    ui->setupUi(this);
    setStyleSheet(houseStyleSheet());
    ui->theory_input->lineEdit()->setPlaceholderText(QStringLiteral("none"));
    ui->device_input->addItems(deviceNames());
    ui->device_input->setCurrentText(QStringLiteral("adc")); // its curve has a peak and a range
    ui->buttons->button(QDialogButtonBox::Ok)->setText(QStringLiteral("Measure"));
    for (QAbstractButton* button : ui->buttons->buttons()) {
        button->setIcon(QIcon()); // those of the desktop don't belong to the house's look
    }
    constexpr int breath = 150; // ms
    pause.setSingleShot(true);
    pause.setInterval(breath);
    connectInputs();
    showBench();
}

MeasureDialog::~MeasureDialog() = default;

void MeasureDialog::connectInputs()
{
    connect(&pause, &QTimer::timeout, this, &MeasureDialog::check);
    for (QLineEdit* line : findChildren<QLineEdit*>()) {
        connect(line, &QLineEdit::textChanged, this, &MeasureDialog::scheduleCheck);
    }
    connect(ui->simulated_button, &QRadioButton::toggled, this, &MeasureDialog::showBench);
    connect(ui->device_input, &QComboBox::currentTextChanged, this, &MeasureDialog::showBench);
    connect(ui->browse_button, &QPushButton::clicked, this, &MeasureDialog::browse);
    connect(ui->subtract_button, &QPushButton::clicked, this, &MeasureDialog::browseSubtracted);
    connect(ui->copy_button, &QPushButton::clicked, this,
            [this] { QApplication::clipboard()->setText(commandLineOf(words())); });
    connect(ui->buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(ui->buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

// All files first: configurations are saved under the name that was typed, often without an ending.
void MeasureDialog::browse()
{
    const QString name =
        QFileDialog::getOpenFileName(this, QStringLiteral("Configuration"), QDir::currentPath(),
                                     QStringLiteral("All Files (*);;Config File (*.cfg)"));
    if (!name.isEmpty()) {
        ui->config_input->setText(name);
        ui->notches_input->clear(); // the file has its own
    }
}

void MeasureDialog::browseSubtracted()
{
    const QString name =
        QFileDialog::getOpenFileName(this, QStringLiteral("Measured without the Device"),
                                     QDir::currentPath(), QStringLiteral("Result (*.json)"));
    if (!name.isEmpty()) {
        ui->subtract_input->setText(name);
    }
}

QMap<QString, QString> MeasureDialog::figuresOf(const QString& device) const
{
    QMap<QString, QString> figures;
    const QStringList keys = keysOfDevice(device);
    for (const QLineEdit* field : figureFields(*this)) {
        if (keys.contains(keyOf(*field))) {
            figures[keyOf(*field)] = field->text().trimmed();
        }
    }
    return figures;
}

MeasureOrder MeasureDialog::order() const
{
    MeasureOrder order;
    order.config = ui->config_input->text().trimmed();
    order.notches = ui->notches_input->text().trimmed();
    order.isSimulated = ui->simulated_button->isChecked();
    order.device = ui->device_input->currentText();
    order.figures = figuresOf(order.device);
    order.others = ui->others_input->text().trimmed();
    order.from = ui->from_input->text().trimmed();
    order.to = ui->to_input->text().trimmed();
    order.step = ui->step_input->text().trimmed();
    order.notchRows = ui->notch_input->text().trimmed();
    order.averages = ui->average_input->text().trimmed();
    order.settling = ui->settle_input->text().trimmed();
    order.limit = ui->limit_input->text().trimmed();
    order.thresholds = ui->threshold_input->text().split(' ', Qt::SkipEmptyParts);
    order.theory = ui->theory_input->currentText().trimmed();
    order.subtract = ui->subtract_input->text().trimmed();
    return order;
}

QStringList MeasureDialog::words() const
{
    return wordsOf(order());
}

void MeasureDialog::showBench()
{
    const bool isSimulated = ui->simulated_button->isChecked();
    const QStringList keys = keysOfDevice(ui->device_input->currentText());
    for (QLabel* label : ui->device_box->findChildren<QLabel*>()) {
        auto* field = qobject_cast<QLineEdit*>(label->buddy());
        if (field != nullptr && field != ui->others_input) {
            const bool isOwn = keys.contains(keyOf(*field));
            field->setVisible(isOwn);
            label->setVisible(isOwn);
        }
    }
    ui->device_box->setEnabled(isSimulated);
    ui->settle_input->setPlaceholderText(isSimulated ? "0" : "0.1");
    listTheories();
    scheduleCheck();
}

// To choose from, with the numbers that are typed for the simulated devices. The first is linear
// and has no theory: it makes no distortion.
void MeasureDialog::listTheories()
{
    const QSignalBlocker quiet(ui->theory_input);
    const bool isSimulated = ui->simulated_button->isChecked();
    const QString same = QStringLiteral("same");
    const QString former = ui->theory_input->currentText();
    ui->theory_input->clear();
    ui->theory_input->addItem(QString());
    if (isSimulated) {
        ui->theory_input->addItem(same);
    }
    for (const QString& device : deviceNames().mid(1)) {
        ui->theory_input->addItem(deviceWord(device, figuresOf(device), {}));
    }
    ui->theory_input->setEditText(former == same && !isSimulated ? QString() : former);
}

// Until the check has come back nothing can be started.
void MeasureDialog::scheduleCheck()
{
    constexpr int fitting = 88; // letters; the field itself would break lines within options
    ui->command_text->setPlainText(commandLinesOf(words(), fitting));
    ui->buttons->button(QDialogButtonBox::Ok)->setEnabled(false);
    ++checks;
    pause.start();
}

void MeasureDialog::check()
{
    const int number = checks;
    inBackground(
        this, [typed = words()] { return checkOrder(typed); },
        [this, number](const OrderCheck& checked) {
            if (number == checks) {
                showCheck(checked);
            }
        });
}

void MeasureDialog::showCheck(const OrderCheck& checked)
{
    const bool isGood = checked.failure.isEmpty();
    ui->buttons->button(QDialogButtonBox::Ok)->setEnabled(isGood);
    ui->check_text->setProperty("isGood", isGood);
    ui->check_text->style()->unpolish(ui->check_text); // the sheet looks at the property
    ui->check_text->style()->polish(ui->check_text);
    const QString estimate =
        QStringLiteral("%1 readings, %2.").arg(checked.readings).arg(durationText(checked.seconds));
    ui->check_text->setText(!isGood                    ? checked.failure
                            : checked.notice.isEmpty() ? estimate
                                                       : estimate + '\n' + checked.notice);
    makeRoom();
}

// Long notices take more lines than there were.
void MeasureDialog::makeRoom()
{
    const int wanted = ui->check_text->heightForWidth(ui->check_text->width());
    const int missing = wanted - ui->check_text->height();
    if (missing > 0) {
        resize(width(), height() + missing);
    }
}
