// The instruments' window on a machine with a VISA library.
#include "instruments/dialogs/devices_dialog.h"

#include <QComboBox>
#include <QStandardItemModel>
#include <QtTest>

class TestDevicesDialogWithVisa : public QObject
{
    Q_OBJECT

private slots:
    void onlyOneVisaRowIsUnselectable();
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

QTEST_MAIN(TestDevicesDialogWithVisa)
#include "test_devices_dialog_with_visa.moc"
