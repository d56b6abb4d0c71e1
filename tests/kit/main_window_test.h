#pragma once

#include "app/main_window.h"
#include "kit/fresh_home.h"
#include "kit/window_driver.h"

#include <memory>

// What tests of the whole program share: its window, new and shown, in a home without saved
// settings, and the driver of its widgets.
class MainWindowTest : public QObject
{
protected:
    void openWindow()
    {
        forgetSavedSettings();
        window = std::make_unique<MainWindow>();
        operate = std::make_unique<WindowDriver>(*window);
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window.get()));
    }

    void closeWindow()
    {
        operate.reset();
        window.reset();
    }

    // Returns when the signal is there, which takes seconds at the greatest length.
    void calculate()
    {
        operate->click("calc_fft_button");
        QTRY_COMPARE_WITH_TIMEOUT(operate->text("fft_status_label"), QStringLiteral("Data valid"),
                                  120000);
    }

    std::unique_ptr<MainWindow> window;
    std::unique_ptr<WindowDriver> operate;
};
