// The instruments' window on a machine with a VISA library.
#include "instruments/dialogs/devices_dialog.h"

#include "kit/window_driver.h"

#include <QStandardItemModel>
#include <QTabWidget>
#include <QtTest>

class TestDevicesDialogWithVisa : public QObject
{
    Q_OBJECT

private slots:
    void onlyOneVisaRowIsUnselectable();
    void aPickedInterfaceIsStoredAndTurnsItsPage();
};

void TestDevicesDialogWithVisa::onlyOneVisaRowIsUnselectable()
{
    const DevicesDialog dialog;
    for (const char* name : {"g_interface", "a_interface", "m_interface"}) {
        const auto* box = dialog.findChild<QComboBox*>(name);
        const auto* model = qobject_cast<QStandardItemModel*>(box->model());
        for (const int row : {0, 1, 3, 4, 5}) {
            QVERIFY(model->item(row)->isEnabled());
        }
        QVERIFY(!model->item(2)->isEnabled());
    }
}

void TestDevicesDialogWithVisa::aPickedInterfaceIsStoredAndTurnsItsPage()
{
    MeasurementSetup setup;
    DevicesDialog dialog;
    dialog.setSetup(&setup, {});
    dialog.show();
    const WindowDriver operate(dialog);
    const Instrument* const instruments[] = {&setup.generator, &setup.analyzer, &setup.microwave};
    for (int tab = 0; tab < 3; ++tab) {
        operate.find<QTabWidget>("tabWidget")->setCurrentIndex(tab);
        const QByteArray prefix = QByteArray("gam").mid(tab, 1);
        auto* box = operate.find<QComboBox>(prefix + "_interface");
        const auto* pages = operate.find<QStackedWidget>(prefix + "_stacked_widget");
        QTest::keyClick(box, Qt::Key_Home);
        for (const int row : {0, 1, 3, 4, 5}) {
            QCOMPARE(static_cast<int>(instruments[tab]->interfaceKind), row);
            QCOMPARE(pages->currentIndex(), row < 2 ? 0 : 1);
            QTest::keyClick(box, Qt::Key_Down);
        }
    }
}

QTEST_MAIN(TestDevicesDialogWithVisa)
#include "test_devices_dialog_with_visa.moc"
