// What tests of the sweep dialog share: the dialog on a record of 1024 points, and what is read
// from it.
#pragma once

#include "kit/window_driver.h"
#include "setup/measurement_setup.h"
#include "signal/calculation.h"
#include "signal/dialogs/crest_factor_dialog.h"

#include <QTableWidget>

#include <memory>

class SweepTest : public QObject
{
protected:
    void openDialog()
    {
        setup = std::make_unique<MeasurementSetup>();
        setup->fftLengthIndex = 12;
        dialog = std::make_unique<CrestFactorDialog>();
        dialog->setSetup(setup.get());
        operate = std::make_unique<WindowDriver>(*dialog);
        dialog->show();
        QVERIFY(QTest::qWaitForWindowExposed(dialog.get()));
    }

    // The record goes first: a late worker must not need it.
    void closeDialog()
    {
        setup.reset();
        operate.reset();
        dialog.reset();
        QTRY_VERIFY(qApp->findChildren<Calculation*>().isEmpty());
    }

    void sweep(int seeds)
    {
        operate->type("seed_count_input", QString::number(seeds));
        operate->click("start_button");
        QVERIFY(!operate->isEnabled("start_button"));
        QVERIFY(operate->isEnabled("stop_button"));
        QTRY_VERIFY_WITH_TIMEOUT(isIdle(), 60000);
    }

    QStringList rows() const
    {
        QStringList texts;
        for (int row = 0; row < table()->rowCount(); ++row) {
            const QTableWidgetItem* item = table()->item(row, 0);
            texts.append(item == nullptr ? QString() : item->text());
        }
        return texts;
    }

    bool isIdle() const { return operate->isEnabled("start_button"); }
    QTableWidget* table() const { return operate->find<QTableWidget>("tableWidget"); }
    // A sweep's copy of the record shares the signal's vectors until the last worker is deleted.
    bool workersAreGone() const { return setup->signal.iSamples.isDetached(); }
    int filledRows() const { return rows().filter(QRegularExpression(".")).size(); }

    std::unique_ptr<MeasurementSetup> setup; // 1024 points
    std::unique_ptr<CrestFactorDialog> dialog;
    std::unique_ptr<WindowDriver> operate;
};
