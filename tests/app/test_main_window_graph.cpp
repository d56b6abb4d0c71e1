// The graph inside the window, under mouse events that come in through the window system: what a
// drag changes in the table, in the record and on the status light.
#include "kit/main_window_test.h"
#include "kit/menu_answers.h"
#include "setup/config_file.h"

#include <QWindow>

#include <algorithm>

class TestMainWindowGraph : public MainWindowTest
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void dragMovesTheRowOfTheTableAndOfTheRecord();
    void depthDragChangesTheDepthOnly();
    void rubberBandAddsARow();
    void menuTakesARowAway();
    void clickOnNothingInvalidates();
    void carriersDoNotFollowTheMouse();
    void typedCellMovesTheNotchOfThePicture();

private:
    int xOfBin(int bin) const { return graph->width() * (512 + bin) / 1024; }
    int yOfDepth(double depth) const;
    void calculate();
    void mouse(QTest::MouseAction action, Qt::MouseButton button, QPoint position);
    void drag(QPoint from, QPoint to);
    QStringList tableRow(int row) const;

    QWidget* graph = nullptr;
};

// Notches of 102 bins around bins -256, 0 and 256 of 1024, 100 dB deep.
void TestMainWindowGraph::init()
{
    openWindow();
    graph = operate->find<QWidget>("graph_widget");
    window->resize(1200, 700);
    operate->pick("fft_length_input", 12); // 1024 bins of 97656.25 Hz
    operate->type("notch_offset_input", "0");
    operate->type("notch_count_input", "3");
    operate->click("autocalc_notches_button");
    QCOMPARE(operate->rowCount(), 3);
    calculate();
}

void TestMainWindowGraph::cleanup()
{
    graph = nullptr;
    closeWindow();
}

void TestMainWindowGraph::calculate()
{
    MainWindowTest::calculate();
    graph->repaint();
}

// 0 dB lies at a tenth of the height, -105 dB at nine tenths.
int TestMainWindowGraph::yOfDepth(double depth) const
{
    return static_cast<int>(graph->height() * (0.1 - depth / 105 * 0.8));
}

void TestMainWindowGraph::mouse(QTest::MouseAction action, Qt::MouseButton button, QPoint position)
{
    QTest::mouseEvent(action, window->windowHandle(), button, Qt::NoModifier,
                      graph->mapTo(window.get(), position));
    QCoreApplication::processEvents();
}

void TestMainWindowGraph::drag(QPoint from, QPoint to)
{
    mouse(QTest::MouseMove, Qt::NoButton, from);
    mouse(QTest::MousePress, Qt::LeftButton, from);
    mouse(QTest::MouseMove, Qt::NoButton, (from + to) / 2);
    mouse(QTest::MouseMove, Qt::NoButton, to);
    mouse(QTest::MouseRelease, Qt::LeftButton, to);
}

QStringList TestMainWindowGraph::tableRow(int row) const
{
    QStringList cells;
    for (int column = 0; column < 7; ++column) {
        cells << operate->cell(row, column);
    }
    return cells;
}

void TestMainWindowGraph::dragMovesTheRowOfTheTableAndOfTheRecord()
{
    const QStringList firstRow = tableRow(0).mid(4);
    drag({xOfBin(0) + 3, graph->height() / 3}, {xOfBin(100) + 3, graph->height() / 2});
    const int start = operate->cell(1, 4).toInt();
    const int stop = operate->cell(1, 5).toInt();
    QVERIFY2(qAbs(start - 49) <= 2, qPrintable(operate->cell(1, 4))); // a pixel is about a bin
    QCOMPARE(stop - start, 102);
    QCOMPARE(operate->cell(1, 2), QString::number(start * 0.09765625, 'f', 6));
    QCOMPARE(operate->cell(1, 0), QString::number((start + 51) * 0.09765625, 'f', 6));
    QCOMPARE(operate->cell(1, 6), QStringLiteral("-100.00"));
    QCOMPARE(tableRow(0).mid(4), firstRow); // its frequencies went to the grid
    QCOMPARE(operate->text("fft_status_label"), QStringLiteral("Data invalid"));
    cleanup(); // the window saves its record as it goes
    const MeasurementSetup saved = loadConfig(defaultConfigPath());
    QCOMPARE(saved.notches->items.size(), 3);
    QVERIFY(std::any_of(saved.notches->items.cbegin(), saved.notches->items.cend(),
                        [start](const Notch& notch) { // rows come back in any order
                            return notch.startIndex == start &&
                                   qAbs(notch.startFreq - start * 97656.25) < 50; // six digits
                        }));
}

void TestMainWindowGraph::depthDragChangesTheDepthOnly()
{
    const QStringList before = tableRow(1);
    drag({xOfBin(0) + 3, yOfDepth(-100) + 3}, {xOfBin(0) + 3, yOfDepth(-50) + 3});
    QStringList after = tableRow(1);
    const double depth = after.last().toDouble();
    QVERIFY2(qAbs(depth + 50) <= 1, qPrintable(after.last())); // whole dB, one off by truncation
    QCOMPARE(after.mid(0, 6), before.mid(0, 6));
    QCOMPARE(operate->text("fft_status_label"), QStringLiteral("Data invalid"));
}

void TestMainWindowGraph::rubberBandAddsARow()
{
    QCOMPARE(operate->find<QSpinBox>("measure_notch")->maximum(), 3);
    drag({xOfBin(100), 3}, {xOfBin(150), yOfDepth(-40)});
    QCOMPARE(operate->rowCount(), 4);
    QVERIFY(qAbs(operate->cell(3, 4).toInt() - 100) <= 2);
    QVERIFY(qAbs(operate->cell(3, 5).toInt() - 150) <= 2);
    QVERIFY(qAbs(operate->cell(3, 6).toDouble() + 40) <= 1);
    QCOMPARE(operate->find<QSpinBox>("measure_notch")->maximum(), 4);
    QCOMPARE(operate->text("notch_count_input"), QStringLiteral("3"));
}

void TestMainWindowGraph::menuTakesARowAway()
{
    const QStringList last = tableRow(2);
    const QPoint inTheMiddleNotch(xOfBin(0) + 3, graph->height() / 3);
    const MenuAnswers menus({Qt::Key_Return});
    mouse(QTest::MousePress, Qt::RightButton, inTheMiddleNotch);
    mouse(QTest::MouseRelease, Qt::RightButton, inTheMiddleNotch);
    QCOMPARE(menus.entries, QStringList{QStringLiteral("Delete Notch")});
    QCOMPARE(operate->rowCount(), 2);
    QCOMPARE(tableRow(1), last);
    QCOMPARE(operate->text("fft_status_label"), QStringLiteral("Data invalid"));
}

// Deliberate: each left click on the graph in notch mode invalidates the signal.
void TestMainWindowGraph::clickOnNothingInvalidates()
{
    const QPoint between(xOfBin(128), graph->height() / 3);
    mouse(QTest::MousePress, Qt::LeftButton, between);
    QCOMPARE(operate->text("fft_status_label"), QStringLiteral("Data valid"));
    mouse(QTest::MouseRelease, Qt::LeftButton, between);
    QCOMPARE(operate->text("fft_status_label"), QStringLiteral("Data invalid"));
    QCOMPARE(operate->rowCount(), 3);
}

void TestMainWindowGraph::carriersDoNotFollowTheMouse()
{
    operate->pick("nc_combobox", 1);
    operate->click("autocalc_notches_button");
    QCOMPARE(operate->rowCount(), 3);
    calculate();
    const QStringList middle = tableRow(1);
    drag({xOfBin(0), graph->height() / 3}, {xOfBin(100), graph->height() / 3});
    QCOMPARE(tableRow(1), middle);
    QCOMPARE(operate->text("fft_status_label"), QStringLiteral("Data valid"));
}

void TestMainWindowGraph::typedCellMovesTheNotchOfThePicture()
{
    const int y = graph->height() / 3;
    operate->typeCell(1, 0, "10"); // bin 102
    QCoreApplication::processEvents();
    mouse(QTest::MouseMove, Qt::NoButton, {xOfBin(102), y});
    QCOMPARE(graph->cursor().shape(), Qt::SizeAllCursor);
    mouse(QTest::MouseMove, Qt::NoButton, {xOfBin(0), y});
    QCOMPARE(graph->cursor().shape(), Qt::ArrowCursor);
}

QTEST_MAIN(TestMainWindowGraph)
#include "test_main_window_graph.moc"
