// The help that the window gives where one points: a tool tip, a "What's this" text and a name for
// screen readers at everything that takes input or shows a value.
#include "app/status_indicator_widget.h"
#include "fit/dialogs/load_trace_dialog.h"
#include "kit/contrast.h"
#include "kit/main_window_test.h"

#include <QHelpEvent>
#include <QToolTip>

class TestMainWindowHelp : public MainWindowTest
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void everyInputExplainsItself();
    void numbersTellTheirRange_data();
    void numbersTellTheirRange();
    void everyButtonLabelAndLightOfEveryWindowExplainsItself();
    void theReadingsTellTheirSideAndWhatNothingLooksLike();
    void theGraphTellsItsAxesAndTheEdgesOfTheBand();
    void namesForScreenReadersAreUnique();
    void tipOpensOnADisabledInput();
    void tipHasTheLookOfTheHouse();

private:
    QList<QWidget*> inputs() const;
    QWidget* showTip(const char* name);
};

void TestMainWindowHelp::init()
{
    openWindow();
}

void TestMainWindowHelp::cleanup()
{
    QToolTip::hideText();
    closeWindow();
}

// All that can have the focus, without the inner parts of spin boxes, tables and the like, which
// have no name or one of Qt's own.
QList<QWidget*> TestMainWindowHelp::inputs() const
{
    QList<QWidget*> found;
    const QList<QWidget*> all = window->centralWidget()->findChildren<QWidget*>();
    for (QWidget* widget : all) {
        const QString name = widget->objectName();
        const bool ours = !name.isEmpty() && !name.startsWith(QLatin1String("qt_"));
        if (ours && (widget->focusPolicy() & Qt::TabFocus) != 0) {
            found.append(widget);
        }
    }
    return found;
}

void TestMainWindowHelp::everyInputExplainsItself()
{
    QList<QWidget*> explained = inputs();
    QVERIFY2(explained.size() >= 33, qPrintable(QString::number(explained.size())));
    for (const char* name :
         {"graph_widget", "fft_status", "tcp_status", "signal_power", "npr_lower", "npr_upper"}) {
        explained.append(operate->find<QWidget>(name));
    }
    for (const QWidget* widget : qAsConst(explained)) {
        const QByteArray name = widget->objectName().toLatin1();
        QVERIFY2(widget->toolTip().endsWith(QLatin1Char('.')), name);
        QVERIFY2(widget->whatsThis().endsWith(QLatin1Char('.')), name);
        QVERIFY2(!widget->accessibleName().isEmpty(), name);
        for (const QString& line : widget->toolTip().split('\n')) {
            QVERIFY2(line.size() <= 100, name); // a line of the screen
        }
    }
}

void TestMainWindowHelp::numbersTellTheirRange_data()
{
    QTest::addColumn<QString>("unitAndRange");
    QTest::newRow("sample_rate_input") << "MHz, 0.00001 to 23000";
    QTest::newRow("nbw_srate_input") << "0.1 to 1";
    QTest::newRow("fft_length_input") << "64 to 4194304";
    QTest::newRow("notch_count_input") << "0 to 999";
    QTest::newRow("notch_width_input") << "MHz, 0.000001 to 100";
    QTest::newRow("notch_offset_input") << "MHz, -105 to 105";
    QTest::newRow("notch_depth_input") << "dB, -100 to 0";
    QTest::newRow("seed_input") << "1 to 483647";
    QTest::newRow("port_input") << "0 to 65535";
}

void TestMainWindowHelp::numbersTellTheirRange()
{
    QFETCH(QString, unitAndRange);
    const QString tip = operate->find<QWidget>(QTest::currentDataTag())->toolTip();
    QVERIFY2(tip.contains(unitAndRange), qPrintable(tip));
}

// Apart from what belongs to Qt: the parts of tab bars, scroll bars and the like.
void TestMainWindowHelp::everyButtonLabelAndLightOfEveryWindowExplainsItself()
{
    for (const char* action : {"actionDevices", "actionOptimize_Crest_Fector", "actionAbout"}) {
        operate->trigger(action);
    }
    MeasurementSetup setup;
    const LoadTraceDialog trace(QString(), &setup);
    int explained = 0;
    for (const QWidget* widget : QApplication::allWidgets()) {
        const auto* label = qobject_cast<const QLabel*>(widget);
        const auto* button = qobject_cast<const QAbstractButton*>(widget);
        const bool light = qobject_cast<const StatusIndicatorWidget*>(widget) != nullptr;
        const bool hasText = (label != nullptr && !label->text().isEmpty()) ||
                             (button != nullptr && !button->text().isEmpty());
        if ((hasText || light) && widget->windowType() != Qt::ToolTip) {
            QVERIFY2(widget->toolTip().endsWith('.'), qPrintable(widget->objectName()));
            ++explained;
        }
    }
    QVERIFY2(explained > 150, qPrintable(QString::number(explained)));
    for (QWidget* other : QApplication::topLevelWidgets()) {
        if (other != window.get()) {
            other->close();
        }
    }
}

void TestMainWindowHelp::theReadingsTellTheirSideAndWhatNothingLooksLike()
{
    for (const char* reading : {"signal_power", "npr_lower", "npr_upper"}) {
        const QString tip = operate->find<QLabel>(reading)->toolTip();
        QVERIFY(tip.contains("0.00 in all three fields: nothing was measured"));
    }
    QVERIFY(operate->find<QLabel>("npr_lower")->toolTip().contains("a notch below the middle.\n"));
    QVERIFY(operate->find<QLabel>("npr_upper")
                ->toolTip()
                .contains("a notch at or above the middle.\n"));
}

void TestMainWindowHelp::theGraphTellsItsAxesAndTheEdgesOfTheBand()
{
    const auto tip = [this] { return operate->find<QWidget>("graph_widget")->toolTip(); };
    operate->type("sample_rate_input", QStringLiteral("100"));
    operate->type("nbw_srate_input", QStringLiteral("0.8"));
    QVERIFY2(tip().contains("the whole sample rate, 100.000000 MHz"), qPrintable(tip()));
    QVERIFY(tip().contains("105 dB"));
    QVERIFY2(tip().contains("from -40.000000 MHz to 40.000000 MHz"), qPrintable(tip()));
    operate->type("sample_rate_input", QStringLiteral("20"));
    QVERIFY2(tip().contains("from -8.000000 MHz to 8.000000 MHz"), qPrintable(tip()));

    operate->trigger("actionDevices");
    QLineEdit* frequency = nullptr;
    for (const QWidget* each : QApplication::topLevelWidgets()) {
        auto* found = each->findChild<QLineEdit*>(QStringLiteral("g_frequency"));
        frequency = found != nullptr && found->isVisible() ? found : frequency;
    }
    QVERIFY(frequency != nullptr);
    frequency->selectAll();
    QTest::keyClicks(frequency, QStringLiteral("1000"));
    QTest::keyClick(frequency, Qt::Key_Return);
    QVERIFY2(tip().contains("from 992.000000 MHz to 1008.000000 MHz"), qPrintable(tip()));
    frequency->window()->close();
}

void TestMainWindowHelp::namesForScreenReadersAreUnique()
{
    QStringList names;
    for (const QWidget* widget : inputs()) {
        names << widget->accessibleName();
    }
    QCOMPARE(names.removeDuplicates(), 0);
}

QWidget* TestMainWindowHelp::showTip(const char* name)
{
    auto* widget = operate->find<QWidget>(name);
    const QPoint inside = widget->rect().center();
    QHelpEvent event(QEvent::ToolTip, inside, widget->mapToGlobal(inside));
    QApplication::sendEvent(widget, &event);
    for (QWidget* topLevel : QApplication::topLevelWidgets()) {
        if (topLevel->windowType() == Qt::ToolTip && topLevel->isVisible()) {
            return topLevel;
        }
    }
    return nullptr;
}

void TestMainWindowHelp::tipOpensOnADisabledInput()
{
    QVERIFY(!operate->isEnabled("measure_button"));
    QVERIFY(showTip("measure_button") != nullptr);
    QCOMPARE(QToolTip::text(), operate->find<QWidget>("measure_button")->toolTip());
}

void TestMainWindowHelp::tipHasTheLookOfTheHouse()
{
    const QColor ground(58, 62, 66);
    for (const char* name : {"sample_rate_input", "graph_widget", "port_input", "fft_status"}) {
        QWidget* tip = showTip(name);
        QVERIFY(tip != nullptr);
        const QImage image = tip->grab().toImage();
        QCOMPARE(image.pixelColor(image.width() - 3, image.height() / 2), ground);
        QColor text = ground;
        for (int x = 0; x < image.width(); ++x) {
            const QColor color = image.pixelColor(x, image.height() / 2);
            text = luminance(color) > luminance(text) ? color : text;
        }
        QVERIFY(contrast(text, ground) >= readable);
        QToolTip::hideText();
    }
}

QTEST_MAIN(TestMainWindowHelp)
#include "test_main_window_help.moc"
