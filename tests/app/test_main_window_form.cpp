// The form of the main window by itself: object names, ranges, rows, bounds and menus are
// the contract that the slots, the style sheet and the configuration file rely on.
#include "look/house_style.h"
#include "ui_main_window.h"

#include <QtTest>

#include <memory>

namespace {

constexpr int anySize = QWIDGETSIZE_MAX;

QStringList textsOf(const QMenu* menu)
{
    QStringList texts;
    for (const QAction* action : menu->actions()) {
        texts.append(action->isSeparator() ? QStringLiteral("-") : action->text());
    }
    return texts;
}

} // namespace

class TestMainWindowForm : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void theWindowHasItsTitleSizeAndLocale();
    void theNumberFieldsHaveTheirRanges_data();
    void theNumberFieldsHaveTheirRanges();
    void theComboBoxesHaveTheirRows_data();
    void theComboBoxesHaveTheirRows();
    void theFieldsAreBoundedInSize_data();
    void theFieldsAreBoundedInSize();
    void theFormStartsOnPageTwoWithTheInternalSource();
    void numbersOfTheLeftPaneAreRightAligned();
    void displayFieldsCannotBeEdited();
    void theMeasuredValuesAreLargePanels();
    void theTabOrderFollowsThePanel();
    void theMenusHaveTheirEntries();
    void theEntriesHaveTheirObjectsAndShortcuts();
    void everyEntryIsEnabled();
    void decimalPointsDoNotDependOnTheSystem();
    void labelsNameTheirFieldsForScreenReaders();

private:
    std::unique_ptr<QMainWindow> window;
    std::unique_ptr<Ui::MainWindow> ui;
};

void TestMainWindowForm::init()
{
    window = std::make_unique<QMainWindow>();
    ui = std::make_unique<Ui::MainWindow>();
    ui->setupUi(window.get());
    window->setStyleSheet(houseStyleSheet());
}

void TestMainWindowForm::cleanup()
{
    window.reset();
    ui.reset();
}

void TestMainWindowForm::theWindowHasItsTitleSizeAndLocale()
{
    QCOMPARE(window->windowTitle(), QStringLiteral("Notchbench"));
    QCOMPARE(window->size(), QSize(829, 449));
    QCOMPARE(window->locale(), QLocale(QLocale::English, QLocale::UnitedStates));
}

void TestMainWindowForm::theNumberFieldsHaveTheirRanges_data()
{
    QTest::addColumn<double>("minimum");
    QTest::addColumn<double>("maximum");
    QTest::addColumn<double>("step");
    QTest::addColumn<int>("decimals"); // -1: whole numbers
    QTest::addColumn<double>("value");
    QTest::newRow("sample_rate_input") << 0.00001 << 23000.0 << 10.0 << 6 << 100.0;
    QTest::newRow("nbw_srate_input") << 0.1 << 1.0 << 0.1 << 6 << 1.0;
    QTest::newRow("notch_count_input") << 0.0 << 999.0 << 1.0 << -1 << 0.0;
    QTest::newRow("notch_width_input") << 0.000001 << 100.0 << 1.0 << 6 << 0.000001;
    QTest::newRow("notch_offset_input") << -105.0 << 105.0 << 1.0 << 6 << 0.0;
    QTest::newRow("notch_depth_input") << -100.0 << 0.0 << 5.0 << 6 << 0.0;
    // Deliberate: the seed ends at 483647, far below the limit of its 32 bits.
    QTest::newRow("seed_input") << 1.0 << 483647.0 << 1.0 << -1 << 1.0;
    QTest::newRow("port_input") << 0.0 << 65535.0 << 1.0 << -1 << 1000.0;
    QTest::newRow("measure_notch") << 0.0 << 0.0 << 1.0 << -1 << 0.0;
}

void TestMainWindowForm::theNumberFieldsHaveTheirRanges()
{
    QFETCH(double, minimum);
    QFETCH(double, maximum);
    QFETCH(double, step);
    QFETCH(int, decimals);
    QFETCH(double, value);
    auto* field = window->findChild<QAbstractSpinBox*>(QLatin1String(QTest::currentDataTag()));
    QVERIFY(field != nullptr);
    QCOMPARE(field->property("minimum").toDouble(), minimum);
    QCOMPARE(field->property("maximum").toDouble(), maximum);
    QCOMPARE(field->property("singleStep").toDouble(), step);
    QCOMPARE(field->property("value").toDouble(), value);
    const QVariant places = field->property("decimals");
    QCOMPARE(places.isValid() ? places.toInt() : -1, decimals);
}

void TestMainWindowForm::theComboBoxesHaveTheirRows_data()
{
    QTest::addColumn<QStringList>("rows");
    // Deliberate: descending, row r stands for 2 to the power (22 - r), and rows are stored.
    QTest::newRow("fft_length_input") << QStringList{
        "4194304", "2097152", "1048576", "524288", "262144", "131072", "65536", "32768", "16384",
        "8192",    "4096",    "2048",    "1024",   "512",    "256",    "128",   "64"};
    QTest::newRow("nc_combobox") << QStringList{"Notch", "Carrier"};
    QTest::newRow("phase_mode_combobox")
        << QStringList{"Rnd (const. seed)", "Rnd (continue)", "Parabolic", "Constant"};
    QTest::newRow("measure_mode") << QStringList{"Cont", "Single"};
}

void TestMainWindowForm::theComboBoxesHaveTheirRows()
{
    QFETCH(QStringList, rows);
    auto* box = window->findChild<QComboBox*>(QLatin1String(QTest::currentDataTag()));
    QVERIFY(box != nullptr);
    QStringList found;
    for (int row = 0; row < box->count(); ++row) {
        found.append(box->itemText(row));
    }
    QCOMPARE(found, rows);
    QCOMPARE(box->currentIndex(), 0);
}

void TestMainWindowForm::theFieldsAreBoundedInSize_data()
{
    QTest::addColumn<int>("minimumWidth");
    QTest::addColumn<int>("maximumWidth");
    QTest::addColumn<int>("maximumHeight");
    QTest::newRow("sample_rate_input") << 90 << 90 << anySize;
    QTest::newRow("nbw_srate_input") << 0 << 90 << anySize;
    QTest::newRow("noise_bw_output") << 0 << 90 << anySize;
    QTest::newRow("fft_length_input") << 0 << 90 << anySize;
    QTest::newRow("line_spacing_input") << 0 << 90 << anySize;
    QTest::newRow("notch_count_input") << 0 << 90 << anySize;
    QTest::newRow("notch_width_input") << 0 << 90 << anySize;
    QTest::newRow("notch_offset_input") << 0 << 90 << anySize;
    QTest::newRow("notch_depth_input") << 0 << 90 << anySize;
    QTest::newRow("autocalc_notches_button") << 0 << anySize << 17;
    QTest::newRow("calc_fft_button") << 0 << anySize << 17;
    QTest::newRow("preset_button") << 0 << anySize << 17;
    QTest::newRow("measure_button") << 0 << anySize << 17;
    QTest::newRow("quit_button") << 50 << 50 << 17;
    QTest::newRow("crest_factor_output") << 0 << 80 << 17;
    QTest::newRow("fft_status") << 10 << 10 << anySize;
    QTest::newRow("tcp_status") << 10 << 10 << anySize;
    QTest::newRow("port_input") << 0 << 60 << anySize;
    QTest::newRow("phase_mode_combobox") << 0 << 110 << anySize;
    QTest::newRow("seed_input") << 0 << 65 << anySize;
    QTest::newRow("le_custom_file_label") << 0 << 100 << anySize;
    QTest::newRow("widget") << 10 << 10 << anySize;
    QTest::newRow("measure_notch") << 40 << 50 << anySize;
    QTest::newRow("measure_mode") << 60 << 60 << anySize;
    QTest::newRow("signal_power_label") << 100 << anySize << anySize;
    QTest::newRow("npr_lower_label") << 100 << anySize << anySize;
    QTest::newRow("npr_upper_label") << 100 << anySize << anySize;
    QTest::newRow("splitter") << 600 << anySize << anySize;
}

void TestMainWindowForm::theFieldsAreBoundedInSize()
{
    QFETCH(int, minimumWidth);
    QFETCH(int, maximumWidth);
    QFETCH(int, maximumHeight);
    auto* widget = window->findChild<QWidget*>(QLatin1String(QTest::currentDataTag()));
    QVERIFY(widget != nullptr);
    QCOMPARE(widget->minimumWidth(), minimumWidth);
    QCOMPARE(widget->maximumWidth(), maximumWidth);
    QCOMPARE(widget->maximumHeight(), maximumHeight);
}

void TestMainWindowForm::theFormStartsOnPageTwoWithTheInternalSource()
{
    // Deliberate: the page has no meaning before the first refresh sets it.
    QCOMPARE(ui->signal_stacked_widget->currentIndex(), 2);
    QVERIFY(ui->internal_ratio_button->isChecked());
    QVERIFY(!ui->mp_load_ratio_button->isChecked());
    QVERIFY(!ui->iq_load_ratio_button->isChecked());
}

void TestMainWindowForm::numbersOfTheLeftPaneAreRightAligned()
{
    const Qt::Alignment right = Qt::AlignRight | Qt::AlignVCenter;
    const auto fields = ui->left_pane->findChildren<QDoubleSpinBox*>();
    QVERIFY(!fields.isEmpty());
    for (const QDoubleSpinBox* field : fields) {
        QCOMPARE(field->alignment(), right);
    }
    for (const QLineEdit* field :
         {ui->noise_bw_output, ui->line_spacing_input, ui->crest_factor_output}) {
        QCOMPARE(field->alignment(), right);
    }
}

void TestMainWindowForm::displayFieldsCannotBeEdited()
{
    QVERIFY(!ui->noise_bw_output->isEnabled());
    QVERIFY(!ui->line_spacing_input->isEnabled());
    for (const QLineEdit* field :
         {ui->le_custom_file, ui->i_file, ui->q_file, ui->crest_factor_output}) {
        QVERIFY2(field->isReadOnly(), qPrintable(field->objectName()));
        QVERIFY2(field->isEnabled(), qPrintable(field->objectName()));
    }
}

void TestMainWindowForm::theMeasuredValuesAreLargePanels()
{
    window->ensurePolished();
    for (QLabel* value : {ui->signal_power, ui->npr_lower, ui->npr_upper}) {
        value->ensurePolished();
        QCOMPARE(value->text(), QStringLiteral("--.--"));
        QCOMPARE(value->font().family(), QStringLiteral("Arial"));
        QCOMPARE(value->font().pointSize(), 20);
        QCOMPARE(value->frameShape(), QFrame::StyledPanel);
        QCOMPARE(value->alignment(), Qt::AlignRight | Qt::AlignVCenter);
    }
    for (const QLabel* head : {ui->signal_power_label, ui->npr_lower_label, ui->npr_upper_label}) {
        QCOMPARE(head->alignment(), Qt::AlignRight | Qt::AlignVCenter);
    }
}

void TestMainWindowForm::theTabOrderFollowsThePanel()
{
    const QStringList order = {"nc_combobox",
                               "sample_rate_input",
                               "nbw_srate_input",
                               "noise_bw_output",
                               "fft_length_input",
                               "line_spacing_input",
                               "notch_count_input",
                               "notch_width_input",
                               "notch_offset_input",
                               "notch_depth_input",
                               "autocalc_notches_button",
                               "main_table",
                               "internal_ratio_button",
                               "mp_load_ratio_button",
                               "iq_load_ratio_button",
                               "i_file",
                               "i_file_button",
                               "q_file",
                               "q_file_button",
                               "sinx_checkbox",
                               "compensate_checkbox",
                               "calc_fft_button",
                               "crest_factor_output",
                               "port_input",
                               "preset_button",
                               "measure_notch",
                               "measure_button",
                               "measure_mode",
                               "quit_button",
                               "seed_input",
                               "le_custom_file",
                               "le_custom_file_button",
                               "phase_mode_combobox"};
    QStringList found;
    const QWidget* widget = ui->nc_combobox;
    do {
        if (order.contains(widget->objectName())) {
            found.append(widget->objectName());
        }
        widget = widget->nextInFocusChain();
    } while (widget != ui->nc_combobox);
    QCOMPARE(found, order);
}

void TestMainWindowForm::theMenusHaveTheirEntries()
{
    QStringList titles;
    for (const QAction* menu : ui->menubar->actions()) {
        titles.append(menu->text());
    }
    QCOMPARE(titles, QStringList({"File", "Tools", "Help"}));
    QCOMPARE(textsOf(ui->menuFile),
             QStringList({"Load Cfg File", "Save Cfg File", "-", "Load SAN Mag", "-",
                          "Save Waveform", "-", "Quit"}));
    QCOMPARE(textsOf(ui->menuTools), QStringList({"Devices", "Optimize Crest Factor"}));
    QCOMPARE(textsOf(ui->menuHelp), QStringList({"Help", "About"}));
}

void TestMainWindowForm::theEntriesHaveTheirObjectsAndShortcuts()
{
    const struct
    {
        const char* object;
        const char* text;
        const char* shortcut;
    } entries[] = {
        {"actionLoad_Cfg_File", "Load Cfg File", "Ctrl+O"},
        {"actionSave_Cfg_File", "Save Cfg File", "Ctrl+S"},
        {"actionLoad_SAN_Mag", "Load SAN Mag", ""},
        {"actionSave_Waveform", "Save Waveform", ""},
        {"actionQuit", "Quit", "Ctrl+Q"},
        {"actionDevices", "Devices", ""},
        // Deliberate spelling of the object: slots and connections use it.
        {"actionOptimize_Crest_Fector", "Optimize Crest Factor", ""},
        {"actionHelp", "Help", ""},
        {"actionAbout", "About", ""},
    };
    for (const auto& entry : entries) {
        const auto* action = window->findChild<QAction*>(QLatin1String(entry.object));
        QVERIFY2(action != nullptr, entry.object);
        QCOMPARE(action->text(), QString::fromLatin1(entry.text));
        QCOMPARE(action->shortcut().toString(QKeySequence::PortableText),
                 QString::fromLatin1(entry.shortcut));
    }
}

void TestMainWindowForm::everyEntryIsEnabled()
{
    const auto actions = window->findChildren<QAction*>();
    QVERIFY(actions.size() >= 8);
    for (const QAction* action : actions) {
        QVERIFY2(action->isEnabled(), qPrintable(action->text()));
    }
}

void TestMainWindowForm::decimalPointsDoNotDependOnTheSystem()
{
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    QMainWindow german;
    Ui::MainWindow form;
    form.setupUi(&german);
    form.sample_rate_input->setValue(12.5);
    QCOMPARE(form.sample_rate_input->text(), QStringLiteral("12.500000"));
    QLocale::setDefault(before);
}

void TestMainWindowForm::labelsNameTheirFieldsForScreenReaders()
{
    QCOMPARE(ui->sample_rate_label->buddy(), ui->sample_rate_input);
    QCOMPARE(ui->port_label->buddy(), ui->port_input);
    QCOMPARE(ui->measure_notch_label->buddy(), ui->measure_notch);
}

QTEST_MAIN(TestMainWindowForm)
#include "test_main_window_form.moc"
