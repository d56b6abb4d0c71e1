// Which widget of the main window's form stands in which cell, and with which text.
#include "ui_main_window.h"

#include <QtTest>

#include <memory>

namespace {

// What stands in a cell of a grid: the text of a label, else the object name.
QString inCell(const QGridLayout* grid, int row, int column)
{
    QLayoutItem* item = grid->itemAtPosition(row, column);
    if (item == nullptr) {
        return QString();
    }
    if (item->widget() == nullptr) {
        return item->layout() == nullptr ? QStringLiteral("spacer") : item->layout()->objectName();
    }
    const auto* label = qobject_cast<const QLabel*>(item->widget());
    const bool isPlainText = label != nullptr && label->frameShape() == QFrame::NoFrame;
    return isPlainText ? label->text() : item->widget()->objectName();
}

int spanOf(const QGridLayout* grid, QWidget* widget)
{
    int row = 0;
    int column = 0;
    int rowSpan = 0;
    int columnSpan = 0;
    grid->getItemPosition(grid->indexOf(widget), &row, &column, &rowSpan, &columnSpan);
    return columnSpan;
}

// The texts and object names of a row of widgets, left to right.
QStringList contentOf(const QWidget* page)
{
    QStringList content;
    for (int i = 0; i < page->layout()->count(); ++i) {
        const QWidget* widget = page->layout()->itemAt(i)->widget();
        const auto* label = qobject_cast<const QLabel*>(widget);
        if (widget != nullptr) {
            content.append(label == nullptr ? widget->objectName() : label->text());
        }
    }
    return content;
}

} // namespace

class TestMainWindowLayout : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void theLeftPaneHasItsRows();
    void theBottomPaneHasItsBlocks();
    void theSourceBlockHasItsRows();
    void theCalculationBlockHasItsCells();
    void theConnectionBlockHasItsCells();
    void theMeasurementBlockHasItsCells();
    void eachSourceHasItsPage();
    void theSplitterHoldsTheTableAboveTheGraph();

private:
    QGridLayout* grid(const char* name) const
    {
        return window->findChild<QGridLayout*>(QLatin1String(name));
    }

    std::unique_ptr<QMainWindow> window;
    std::unique_ptr<Ui::MainWindow> ui;
};

void TestMainWindowLayout::init()
{
    window = std::make_unique<QMainWindow>();
    ui = std::make_unique<Ui::MainWindow>();
    ui->setupUi(window.get());
}

void TestMainWindowLayout::cleanup()
{
    window.reset();
    ui.reset();
}

void TestMainWindowLayout::theLeftPaneHasItsRows()
{
    const struct
    {
        int row;
        const char* cells[3];
    } rows[] = {
        {1, {"Sample Rate", "sample_rate_input", "MHz"}},
        {2, {"NBW/SRate", "nbw_srate_input", ""}},
        {3, {"Noise BW", "noise_bw_output", "MHz"}},
        {4, {"FFT Length", "fft_length_input", ""}},
        {5, {"Line Spacing", "line_spacing_input", "kHz"}},
        {6, {"", "", ""}},
        {8, {"Count", "notch_count_input", ""}},
        {9, {"Width", "notch_width_input", "MHz"}},
        {10, {"Offset", "notch_offset_input", "MHz"}},
        {11, {"Depth", "notch_depth_input", "dB"}},
        {13, {"", "spacer", ""}},
    };
    const auto* pane = qobject_cast<QGridLayout*>(ui->left_pane->layout());
    QVERIFY(pane != nullptr);
    for (const auto& expected : rows) {
        for (int column = 0; column < 3; ++column) {
            QCOMPARE(inCell(pane, expected.row, column),
                     QString::fromLatin1(expected.cells[column]));
        }
    }
    for (QWidget* wide : {static_cast<QWidget*>(ui->nc_combobox), static_cast<QWidget*>(ui->line),
                          static_cast<QWidget*>(ui->autocalc_notches_button)}) {
        QCOMPARE(spanOf(pane, wide), 3);
    }
    QCOMPARE(inCell(pane, 0, 0), QStringLiteral("nc_combobox"));
    QCOMPARE(inCell(pane, 7, 0), QStringLiteral("line"));
    QCOMPARE(inCell(pane, 12, 0), QStringLiteral("autocalc_notches_button"));
    QCOMPARE(ui->autocalc_notches_button->text(), QStringLiteral("Auto-Calculate"));
}

void TestMainWindowLayout::theBottomPaneHasItsBlocks()
{
    const QGridLayout* pane = grid("gridLayout_9");
    // Deliberate spelling of the pane: the style sheet selects by it.
    QCOMPARE(ui->buttom_pane->layout(), pane);
    QCOMPARE(inCell(pane, 0, 0), QStringLiteral("gridLayout_4"));
    QCOMPARE(inCell(pane, 0, 1), QStringLiteral("line_2"));
    QCOMPARE(ui->line_2->frameShape(), QFrame::VLine);
    QCOMPARE(inCell(pane, 0, 2), QStringLiteral("gridLayout_2"));
    QCOMPARE(inCell(pane, 0, 4), QStringLiteral("spacer"));
    QCOMPARE(inCell(pane, 0, 5), QStringLiteral("gridLayout_6"));
    QCOMPARE(inCell(pane, 2, 0), QStringLiteral("line_3"));
    QCOMPARE(spanOf(pane, ui->line_3), 6);
    const QLayout* lastRow = pane->itemAtPosition(3, 0)->layout();
    QCOMPARE(lastRow->itemAt(0)->layout(), grid("gridLayout_7"));
    QVERIFY(lastRow->itemAt(1)->spacerItem() != nullptr);
    QCOMPARE(lastRow->itemAt(2)->widget(), ui->quit_button);
    QCOMPARE(ui->quit_button->text(), QStringLiteral("Quit"));
    const QGridLayout* top = grid("gridLayout_3");
    QCOMPARE(inCell(top, 0, 0), QStringLiteral("left_pane"));
    QCOMPARE(top->itemAtPosition(0, 1)->layout()->itemAt(0)->widget(), ui->splitter);
}

void TestMainWindowLayout::theSourceBlockHasItsRows()
{
    const QGridLayout* block = grid("gridLayout_4");
    QCOMPARE(inCell(block, 2, 0), QStringLiteral("I/Q Generation:"));
    QCOMPARE(inCell(block, 2, 1), QStringLiteral("internal_ratio_button"));
    QCOMPARE(inCell(block, 2, 2), QStringLiteral("mp_load_ratio_button"));
    QCOMPARE(inCell(block, 2, 3), QStringLiteral("iq_load_ratio_button"));
    QCOMPARE(inCell(block, 3, 0), QStringLiteral("signal_stacked_widget"));
    QCOMPARE(spanOf(block, ui->signal_stacked_widget), 4);
    QCOMPARE(ui->internal_ratio_button->text(), QStringLiteral("Internal"));
    QCOMPARE(ui->mp_load_ratio_button->text(), QStringLiteral("Load Mag/Pha"));
    QCOMPARE(ui->iq_load_ratio_button->text(), QStringLiteral("Load I/Q"));
}

void TestMainWindowLayout::theCalculationBlockHasItsCells()
{
    const QGridLayout* block = grid("gridLayout_2");
    QCOMPARE(inCell(block, 0, 0), QStringLiteral("sinx_checkbox"));
    QCOMPARE(spanOf(block, ui->sinx_checkbox), 2);
    QCOMPARE(inCell(block, 0, 2), QStringLiteral("calc_fft_button"));
    QCOMPARE(spanOf(block, ui->calc_fft_button), 2);
    QCOMPARE(inCell(block, 0, 4), QStringLiteral("Crest Factor:"));
    QCOMPARE(inCell(block, 1, 0), QStringLiteral("compensate_checkbox"));
    QCOMPARE(spanOf(block, ui->compensate_checkbox), 2);
    QCOMPARE(inCell(block, 1, 2), QStringLiteral("fft_status"));
    QCOMPARE(block->itemAtPosition(1, 3)->widget(), ui->fft_status_label);
    QCOMPARE(inCell(block, 1, 4), QStringLiteral("crest_factor_output"));
    QCOMPARE(ui->sinx_checkbox->text(), QStringLiteral("Sin(x) Comp."));
    QCOMPARE(ui->compensate_checkbox->text(), QStringLiteral("Compensate"));
    QVERIFY(!ui->compensate_checkbox->isEnabled());
    QCOMPARE(ui->calc_fft_button->text(), QStringLiteral("Calculate FFT"));
    QCOMPARE(ui->crest_factor_output->placeholderText(), QStringLiteral("---"));
}

void TestMainWindowLayout::theConnectionBlockHasItsCells()
{
    const QGridLayout* block = grid("gridLayout_6");
    QCOMPARE(inCell(block, 0, 0), QStringLiteral("tcp_status"));
    QCOMPARE(inCell(block, 0, 1), QStringLiteral("not connected"));
    QCOMPARE(spanOf(block, ui->tcp_status_label), 2);
    QCOMPARE(inCell(block, 1, 0), QStringLiteral("TCP/IP Port"));
    QCOMPARE(inCell(block, 1, 1), QStringLiteral("TCP/IP Port")); // spans two
    QCOMPARE(inCell(block, 1, 2), QStringLiteral("port_input"));
}

void TestMainWindowLayout::theMeasurementBlockHasItsCells()
{
    const QGridLayout* block = grid("gridLayout_7");
    const char* heads[] = {"Signal Power / dBm", "NPR Lower / dB", "NPR Upper / dB", "widget"};
    const char* values[] = {"signal_power", "npr_lower", "npr_upper"};
    for (int column = 0; column < 4; ++column) {
        QCOMPARE(inCell(block, 1, column), QString::fromLatin1(heads[column]));
    }
    for (int column = 0; column < 3; ++column) {
        QCOMPARE(inCell(block, 3, column), QString::fromLatin1(values[column]));
    }
    QCOMPARE(inCell(block, 1, 5), QStringLiteral("preset_button"));
    QCOMPARE(spanOf(block, ui->preset_button), 2);
    QCOMPARE(inCell(block, 1, 7), QStringLiteral("measure_button"));
    QCOMPARE(spanOf(block, ui->measure_button), 2);
    QCOMPARE(inCell(block, 3, 5), QStringLiteral("Notch Nr."));
    QCOMPARE(inCell(block, 3, 6), QStringLiteral("measure_notch"));
    QCOMPARE(inCell(block, 3, 7), QStringLiteral("Mode"));
    QCOMPARE(inCell(block, 3, 8), QStringLiteral("measure_mode"));
    QCOMPARE(ui->preset_button->text(), QStringLiteral("Preset"));
    QCOMPARE(ui->measure_button->text(), QStringLiteral("Measure"));
    QVERIFY(!ui->measure_button->isEnabled());
}

void TestMainWindowLayout::eachSourceHasItsPage()
{
    QCOMPARE(ui->signal_stacked_widget->count(), 3);
    QCOMPARE(ui->signal_stacked_widget->widget(0), ui->page);
    QCOMPARE(ui->signal_stacked_widget->widget(1), ui->page_2);
    QCOMPARE(ui->signal_stacked_widget->widget(2), ui->page_3);
    QCOMPARE(contentOf(ui->page),
             QStringList({"Phase Distr.", "phase_mode_combobox", "Const. Seed", "seed_input"}));
    QCOMPARE(contentOf(ui->page_2),
             QStringList({"Phase/Magn File", "le_custom_file", "le_custom_file_button"}));
    QCOMPARE(contentOf(ui->page_3),
             QStringList({"I", "i_file", "i_file_button", "Q", "q_file", "q_file_button"}));
    for (const QPushButton* load :
         {ui->le_custom_file_button, ui->i_file_button, ui->q_file_button}) {
        QCOMPARE(load->text(), QStringLiteral("Load"));
    }
}

void TestMainWindowLayout::theSplitterHoldsTheTableAboveTheGraph()
{
    QCOMPARE(ui->splitter->orientation(), Qt::Vertical);
    QCOMPARE(ui->splitter->count(), 2);
    QCOMPARE(ui->splitter->widget(0), ui->main_table);
    QCOMPARE(ui->splitter->widget(1), ui->graph_widget);
    QVERIFY(!ui->main_table->showGrid());
    QVERIFY(!ui->main_table->alternatingRowColors()); // the model shades its rows
}

QTEST_MAIN(TestMainWindowLayout)
#include "test_main_window_layout.moc"
