// The window as an operator meets it: first start, inputs and what they invalidate, calculation.
#include "kit/file_content.h"
#include "kit/main_window_test.h"

class TestMainWindow : public MainWindowTest
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void firstStartShowsDefaults();
    void derivedDisplaysFollowTheInputs();
    void calculationEndsValidWithItsCrestFactor();
    void calculationWithoutAFileEndsInvalid();
    void parametersOfTheSignalInvalidateIt_data();
    void parametersOfTheSignalInvalidateIt();
    void inputsThatOnlyPrepareDoNotInvalidate_data();
    void inputsThatOnlyPrepareDoNotInvalidate();
    void changeDuringACalculationFreesTheButtonAndEndsValid();
    void twoCalculationsRunBesideEachOther();
    void everyClickHasItsLineInTheLog_data();
    void everyClickHasItsLineInTheLog();
    void sourceButtonsTurnThePages();
    void seedIsKeptWhileItIsDisabled();
    void sinxCompensationIsKeptWhileItIsDisabled();
    void compensationNeedsALoadedTrace();
    void sampleRateIsStoredAsTheFieldShowsIt();
    void carrierModeDeletesAllRowsAndHidesColumns();
    void choosingTheSameModeKeepsTheTable();
    void noNotchNoMeasurement();
    void settingsAreFoundAgainAtTheNextStart();
    void rowsWithoutANameSurviveTheWindow();
};

void TestMainWindow::init()
{
    openWindow();
}

void TestMainWindow::cleanup()
{
    closeWindow();
}

void TestMainWindow::firstStartShowsDefaults()
{
    QCOMPARE(window->windowTitle(), QStringLiteral("Notchbench"));
    QCOMPARE(window->size(), QSize(829, 449));
    // Qt adds the title and the system menu to buttons.
    QCOMPARE(window->windowFlags() & ~Qt::WindowType_Mask,
             Qt::WindowMinimizeButtonHint | Qt::WindowMaximizeButtonHint |
                 Qt::WindowContextHelpButtonHint | Qt::WindowCloseButtonHint | Qt::WindowTitleHint |
                 Qt::WindowSystemMenuHint);
    QCOMPARE(QDir::currentPath(), QDir::homePath());
    QCOMPARE(operate->text("fft_status_label"), QStringLiteral("Data invalid"));
    QCOMPARE(operate->text("tcp_status_label"), QStringLiteral("not connected"));
    QCOMPARE(operate->text("crest_factor_output"), QStringLiteral("---"));
    QCOMPARE(operate->text("sample_rate_input"), QStringLiteral("100.000000"));
    QCOMPARE(operate->text("nbw_srate_input"), QStringLiteral("1.000000"));
    QCOMPARE(operate->text("noise_bw_output"), QStringLiteral("100.000000"));
    QCOMPARE(operate->text("fft_length_input"), QStringLiteral("131072"));
    QCOMPARE(operate->text("line_spacing_input"), QStringLiteral("0.762939"));
    QCOMPARE(operate->text("notch_count_input"), QStringLiteral("0"));
    QCOMPARE(operate->text("notch_width_input"), QStringLiteral("10.000000"));
    QCOMPARE(operate->text("notch_offset_input"), QStringLiteral("10.000000"));
    QCOMPARE(operate->text("notch_depth_input"), QStringLiteral("-100.000000"));
    QCOMPARE(operate->text("seed_input"), QStringLiteral("1"));
    QCOMPARE(operate->text("port_input"), QStringLiteral("1000"));
    QVERIFY(operate->isEnabled("calc_fft_button"));
    QVERIFY(operate->isEnabled("preset_button"));
    QVERIFY(!operate->isEnabled("measure_button"));
    QVERIFY(!operate->isEnabled("measure_mode"));
    QVERIFY(!operate->isEnabled("compensate_checkbox"));
    QVERIFY(!window->findChild<QAction*>("actionSave_Waveform")->isEnabled());
    QVERIFY(!window->findChild<QAction*>("actionLoad_SAN_Mag")->isEnabled());
    QCOMPARE(operate->rowCount(), 0);
}

void TestMainWindow::derivedDisplaysFollowTheInputs()
{
    operate->type("sample_rate_input", "200");
    operate->type("nbw_srate_input", "0.8");
    operate->pick("fft_length_input", 12);
    QCOMPARE(operate->text("fft_length_input"), QStringLiteral("1024"));
    QCOMPARE(operate->text("noise_bw_output"), QStringLiteral("160.000000"));
    QCOMPARE(operate->text("line_spacing_input"), QStringLiteral("195.312500"));
}

void TestMainWindow::calculationEndsValidWithItsCrestFactor()
{
    operate->pick("fft_length_input", 16);   // 64
    operate->pick("phase_mode_combobox", 3); // constant: one peak of 10 log10(64) dB
    operate->click("calc_fft_button");
    QCOMPARE(operate->text("fft_status_label"), QStringLiteral("Calculating ..."));
    QVERIFY(!operate->isEnabled("calc_fft_button"));
    QTRY_COMPARE(operate->text("fft_status_label"), QStringLiteral("Data valid"));
    QVERIFY(operate->isEnabled("calc_fft_button"));
    QCOMPARE(operate->text("crest_factor_output"), QStringLiteral("18.0618 dB"));
    QVERIFY(window->findChild<QAction*>("actionSave_Waveform")->isEnabled());
    QVERIFY(window->findChild<QAction*>("actionLoad_SAN_Mag")->isEnabled());
}

void TestMainWindow::calculationWithoutAFileEndsInvalid()
{
    calculate();
    operate->click("mp_load_ratio_button");
    operate->click("calc_fft_button");
    QCOMPARE(operate->text("fft_status_label"), QStringLiteral("Calculating ..."));
    QTRY_COMPARE(operate->text("fft_status_label"), QStringLiteral("Data invalid"));
    QCOMPARE(operate->text("crest_factor_output"), QStringLiteral("---"));
    QVERIFY(operate->isEnabled("calc_fft_button"));
}

using Deed = void (*)(const WindowDriver&);
Q_DECLARE_METATYPE(Deed)

void TestMainWindow::parametersOfTheSignalInvalidateIt_data()
{
    QTest::addColumn<Deed>("deed");
    const auto row = [](const char* name, Deed deed) { QTest::newRow(name) << deed; };
    row("sample rate", [](const WindowDriver& o) { o.type("sample_rate_input", "50"); });
    row("bandwidth", [](const WindowDriver& o) { o.type("nbw_srate_input", "0.5"); });
    row("length", [](const WindowDriver& o) { o.pick("fft_length_input", 15); });
    row("phase law", [](const WindowDriver& o) { o.pick("phase_mode_combobox", 2); });
    row("seed", [](const WindowDriver& o) { o.type("seed_input", "7"); });
    row("sin(x)/x", [](const WindowDriver& o) { o.click("sinx_checkbox"); });
    row("source", [](const WindowDriver& o) { o.click("iq_load_ratio_button"); });
    row("carrier mode", [](const WindowDriver& o) { o.pick("nc_combobox", 1); });
    row("table", [](const WindowDriver& o) { o.click("autocalc_notches_button"); });
}

void TestMainWindow::parametersOfTheSignalInvalidateIt()
{
    QFETCH(Deed, deed);
    operate->pick("fft_length_input", 16);
    calculate();
    deed(*operate);
    QCOMPARE(operate->text("fft_status_label"), QStringLiteral("Data invalid"));
    QVERIFY(!window->findChild<QAction*>("actionSave_Waveform")->isEnabled());
    QVERIFY(!window->findChild<QAction*>("actionLoad_SAN_Mag")->isEnabled());
}

void TestMainWindow::inputsThatOnlyPrepareDoNotInvalidate_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("value");
    QTest::newRow("count") << "notch_count_input"
                           << "3";
    QTest::newRow("width") << "notch_width_input"
                           << "2.000000";
    QTest::newRow("offset") << "notch_offset_input"
                            << "-4.000000";
    QTest::newRow("depth") << "notch_depth_input"
                           << "-35.000000";
    QTest::newRow("port") << "port_input"
                          << "0";
}

void TestMainWindow::inputsThatOnlyPrepareDoNotInvalidate()
{
    QFETCH(QString, name);
    QFETCH(QString, value);
    operate->pick("fft_length_input", 16);
    calculate();
    operate->type(name.toLatin1().constData(), value);
    QCOMPARE(operate->text(name.toLatin1().constData()), value);
    QCOMPARE(operate->text("fft_status_label"), QStringLiteral("Data valid"));
}

void TestMainWindow::changeDuringACalculationFreesTheButtonAndEndsValid()
{
    operate->pick("fft_length_input", 1); // long enough to be met on its way
    operate->click("calc_fft_button");
    operate->type("seed_input", "5");
    QCOMPARE(operate->text("fft_status_label"), QStringLiteral("Data invalid"));
    QVERIFY(operate->isEnabled("calc_fft_button"));
    QTRY_COMPARE_WITH_TIMEOUT(operate->text("fft_status_label"), QStringLiteral("Data valid"),
                              60000);
}

void TestMainWindow::twoCalculationsRunBesideEachOther()
{
    QSignalSpy ended(window.get(), &MainWindow::fftFinished);
    operate->pick("fft_length_input", 3);
    operate->click("calc_fft_button");
    operate->type("seed_input", "5");
    operate->click("calc_fft_button");
    QTRY_COMPARE_WITH_TIMEOUT(ended.count(), 2, 60000);
    QCOMPARE(operate->text("fft_status_label"), QStringLiteral("Data valid"));
}

void TestMainWindow::everyClickHasItsLineInTheLog_data()
{
    QTest::addColumn<Deed>("deed");
    QTest::addColumn<QByteArray>("line");
    const auto row = [](const char* line, Deed deed) {
        QTest::newRow(line) << deed << QByteArray(line);
    };
    row("FFT Length Changed To:  64",
        [](const WindowDriver& o) { o.pick("fft_length_input", 16); });
    row("Notch Count Changed", [](const WindowDriver& o) { o.type("notch_count_input", "4"); });
    row("AutoCalc Notches Clicked",
        [](const WindowDriver& o) { o.click("autocalc_notches_button"); });
    row("Cell Changed 6 1", [](const WindowDriver& o) { o.typeCell(1, 6, "-40"); });
    row("Device Window Opened", [](const WindowDriver& o) { o.trigger("actionDevices"); });
    row("Quit Clicked", [](const WindowDriver& o) { o.click("quit_button"); });
}

void TestMainWindow::everyClickHasItsLineInTheLog()
{
    QFETCH(Deed, deed);
    QFETCH(QByteArray, line);
    operate->type("notch_count_input", "3");
    operate->type("notch_offset_input", "0");
    operate->click("autocalc_notches_button");
    QTest::ignoreMessage(QtDebugMsg, line); // fails without it
    deed(*operate);
}

void TestMainWindow::sourceButtonsTurnThePages()
{
    auto* pages = operate->find<QStackedWidget>("signal_stacked_widget");
    QCOMPARE(pages->currentIndex(), 0);
    operate->click("mp_load_ratio_button");
    QCOMPARE(pages->currentIndex(), 1);
    operate->click("iq_load_ratio_button");
    QCOMPARE(pages->currentIndex(), 2);
    operate->click("internal_ratio_button");
    QCOMPARE(pages->currentIndex(), 0);
}

void TestMainWindow::seedIsKeptWhileItIsDisabled()
{
    operate->type("seed_input", "77");
    operate->pick("phase_mode_combobox", 1);
    QVERIFY(!operate->isEnabled("seed_input"));
    QCOMPARE(operate->text("seed_input"), QStringLiteral("77"));
    operate->pick("phase_mode_combobox", 0);
    QVERIFY(operate->isEnabled("seed_input"));
    QCOMPARE(operate->text("seed_input"), QStringLiteral("77"));
}

void TestMainWindow::sinxCompensationIsKeptWhileItIsDisabled()
{
    operate->click("sinx_checkbox");
    operate->click("mp_load_ratio_button");
    QVERIFY(!operate->isEnabled("sinx_checkbox"));
    QVERIFY(operate->find<QAbstractButton>("sinx_checkbox")->isChecked());
    operate->click("internal_ratio_button");
    QVERIFY(operate->isEnabled("sinx_checkbox"));
    QVERIFY(operate->find<QAbstractButton>("sinx_checkbox")->isChecked());
}

void TestMainWindow::compensationNeedsALoadedTrace()
{
    operate->click("compensate_checkbox");
    QVERIFY(!operate->find<QAbstractButton>("compensate_checkbox")->isChecked());
}

void TestMainWindow::sampleRateIsStoredAsTheFieldShowsIt()
{
    operate->type("sample_rate_input", "100.0000005"); // one digit more than the field takes
    QCOMPARE(operate->text("sample_rate_input"), QStringLiteral("100.000000"));
    operate->type("sample_rate_input", "99999");
    QVERIFY(operate->find<QDoubleSpinBox>("sample_rate_input")->value() <= 23000.0);
}

void TestMainWindow::carrierModeDeletesAllRowsAndHidesColumns()
{
    operate->type("notch_count_input", "3");
    operate->type("notch_offset_input", "0");
    operate->click("autocalc_notches_button");
    QCOMPARE(operate->rowCount(), 3);

    operate->pick("nc_combobox", 1);
    QCOMPARE(operate->rowCount(), 0);
    QVERIFY(!operate->isEnabled("notch_width_input"));
    QVERIFY(!operate->isEnabled("notch_depth_input"));
    QVERIFY(operate->isEnabled("notch_count_input"));
    operate->click("autocalc_notches_button");
    QCOMPARE(operate->rowCount(), 3);
    auto* table = operate->find<QTableView>("main_table");
    for (int column = 0; column < 7; ++column) {
        QCOMPARE(table->isColumnHidden(column), column != 0 && column != 4);
    }
    QCOMPARE(table->model()->headerData(4, Qt::Horizontal).toString(), QStringLiteral("Index"));

    operate->pick("nc_combobox", 0);
    QCOMPARE(operate->rowCount(), 0);
    QVERIFY(!table->isColumnHidden(1));
    QCOMPARE(table->model()->headerData(4, Qt::Horizontal).toString(),
             QStringLiteral("Start Index"));
}

void TestMainWindow::choosingTheSameModeKeepsTheTable()
{
    operate->type("notch_count_input", "3");
    operate->type("notch_offset_input", "0");
    operate->click("autocalc_notches_button");
    operate->pick("nc_combobox", 0);
    QCOMPARE(operate->rowCount(), 3);
}

void TestMainWindow::noNotchNoMeasurement()
{
    auto* notch = operate->find<QSpinBox>("measure_notch");
    QCOMPARE(notch->maximum(), 0);
    operate->type("measure_notch", "3");
    QCOMPARE(notch->value(), 0);
    QVERIFY(!operate->isEnabled("measure_button"));
    operate->type("notch_count_input", "3");
    operate->type("notch_offset_input", "0");
    operate->click("autocalc_notches_button");
    QCOMPARE(notch->maximum(), 3);
}

void TestMainWindow::settingsAreFoundAgainAtTheNextStart()
{
    operate->type("sample_rate_input", "61.44");
    operate->type("nbw_srate_input", "0.75");
    operate->pick("fft_length_input", 10);
    operate->pick("phase_mode_combobox", 2);
    operate->type("notch_count_input", "5");
    operate->type("notch_width_input", "1");
    operate->type("notch_offset_input", "0");
    operate->click("autocalc_notches_button");
    operate->click("sinx_checkbox");
    const QString width = operate->cell(2, 1);

    window->close();
    cleanup();
    window = std::make_unique<MainWindow>();
    operate = std::make_unique<WindowDriver>(*window);

    QCOMPARE(operate->text("sample_rate_input"), QStringLiteral("61.440000"));
    QCOMPARE(operate->text("nbw_srate_input"), QStringLiteral("0.750000"));
    QCOMPARE(operate->text("fft_length_input"), QStringLiteral("4096"));
    QCOMPARE(operate->text("phase_mode_combobox"), QStringLiteral("Parabolic"));
    QCOMPARE(operate->text("notch_count_input"), QStringLiteral("5"));
    QVERIFY(operate->find<QAbstractButton>("sinx_checkbox")->isChecked());
    QCOMPARE(operate->rowCount(), 5);
    QCOMPARE(operate->cell(2, 1), width);
    QCOMPARE(operate->text("fft_status_label"), QStringLiteral("Data invalid"));
}

void TestMainWindow::rowsWithoutANameSurviveTheWindow()
{
    cleanup();
    const QByteArrayList lines = {"Notch/Carrier = 7\n", "Phase Mode = 9\n", "Custom = 5\n"};
    const QByteArray notch = "[Notch 1]\nfcenter = 1e+06\n\n";
    putContent(defaultConfigPath(), "[NPR]\n" + lines.join() + '\n' + notch);
    window = std::make_unique<MainWindow>();
    operate = std::make_unique<WindowDriver>(*window);
    QCOMPARE(operate->rowCount(), 1);
    operate->type("seed_input", "3"); // refreshes
    cleanup();
    const QByteArray saved = contentOf(defaultConfigPath());
    for (const QByteArray& line : lines) {
        QVERIFY2(saved.contains('\n' + line), saved.constData());
    }
    QVERIFY(saved.contains("\nfcenter = 1e+06\n"));
}

QTEST_MAIN(TestMainWindow)
#include "test_main_window.moc"
