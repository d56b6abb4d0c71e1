// The notch table in the window: what a typed cell does to its row, and the early end of
// "Auto-Calculate".
#include "kit/main_window_test.h"

class TestMainWindowTable : public MainWindowTest
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void typedCellMakesTheRowConsistent();
    void lettersBringTheOldTextBackAndInvalidate();
    void startAboveTheStopIsSwapped();
    void carrierCellsMoveTheLine();
    void aNotchWithoutRoomLeavesTheScreenAsItWas();
    void cellsHaveNoEffectAfterANotchFoundNoRoom();
    void longTableStaysWhereItWasScrolledTo();
    void anOpenEditorSurvivesARefresh();
    void aCarrierTableKeepsItsHeader();

private:
    void fillThreeNotches();
};

void TestMainWindowTable::init()
{
    openWindow();
    operate->pick("fft_length_input", 12); // 1024 bins of 97656.25 Hz
    operate->type("notch_offset_input", "0");
}

void TestMainWindowTable::cleanup()
{
    closeWindow();
}

void TestMainWindowTable::fillThreeNotches()
{
    operate->type("notch_count_input", "3");
    operate->click("autocalc_notches_button");
    QCOMPARE(operate->rowCount(), 3);
}

void TestMainWindowTable::typedCellMakesTheRowConsistent()
{
    fillThreeNotches();
    QCOMPARE(operate->cell(0, 0), QStringLiteral("-25.000000"));
    QCOMPARE(operate->cell(0, 6), QStringLiteral("-100.00"));
    operate->typeCell(0, 1, "5"); // 51.2 bins
    QCOMPARE(operate->cell(0, 1), QStringLiteral("4.980469"));
    QCOMPARE(operate->cell(0, 2), QStringLiteral("-27.490234"));
    QCOMPARE(operate->cell(0, 4), QStringLiteral("-281"));
    QCOMPARE(operate->cell(0, 5), QStringLiteral("-230"));
    operate->typeCell(0, 6, "-40.5");
    QCOMPARE(operate->cell(0, 6), QStringLiteral("-40.50"));
}

void TestMainWindowTable::lettersBringTheOldTextBackAndInvalidate()
{
    fillThreeNotches();
    operate->click("calc_fft_button");
    QTRY_COMPARE(operate->text("fft_status_label"), QStringLiteral("Data valid"));
    operate->typeCell(1, 0, "abc");
    QCOMPARE(operate->cell(1, 0), QStringLiteral("0.000000"));
    QCOMPARE(operate->text("fft_status_label"), QStringLiteral("Data invalid"));
}

void TestMainWindowTable::startAboveTheStopIsSwapped()
{
    fillThreeNotches();
    operate->typeCell(1, 4, "200");
    QCOMPARE(operate->cell(1, 4), QStringLiteral("51"));
    QCOMPARE(operate->cell(1, 5), QStringLiteral("200"));
}

void TestMainWindowTable::carrierCellsMoveTheLine()
{
    operate->pick("nc_combobox", 1);
    operate->type("notch_count_input", "3");
    operate->click("autocalc_notches_button");
    operate->typeCell(1, 4, "100");
    QCOMPARE(operate->cell(1, 0), QStringLiteral("9.765625"));
    operate->typeCell(1, 0, "-5");
    QCOMPARE(operate->cell(1, 4), QStringLiteral("-51"));
}

void TestMainWindowTable::aNotchWithoutRoomLeavesTheScreenAsItWas()
{
    fillThreeNotches();
    operate->type("notch_offset_input", "30"); // the third notch has no room left
    calculate();
    operate->click("autocalc_notches_button");
    QCOMPARE(operate->text("fft_status_label"), QStringLiteral("Data valid"));
    QCOMPARE(operate->rowCount(), 3);
    QCOMPARE(operate->text("notch_count_input"), QStringLiteral("3"));
    QCOMPARE(operate->find<QSpinBox>("measure_notch")->maximum(), 3);
    operate->type("seed_input", "9"); // the next refresh shows what it made
    QCOMPARE(operate->rowCount(), 2);
    QCOMPARE(operate->text("notch_count_input"), QStringLiteral("2"));
    QCOMPARE(operate->find<QSpinBox>("measure_notch")->maximum(), 2);
}

void TestMainWindowTable::cellsHaveNoEffectAfterANotchFoundNoRoom()
{
    fillThreeNotches();
    operate->type("notch_offset_input", "30"); // the third notch has no room left
    operate->click("autocalc_notches_button");
    // The refresh that the offset had made shows the old rows; a cell typed now stays as typed.
    operate->typeCell(0, 1, "abc");
    QCOMPARE(operate->cell(0, 1), QStringLiteral("abc"));
    operate->type("notch_offset_input", "0");
    operate->type("notch_count_input", "2");
    operate->click("autocalc_notches_button");
    operate->typeCell(0, 1, "abc");
    QCOMPARE(operate->cell(0, 1), QStringLiteral("10.000000"));
}

void TestMainWindowTable::longTableStaysWhereItWasScrolledTo()
{
    operate->type("notch_width_input", "0.001");
    operate->type("notch_count_input", "200");
    operate->click("autocalc_notches_button");
    auto* table = operate->find<QTableView>("main_table");
    QTRY_VERIFY(table->verticalScrollBar()->maximum() > 0);
    table->scrollTo(table->model()->index(150, 0));
    const int place = table->verticalScrollBar()->value();
    QVERIFY(place > 0);
    operate->type("seed_input", "9");
    QTRY_COMPARE(table->verticalScrollBar()->value(), place);
}

// Nothing of the table changes when a client comes.
void TestMainWindowTable::anOpenEditorSurvivesARefresh()
{
    fillThreeNotches();
    auto* table = operate->find<QTableView>("main_table");
    const QModelIndex cell = table->model()->index(1, 6);
    table->setFocus();
    table->setCurrentIndex(cell);
    table->edit(cell);
    auto* editor = table->viewport()->findChild<QLineEdit*>();
    editor->selectAll();
    QTest::keyClicks(editor, "-4");
    editor->setCursorPosition(1);
    window->notifyPropertyChanged(); // as a client that comes brings it
    QCOMPARE(table->viewport()->findChild<QLineEdit*>(), editor);
    QCOMPARE(editor->text(), QStringLiteral("-4"));
    QCOMPARE(editor->cursorPosition(), 1);
    QVERIFY(editor->hasFocus());
    QTest::keyClicks(editor, "1");
    QTest::keyClick(editor, Qt::Key_Return);
    QTRY_COMPARE(operate->cell(1, 6), QStringLiteral("-14.00"));
}

void TestMainWindowTable::aCarrierTableKeepsItsHeader()
{
    const auto* model = operate->find<QTableView>("main_table");
    const auto header = [model] {
        return model->model()->headerData(4, Qt::Horizontal).toString();
    };
    QCOMPARE(header(), QStringLiteral("Start Index"));
    operate->pick("nc_combobox", 1);
    QCOMPARE(header(), QStringLiteral("Index"));
    operate->type("sample_rate_input", "50"); // a refresh that changes no cell
    QCOMPARE(header(), QStringLiteral("Index"));
    operate->pick("nc_combobox", 0);
    QCOMPARE(header(), QStringLiteral("Start Index"));
}

QTEST_MAIN(TestMainWindowTable)
#include "test_main_window_table.moc"
