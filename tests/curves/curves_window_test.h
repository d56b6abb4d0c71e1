#pragma once

#include "curves/curve_plot.h"
#include "curves/curves_window.h"
#include "curves/made_up_result.h"
#include "kit/window_driver.h"

#include <QTemporaryDir>

#include <memory>

// What tests of the window of curves share: the window, new and shown, and a folder for files.
class CurvesWindowTest : public QObject
{
protected:
    void openWindow()
    {
        window = std::make_unique<CurvesWindow>();
        operate = std::make_unique<WindowDriver>(*window);
        window->resize(1180, 700);
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window.get()));
    }

    void closeWindow()
    {
        operate.reset();
        window.reset();
    }

    // Of the folder, whose file is written before.
    QString file(const QString& name, const NprResult& result) const
    {
        return writeResult(folder.filePath(name), result);
    }

    void openResult(const QString& name, const NprResult& result)
    {
        const int before = window->results().rowCount();
        window->open({file(name, result)});
        QTRY_COMPARE(window->results().rowCount(), before + 1);
        QCoreApplication::processEvents(); // the chart settles
    }

    CurvePlot* plot() const { return operate->find<CurvePlot>("plot"); }

    QPoint pixelOf(double x, double npr) const
    {
        return plot()->frame().positionOf({x, npr}).toPoint();
    }

    // Through the window system, as a hand does it.
    void point(const QPoint& place) const
    {
        QTest::mouseMove(window->windowHandle(), plot()->mapTo(window.get(), place));
    }

    QTemporaryDir folder;
    std::unique_ptr<CurvesWindow> window;
    std::unique_ptr<WindowDriver> operate;
};
