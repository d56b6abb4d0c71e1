// What the instruments' window is made of: its tabs, rows, ranges and explanations.
#include "instruments/dialogs/devices_dialog.h"

#include "kit/window_driver.h"

#include <QSerialPortInfo>
#include <QStandardItemModel>
#include <QTabWidget>
#include <QtTest>

class TestDevicesDialogForm : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void titleTabsAndSize();
    void devicesAreListed();
    void bandwidthRowsAreTheirCodes();
    void withoutVisaTheSocketIsLeft();
    void numbersHaveTheirRanges_data();
    void numbersHaveTheirRanges();
    void decimalPointsDoNotDependOnTheSystem();
    void everyInputExplainsItself();

private:
    QStandardItem* rowOf(const char* box, int row) const
    {
        auto* model = qobject_cast<QStandardItemModel*>(operate->find<QComboBox>(box)->model());
        return model->item(row);
    }

    std::unique_ptr<MeasurementSetup> setup;
    std::unique_ptr<DevicesDialog> dialog;
    std::unique_ptr<WindowDriver> operate;
};

void TestDevicesDialogForm::init()
{
    setup = std::make_unique<MeasurementSetup>();
    dialog = std::make_unique<DevicesDialog>();
    dialog->setSetup(setup.get(), {});
    dialog->show();
    operate = std::make_unique<WindowDriver>(*dialog);
}

void TestDevicesDialogForm::cleanup()
{
    dialog.reset();
}

void TestDevicesDialogForm::titleTabsAndSize()
{
    QCOMPARE(dialog->windowTitle(), QString("Devices"));
    const auto* tabs = operate->find<QTabWidget>("tabWidget");
    QCOMPARE(tabs->count(), 3);
    QCOMPARE(tabs->tabText(0), QString("Signal Generator"));
    QCOMPARE(tabs->tabText(1), QString("Analyzer"));
    QCOMPARE(tabs->tabText(2), QString("Microwave Generator"));
    QCOMPARE(dialog->minimumSize(), dialog->maximumSize());
    QVERIFY(!dialog->isModal());
    QVERIFY(dialog->parent() == nullptr);
    // Qt adds the system menu to a close button.
    QCOMPARE(dialog->windowFlags() & ~Qt::WindowType_Mask,
             Qt::WindowTitleHint | Qt::WindowCloseButtonHint | Qt::WindowSystemMenuHint);
}

void TestDevicesDialogForm::devicesAreListed()
{
    const auto rows = [this](const char* name) { return operate->rowTexts(name).join(' '); };
    QCOMPARE(rows("g_type"), QString("RIGL LYR ALTAIR DENB ORI PHD(A) PHD(B) CYG KAU(A) KAU(B)"));
    QCOMPARE(rows("a_type"), QString("ARA HYA ANTA MUS DOR CRU IND GRU NOR"));
    QCOMPARE(rows("m_type"), QString("None TAU ZUB"));
    for (const char* box : {"g_interface", "a_interface", "m_interface"}) {
        QCOMPARE(rows(box), QString("GPIB0 GPIB1 LAN (TLNK) LAN (VXI-11) LAN (Socket) "
                                    "LAN (HiSLIP) RS232"));
    }
}

void TestDevicesDialogForm::bandwidthRowsAreTheirCodes()
{
    const QString expected =
        "Auto|1 Hz|2 Hz|3 Hz|5 Hz|10 Hz|20 Hz|30 Hz|50 Hz|100 Hz|200 Hz|300 Hz|"
        "500 Hz|1 kHz|2 kHz|3 kHz|5 kHz|10 kHz|20 kHz|30 kHz|50 kHz|100 kHz|"
        "200 kHz|300 kHz|500 kHz|1 MHz|2 MHz|3 MHz|5 MHz|10 MHz";
    for (const char* name : {"a_rbw", "a_vbw"}) {
        QCOMPARE(operate->rowTexts(name).join('|'), expected);
    }
}

void TestDevicesDialogForm::withoutVisaTheSocketIsLeft()
{
    for (const char* box : {"g_interface", "a_interface", "m_interface"}) {
        for (const int row : {0, 1, 2, 3, 5}) {
            QVERIFY(!rowOf(box, row)->isEnabled());
        }
        QVERIFY(rowOf(box, 4)->isEnabled());
        QCOMPARE(rowOf(box, 6)->isEnabled(), !QSerialPortInfo::availablePorts().isEmpty());
    }
}

void TestDevicesDialogForm::numbersHaveTheirRanges_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QList<double>>("expected"); // minimum, maximum, step, value before any record
    const auto row = [](const char* name, const QList<double>& expected) {
        QTest::newRow(name) << QByteArray(name) << expected;
    };
    row("g_gpib_addr", {0, 30, 1, 20});
    row("a_gpib_addr", {0, 30, 1, 20});
    row("m_gpib_addr", {0, 30, 1, 20});
    row("g_level", {-1000, 1000, 0.5, -20});
    row("a_level", {-1000, 1000, 0.5, 0});
    row("m_level", {-200, 200, 0.5, -10});
    row("a_attenuation", {0, 1000, 5, 0});
    row("m_attenuation", {0, 110, 10, 0});
}

void TestDevicesDialogForm::numbersHaveTheirRanges()
{
    QFETCH(QByteArray, name);
    const DevicesDialog fresh;
    const auto* box = fresh.findChild<QAbstractSpinBox*>(name);
    const QList<double> actual = {
        box->property("minimum").toDouble(), box->property("maximum").toDouble(),
        box->property("singleStep").toDouble(), box->property("value").toDouble()};
    QTEST(actual, "expected");
}

void TestDevicesDialogForm::decimalPointsDoNotDependOnTheSystem()
{
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    DevicesDialog german;
    german.setSetup(setup.get(), {});
    auto* level = german.findChild<QDoubleSpinBox*>("g_level");
    level->setValue(-12.5);
    QCOMPARE(level->text(), QString("-12.50"));
    QCOMPARE(german.locale(), QLocale(QLocale::English, QLocale::UnitedStates));
    QLocale::setDefault(before);
}

void TestDevicesDialogForm::everyInputExplainsItself()
{
    const QList<QWidget*> all = dialog->findChildren<QWidget*>();
    int explained = 0;
    for (const QWidget* each : all) {
        const bool input = each->inherits("QComboBox") || each->inherits("QAbstractSpinBox") ||
                           each->inherits("QAbstractButton") || each->inherits("QLineEdit");
        const bool own = each->objectName().startsWith("g_") ||
                         each->objectName().startsWith("a_") || each->objectName().startsWith("m_");
        if (input && own) {
            QVERIFY2(!each->toolTip().isEmpty(), qPrintable(each->objectName()));
            QCOMPARE(each->whatsThis(), each->toolTip());
            ++explained;
        }
    }
    QVERIFY2(explained >= 30, qPrintable(QString::number(explained)));
}

QTEST_MAIN(TestDevicesDialogForm)
#include "test_devices_dialog_form.moc"
