// Where the keyboard is: at the start, around a calculation, and under a wheel that turns over the
// inputs of the window.
#include "kit/main_window_test.h"
#include "look/house_look.h"

class TestMainWindowFocus : public MainWindowTest
{
    Q_OBJECT

private slots:
    void initTestCase() { applyHouseLook(*qApp); }
    void init();
    void cleanup() { closeWindow(); }

    void itStartsAtTheSampleRate();
    void calculatingByTheSpaceBarKeepsIt();
    void itStaysWhereTheOperatorMovedItMeanwhile();
    void calculatingByTheMouseLeavesItWhereItIs();
    void theWheelOverInputsChangesNothing();

private:
    QString focused() const { return window->focusWidget()->objectName(); }
    bool isValid() const
    {
        return operate->text("fft_status_label") == QLatin1String("Data valid");
    }
};

void TestMainWindowFocus::init()
{
    openWindow();
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
}

void TestMainWindowFocus::itStartsAtTheSampleRate()
{
    QVERIFY(operate->find<QWidget>("sample_rate_input")->hasFocus());
}

void TestMainWindowFocus::calculatingByTheSpaceBarKeepsIt()
{
    auto* button = operate->find<QPushButton>("calc_fft_button");
    button->setFocus(Qt::TabFocusReason);
    for (int turn = 0; turn < 2; ++turn) {
        QTest::keyClick(button, Qt::Key_Space);
        QVERIFY(!button->isEnabled());
        QTRY_VERIFY(isValid());
        QVERIFY2(button->hasFocus(), qPrintable(focused()));
    }
}

void TestMainWindowFocus::itStaysWhereTheOperatorMovedItMeanwhile()
{
    auto* button = operate->find<QPushButton>("calc_fft_button");
    button->setFocus(Qt::TabFocusReason);
    QTest::keyClick(button, Qt::Key_Space);
    operate->find<QWidget>("port_input")->setFocus();
    QTRY_VERIFY(isValid());
    QCOMPARE(focused(), QStringLiteral("port_input"));
}

void TestMainWindowFocus::calculatingByTheMouseLeavesItWhereItIs()
{
    for (const char* before : {"notch_depth_input", "main_table", "calc_fft_button"}) {
        operate->find<QWidget>(before)->setFocus(Qt::TabFocusReason);
        operate->click("calc_fft_button");
        QTRY_VERIFY(isValid());
        QCOMPARE(focused(), QString::fromLatin1(before));
    }
}

void TestMainWindowFocus::theWheelOverInputsChangesNothing()
{
    operate->type("notch_count_input", QStringLiteral("3"));
    operate->type("notch_width_input", QStringLiteral("1"));
    operate->click("autocalc_notches_button");
    operate->find<QWidget>("main_table")->setFocus();
    QCOMPARE(operate->rowCount(), 3);
    int turned = 0;
    for (QWidget* input : window->centralWidget()->findChildren<QWidget*>()) {
        const bool turns = input->inherits("QAbstractSpinBox") || input->inherits("QComboBox");
        if (!turns || !input->isVisible()) {
            continue;
        }
        const QString before = operate->text(input->objectName().toLatin1());
        for (const int angle : {120, -120, -120}) {
            const QPoint place = input->rect().center();
            QWheelEvent wheel(place, input->mapToGlobal(place), {}, {0, angle}, Qt::NoButton,
                              Qt::NoModifier, Qt::NoScrollPhase, false);
            QApplication::sendEvent(input, &wheel);
            QCOMPARE(operate->text(input->objectName().toLatin1()), before);
        }
        ++turned;
    }
    QVERIFY2(turned >= 12, qPrintable(QString::number(turned)));
    QCOMPARE(operate->rowCount(), 3);
}

QTEST_MAIN(TestMainWindowFocus)
#include "test_main_window_focus.moc"
