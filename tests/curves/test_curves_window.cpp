// Results in the window, with mouse and keys.
#include "curves/curves_window_test.h"
#include "kit/file_content.h"

#include <QListWidget>
#include <QMimeData>
#include <QTabBar>

namespace {

void turnWheel(QWidget& widget, const QPointF& at, int delta)
{
    QWheelEvent event(at, widget.mapToGlobal(at.toPoint()), {}, {0, delta}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&widget, &event);
}

void dropOn(QWidget& widget, const QList<QUrl>& urls)
{
    QMimeData data;
    data.setUrls(urls);
    QDragEnterEvent enter({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&widget, &enter);
    QVERIFY(enter.isAccepted());
    QDropEvent drop({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&widget, &drop);
}

// Of a row that isn't chosen; none without an icon.
QColor colourOf(const QIcon& icon, QIcon::Mode mode = QIcon::Normal)
{
    return icon.isNull() ? QColor() : icon.pixmap(12, 12, mode).toImage().pixelColor(6, 6);
}

} // namespace

class TestCurvesWindow : public CurvesWindowTest
{
    Q_OBJECT

private slots:
    void init() { openWindow(); }
    void cleanup() { closeWindow(); }

    void anOpenedFileIsListedChosenAndDrawn();
    void severalFilesComeInTheirOrder();
    void aLongNameHasRoom();
    void peakRangeAndVerdictAreSeenBesideALongName();
    void theColourOfAChosenResultIsThatOfItsLine();
    void theMenuOpensFiles();
    void aBrokenFileIsNamedAndTheOthersOpen();
    void droppedFilesOpen();
    void thePointerTellsThePointBelow();
    void aDragZoomsAndADoubleClickGoesBack();
    void theWheelZoomsAroundThePointer();
    void keysGoAlongZoomAndGoBack();
    void aClickOnALineChoosesItsResult();
    void notchesAreSwitchedByTheirBoxes();
    void theAxesStayWhenANotchIsSwitched();
    void oneNotchAfterTheOtherIsShownAlone();
    void aNotchOfAResultThatIsShownAloneHasItsColourInTheList();
    void resultsAreHiddenByTheirBoxesAndClosedByTheMenu();
    void theOtherTabShowsFrequencies();
    void anEmptyChartTellsWhatIsMissing();
    void thePictureFillsTheWindowThatGrows();
    void thePictureIsKeptWhileThePointerMoves();
};

void TestCurvesWindow::anOpenedFileIsListedChosenAndDrawn()
{
    openResult("amplifier.json", roofs(3));
    auto* view = operate->find<QTableView>("result_view");
    QCOMPARE(view->model()->index(0, 0).data().toString(), QString("amplifier"));
    QVERIFY(view->selectionModel()->isRowSelected(0, {}));
    // The peak of notch 3 is drawn where the frame says; a strong line is not white.
    const QImage picture = plot()->grab().toImage();
    QVERIFY(picture.pixelColor(pixelOf(-20.5, 52.5)).lightness() < 250);
    QVERIFY(!operate->find<QWidget>("message_bar")->isVisible());
}

void TestCurvesWindow::severalFilesComeInTheirOrder()
{
    QStringList paths;
    for (const char* name : {"5.json", "1.json", "4.json", "2.json", "3.json"}) {
        paths << file(name, roofs(paths.isEmpty() ? 9 : 1));
    }
    window->open(paths);
    QTRY_COMPARE(window->results().rowCount(), 5);
    QString names;
    for (const ShownResult& result : window->results().results()) {
        names += result.name;
    }
    QCOMPARE(names, QString("51423"));
}

void TestCurvesWindow::aLongNameHasRoom()
{
    const auto* view = operate->find<QTableView>("result_view");
    const int before = view->columnWidth(0);
    openResult("amplifier 7 at 85 degrees.json", roofs(1));
    const int after = view->columnWidth(0);
    QVERIFY(after > before);
    openResult(QString("name ").repeated(40) + ".json", roofs(1));
    QVERIFY(view->columnWidth(0) > after);
    QVERIFY(view->columnWidth(0) < 300); // the others are to be seen too
}

void TestCurvesWindow::peakRangeAndVerdictAreSeenBesideALongName()
{
    for (const char* name : {"a.json", "b.json"}) { // so that there are colours too
        openResult(QString("name ").repeated(30) + name, roofs(1, -100, 60, 1, 50.0));
    }
    const auto* view = operate->find<QTableView>("result_view");
    const QAbstractItemView& cells = *view; // a table keeps its own hint to itself
    for (const int column : {ResultModel::Peak, ResultModel::Range, ResultModel::Verdict}) {
        const int right = view->columnViewportPosition(column) + view->columnWidth(column);
        QVERIFY(right <= view->viewport()->width());
        QVERIFY(cells.sizeHintForColumn(column) <= view->columnWidth(column)); // not shortened
    }
}

void TestCurvesWindow::theColourOfAChosenResultIsThatOfItsLine()
{
    openResult("a.json", roofs(1));
    openResult("b.json", roofs(1, -40, 0, 1, 8.0));
    const auto* model = operate->find<QTableView>("result_view")->model();
    const auto icon = model->index(1, ResultModel::Name).data(Qt::DecorationRole).value<QIcon>();
    QCOMPARE(colourOf(icon), resultColour(1));
    QCOMPARE(colourOf(icon, QIcon::Selected), resultColour(1));
}

void TestCurvesWindow::theMenuOpensFiles()
{
    operate->answerFileDialog(file("menu.json", roofs(1)));
    operate->trigger("action_open");
    QTRY_COMPARE(window->results().rowCount(), 1);
}

void TestCurvesWindow::aBrokenFileIsNamedAndTheOthersOpen()
{
    const QString broken = folder.filePath("broken.json");
    putContent(broken, "{");
    window->open({broken, writeResult(folder.filePath("whole.json"), roofs(1)),
                  folder.filePath("missing.json")});
    QTRY_COMPARE(window->results().rowCount(), 1);
    QTRY_COMPARE(operate->text("message_text").count('\n'), 1);
    QVERIFY(operate->text("message_text").contains(broken));
    QVERIFY(operate->text("message_text").contains("missing.json: there is no such file"));
    operate->click("message_close");
    QVERIFY(!operate->find<QWidget>("message_bar")->isVisible());
}

void TestCurvesWindow::droppedFilesOpen()
{
    dropOn(*window, {QUrl::fromLocalFile(file("one.json", roofs(1))),
                     QUrl::fromLocalFile(file("two.json", roofs(2)))});
    QTRY_COMPARE(window->results().rowCount(), 2);
    dropOn(*window, {QUrl("https://www.example.com/three.json")});
    QVERIFY(operate->text("message_text").contains("www.example.com"));
}

void TestCurvesWindow::thePointerTellsThePointBelow()
{
    openResult("a.json", roofs(3));
    point(pixelOf(-10.0, 43.0)); // notch 3
    QTRY_VERIFY(plot()->cursor().isSome());
    QCOMPARE(plot()->cursor().line, 2);
    QCOMPARE(plot()->cursor().point, 30);
}

void TestCurvesWindow::aDragZoomsAndADoubleClickGoesBack()
{
    openResult("a.json", roofs(1));
    const PlotSpan whole = plot()->frame().span;
    const QPoint from = pixelOf(-30.0, 50.0);
    const QPoint to = pixelOf(-10.0, 40.0);
    const QPointF low = plot()->frame().valueAt({double(from.x()), double(to.y())});
    QTest::mousePress(plot(), Qt::LeftButton, {}, from);
    QMouseEvent move(QEvent::MouseMove, to, plot()->mapToGlobal(to), Qt::NoButton, Qt::LeftButton,
                     Qt::NoModifier);
    QApplication::sendEvent(plot(), &move);
    QTest::mouseRelease(plot(), Qt::LeftButton, {}, to);
    QVERIFY(std::abs(plot()->frame().span.xLow - low.x()) < 1e-9);
    QVERIFY(std::abs(plot()->frame().span.yLow - low.y()) < 1e-9);
    QTest::mouseDClick(plot(), Qt::LeftButton, {}, from);
    QCOMPARE(plot()->frame().span.xLow, whole.xLow);
    QCOMPARE(plot()->frame().span.yHigh, whole.yHigh);
}

void TestCurvesWindow::theWheelZoomsAroundThePointer()
{
    openResult("a.json", roofs(1));
    const QPointF at = plot()->frame().positionOf({-30.0, 45.0});
    turnWheel(*plot(), at, 120);
    const PlotSpan span = plot()->frame().span;
    QVERIFY(std::abs((span.xHigh - span.xLow) - 40.0 / 1.25) < 1e-9);
    QVERIFY(std::abs(plot()->frame().valueAt(at).x() + 30.0) < 0.01);
    turnWheel(*plot(), at, -120);
    QVERIFY(std::abs((plot()->frame().span.xHigh - plot()->frame().span.xLow) - 40.0) < 1e-9);
}

void TestCurvesWindow::keysGoAlongZoomAndGoBack()
{
    openResult("a.json", roofs(2));
    plot()->setFocus();
    QTest::keyClick(plot(), Qt::Key_Right);
    QTest::keyClick(plot(), Qt::Key_Right);
    QCOMPARE(plot()->cursor().point, 1);
    QTest::keyClick(plot(), Qt::Key_Down);
    QCOMPARE(plot()->cursor().line, 1);
    const PlotSpan whole = plot()->frame().span;
    QTest::keyClick(plot(), Qt::Key_Plus);
    QVERIFY(plot()->frame().span.xHigh - plot()->frame().span.xLow < 39.0);
    QTest::keyClick(plot(), Qt::Key_Right, Qt::ControlModifier);
    QTest::keyClick(plot(), Qt::Key_Home);
    QVERIFY(plot()->frame().span == whole);
    QTest::keyClick(plot(), Qt::Key_Escape);
    QVERIFY(!plot()->cursor().isSome());
}

void TestCurvesWindow::aClickOnALineChoosesItsResult()
{
    openResult("low.json", roofs(1));
    openResult("high.json", roofs(1, -40, 0, 1, 8.0));
    auto* selection = operate->find<QTableView>("result_view")->selectionModel();
    QVERIFY(selection->isRowSelected(1, {}));
    const QPoint on = pixelOf(-10.0, 41.0);
    point(on);
    QTRY_VERIFY(plot()->cursor().isSome());
    QTest::mouseClick(plot(), Qt::LeftButton, {}, on);
    QVERIFY(selection->isRowSelected(0, {}));
    QVERIFY(!selection->isRowSelected(1, {}));
}

void TestCurvesWindow::notchesAreSwitchedByTheirBoxes()
{
    openResult("a.json", roofs(3));
    auto* list = operate->find<QListWidget>("notch_list");
    QCOMPARE(list->count(), 3);
    list->setFocus();
    list->setCurrentRow(2);
    QTest::keyClick(list, Qt::Key_Space);
    QCOMPARE(list->item(2)->checkState(), Qt::Unchecked);
    point(pixelOf(-20.0, 53.0));
    QTRY_VERIFY(plot()->cursor().isSome());
    QCOMPARE(plot()->cursor().line, 1); // the one below
    operate->trigger("action_all_notches");
    QCOMPARE(list->item(2)->checkState(), Qt::Checked);
}

void TestCurvesWindow::theAxesStayWhenANotchIsSwitched()
{
    openResult("a.json", roofs(9)); // the highest two lie apart from the others by a tick
    const PlotSpan before = plot()->frame().span;
    operate->trigger("action_next_notch");
    QVERIFY(plot()->frame().span == before);
    operate->trigger("action_whole");
    QVERIFY(plot()->frame().span.yHigh < before.yHigh);
}

void TestCurvesWindow::oneNotchAfterTheOtherIsShownAlone()
{
    openResult("a.json", roofs(2));
    auto* list = operate->find<QListWidget>("notch_list");
    for (const int alone : {0, 1, 0}) {
        operate->trigger("action_next_notch");
        QCOMPARE(list->item(alone)->checkState(), Qt::Checked);
        QCOMPARE(list->item(1 - alone)->checkState(), Qt::Unchecked);
    }
}

void TestCurvesWindow::aNotchOfAResultThatIsShownAloneHasItsColourInTheList()
{
    openResult("a.json", roofs(3));
    auto* list = operate->find<QListWidget>("notch_list");
    const auto colour = [list] { return colourOf(list->item(2)->icon()); };
    // The peak of notch 3, drawn strong; what is mixed with white keeps its hue.
    const QColor peak = plot()->grab().toImage().pixelColor(pixelOf(-20.0, 52.9));
    QVERIFY(peak.saturation() > 50 && std::abs(peak.hue() - colour().hue()) <= 3);
    operate->trigger("action_over_frequency"); // there a colour is a level's
    QVERIFY(!colour().isValid());
    operate->trigger("action_over_level");
    QVERIFY(colour().isValid());
    openResult("b.json", roofs(3, -40, 0, 1, 5.0)); // and here a result's
    QVERIFY(!colour().isValid());
}

void TestCurvesWindow::resultsAreHiddenByTheirBoxesAndClosedByTheMenu()
{
    openResult("a.json", roofs(1));
    auto* view = operate->find<QTableView>("result_view");
    view->setFocus();
    view->setCurrentIndex(view->model()->index(0, 0));
    QTest::keyClick(view, Qt::Key_Space);
    QVERIFY(!window->results().results().constFirst().isShown);
    operate->trigger("action_close");
    QCOMPARE(window->results().rowCount(), 0);
    QVERIFY(!window->findChild<QAction*>("action_close")->isEnabled());
}

void TestCurvesWindow::theOtherTabShowsFrequencies()
{
    openResult("a.json", roofs(3));
    operate->trigger("action_over_frequency");
    QCOMPARE(plot()->frame().span.xLow, -10.0); // MHz
    QCOMPARE(plot()->frame().span.xHigh, 10.0);
    operate->trigger("action_over_level");
    QCOMPARE(plot()->frame().span.xLow, -40.0);
}

void TestCurvesWindow::anEmptyChartTellsWhatIsMissing()
{
    QVERIFY(plot()->hintText().contains("Measure a curve"));
    NprResult silent = roofs(2);
    for (NprPoint& point : silent.points) {
        point.npr.reset();
    }
    openResult("silent.json", silent);
    QVERIFY(plot()->hintText().contains("Does the generator play the signal"));
    openResult("a.json", roofs(1));
    QCOMPARE(plot()->hintText(), QString());
    operate->trigger("action_next_notch");
    operate->trigger("action_next_notch"); // 2, of which "a" has none
    QVERIFY(plot()->hintText().contains("Does the generator"));
    auto* list = operate->find<QListWidget>("notch_list");
    list->item(1)->setCheckState(Qt::Unchecked);
    QVERIFY(plot()->hintText().contains("check a result and a notch"));
}

void TestCurvesWindow::thePictureFillsTheWindowThatGrows()
{
    openResult("a.json", roofs(1));
    plot()->grab();
    const double before = plot()->frame().area.bottom();
    window->resize(window->size() + QSize(0, 100));
    QTRY_COMPARE(plot()->frame().area.bottom(), before + 100.0);
    const QImage picture = plot()->grab().toImage();
    const QRectF area = plot()->frame().area;
    const QPoint axis(qRound(area.center().x()) + 3, qRound(area.bottom()));
    int darkest = 255;
    for (int y = -2; y <= 2; ++y) {
        darkest = std::min(darkest, picture.pixelColor(axis + QPoint(0, y)).lightness());
    }
    QVERIFY(darkest < 160); // the smooth line of the axis; those of the grid are lighter
}

void TestCurvesWindow::thePictureIsKeptWhileThePointerMoves()
{
    openResult("a.json", roofs(3));
    point(pixelOf(-10.0, 43.0));
    QTRY_VERIFY(plot()->cursor().isSome()); // and the chart has settled
    const qint64 before = plot()->pictureKey();
    const PlotPlace place = plot()->cursor();
    point(pixelOf(-20.0, 52.0));
    QTRY_VERIFY(plot()->cursor() != place);
    plot()->repaint();
    QCOMPARE(plot()->pictureKey(), before);
    operate->trigger("action_next_notch");
    plot()->repaint();
    QVERIFY(plot()->pictureKey() != before);
}

QTEST_MAIN(TestCurvesWindow)
#include "test_curves_window.moc"
