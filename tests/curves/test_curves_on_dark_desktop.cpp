// The window of curves and its dialog on a desktop with dark colours: what is written can be read.
#include "curves/curves_window_test.h"
#include "curves/measure_dialog.h"
#include "kit/contrast.h"
#include "kit/dark_desktop.h"

#include <QListWidget>
#include <QPlainTextEdit>
#include <QTableView>

namespace {

double contrastIn(QWidget& window, const QWidget& widget, const QRect& area)
{
    return EnlargedWindow(window).textContrast(widget, area);
}

} // namespace

class TestCurvesOnDarkDesktop : public CurvesWindowTest
{
    Q_OBJECT

private slots:
    void initTestCase() { startOnADarkDesktop(); }
    void init() { openWindow(); }
    void cleanup() { closeWindow(); }

    void theEmptyChartCanBeRead();
    void theListsAndTheChartCanBeRead();
    void theDialogAndItsHintsCanBeRead();
};

void TestCurvesOnDarkDesktop::theEmptyChartCanBeRead()
{
    QVERIFY(contrastIn(*window, *plot(), plot()->rect()) >= readable);
}

void TestCurvesOnDarkDesktop::theListsAndTheChartCanBeRead()
{
    openResult("one.json", roofs(2));
    openResult("two.json", roofs(2, -40, 0, 1, 8.0));
    const auto* view = operate->find<QTableView>("result_view");
    for (const int row : {0, 1}) { // the second is chosen
        const QRect cell = view->visualRect(view->model()->index(row, ResultModel::Peak));
        QVERIFY(contrastIn(*window, *view->viewport(), cell.adjusted(2, 2, -2, -2)) >= readable);
    }
    const auto* list = operate->find<QListWidget>("notch_list");
    const QRect notch = list->visualItemRect(list->item(0)).adjusted(20, 1, -1, -1);
    QVERIFY(contrastIn(*window, *list->viewport(), notch) >= readable);
    const QRect below(0, plot()->height() - 30, plot()->width(), 30); // the title of the axis
    QVERIFY(contrastIn(*window, *plot(), below) >= readable);
}

void TestCurvesOnDarkDesktop::theDialogAndItsHintsCanBeRead()
{
    MeasureDialog dialog(window.get());
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    const WindowDriver hand(dialog);
    QTRY_VERIFY(!hand.text("check_text").isEmpty());
    for (const char* name : {"config_input", "limit_input", "others_input", "device_input",
                             "theory_input", "check_text", "notches_hint", "command_text"}) {
        const auto* widget = hand.find<QWidget>(name);
        const double found = contrastIn(dialog, *widget, widget->rect().adjusted(3, 3, -16, -3));
        QVERIFY2(found >= readable, qPrintable(name + QString(" %1").arg(found)));
    }
}

QTEST_MAIN(TestCurvesOnDarkDesktop)
#include "test_curves_on_dark_desktop.moc"
