// Windows beside the main one, found by their titles.
#pragma once

#include "kit/window_driver.h"

#include <QTabWidget>

#include <algorithm>

// Null where none of that title is on the screen.
inline QWidget* shownWindow(const QString& title)
{
    const QWidgetList all = QApplication::topLevelWidgets();
    const auto found = std::find_if(all.begin(), all.end(), [&title](const QWidget* each) {
        return each->isVisible() && each->windowTitle() == title;
    });
    return found != all.end() ? *found : nullptr;
}

// The instruments' window, brought up by the main one if it is closed: 0 is the tab of the
// generator, 1 that of the analyzer, 2 that of the microwave generator.
inline WindowDriver openDevices(const WindowDriver& mainWindow, int tab = 0)
{
    const QString title = QStringLiteral("Devices");
    if (shownWindow(title) == nullptr) {
        mainWindow.trigger("actionDevices");
    }
    QWidget* dialog = shownWindow(title);
    if (dialog == nullptr) {
        qFatal("there is no devices dialog");
    }
    const WindowDriver devices(*dialog);
    devices.find<QTabWidget>("tabWidget")->setCurrentIndex(tab);
    return devices;
}
