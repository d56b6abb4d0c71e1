// The serial settings as an operator picks them, and what they store.
#include "instruments/dialogs/rs232_dialog.h"

#include "instruments/signal_generator.h"
#include "kit/window_driver.h"

#include <QtTest>

class TestRs232Dialog : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void titleAndRows();
    void theLocaleDoesNotDependOnTheSystem();
    void defaultsAreShown();
    void aRowStoresItsValue_data();
    void aRowStoresItsValue();
    void theRowTwoOfTheStopBitsComesBackAsOneAndAHalf();
    void aStoredValueShowsItsRow_data();
    void aStoredValueShowsItsRow();
    void openingRewritesTwoStopBits();
    void aRateOutsideOfTheListStays();
    void valuesWithoutARowStay();
    void everySettingSaysWhatItIs_data();
    void everySettingSaysWhatItIs();
    void okSaysThatNothingIsLeftToStore();
    void okHidesIt();
    void withoutAnInstrumentNothingHappens();

private:
    QString shown() const;

    std::unique_ptr<SignalGenerator> instrument;
    std::unique_ptr<RS232Dialog> dialog;
    std::unique_ptr<WindowDriver> operate;
};

void TestRs232Dialog::init()
{
    instrument = std::make_unique<SignalGenerator>();
    dialog = std::make_unique<RS232Dialog>();
    dialog->setInstrument(instrument.get());
    operate = std::make_unique<WindowDriver>(*dialog);
}

QString TestRs232Dialog::shown() const
{
    QStringList texts;
    for (const char* box : {"baud", "data", "parity", "stop", "flowcontrol"}) {
        texts << operate->text(box);
    }
    return texts.join(' ');
}

void TestRs232Dialog::cleanup()
{
    dialog.reset();
}

void TestRs232Dialog::theLocaleDoesNotDependOnTheSystem()
{
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    const RS232Dialog german;
    QCOMPARE(german.locale(), QLocale(QLocale::English, QLocale::UnitedStates));
    QLocale::setDefault(before);
}

void TestRs232Dialog::titleAndRows()
{
    QCOMPARE(dialog->windowTitle(), QString("RS232 Configuration"));
    QCOMPARE(operate->rowTexts("baud").join(' '),
             QString("75 110 134 150 300 600 1200 1800 2400 4800 7200 9600 14400 "
                     "19200 28800 38400 56000 57600 115200 128000 230400"));
    QCOMPARE(operate->rowTexts("data").join(' '), QString("5 6 7 8"));
    QCOMPARE(operate->rowTexts("parity").join(' '), QString("None Odd Even Mark Space"));
    QCOMPARE(operate->rowTexts("stop").join(' '), QString("1 1.5 2"));
    QCOMPARE(operate->rowTexts("flowcontrol").join(' '), QString("None Hardware Software"));
    QCOMPARE(dialog->minimumSize(), dialog->maximumSize());
    QVERIFY(!dialog->isModal());
    // Qt adds the system menu to a close button.
    QCOMPARE(dialog->windowFlags() & ~Qt::WindowType_Mask,
             Qt::WindowTitleHint | Qt::WindowCloseButtonHint | Qt::WindowSystemMenuHint);
}

void TestRs232Dialog::defaultsAreShown()
{
    dialog->show();
    QCOMPARE(shown(), QString("9600 8 None 1 None"));
}

void TestRs232Dialog::aRowStoresItsValue_data()
{
    QTest::addColumn<QByteArray>("box");
    QTest::addColumn<int>("row");
    QTest::addColumn<QList<int>>("stored"); // baud, data, parity, stop, flow control
    const auto row = [](const char* name, const char* box, int number, const QList<int>& stored) {
        QTest::newRow(name) << QByteArray(box) << number << stored;
    };
    row("75 baud", "baud", 0, {75, 8, 0, 1, 0});
    row("230400 baud", "baud", 20, {230400, 8, 0, 1, 0});
    row("5 bits", "data", 0, {9600, 5, 0, 1, 0});
    row("7 bits", "data", 2, {9600, 7, 0, 1, 0});
    row("Odd is even", "parity", 1, {9600, 8, 2, 1, 0});
    row("Even is odd", "parity", 2, {9600, 8, 3, 1, 0});
    row("Mark is space", "parity", 3, {9600, 8, 4, 1, 0});
    row("Space is mark", "parity", 4, {9600, 8, 5, 1, 0});
    row("1.5 stop bits", "stop", 1, {9600, 8, 0, 3, 0});
    row("2 stop bits are 1.5", "stop", 2, {9600, 8, 0, 3, 0});
    row("Hardware", "flowcontrol", 1, {9600, 8, 0, 1, 1});
    row("Software", "flowcontrol", 2, {9600, 8, 0, 1, 2});
}

void TestRs232Dialog::aRowStoresItsValue()
{
    QFETCH(QByteArray, box);
    QFETCH(int, row);
    dialog->show();
    operate->pick(box.constData(), row);
    const QList<int> stored = {static_cast<int>(instrument->rs232BaudRate),
                               instrument->rs232DataBits, instrument->rs232Parity,
                               instrument->rs232StopBits, instrument->rs232FlowControl};
    QTEST(stored, "stored");
}

void TestRs232Dialog::theRowTwoOfTheStopBitsComesBackAsOneAndAHalf()
{
    dialog->show();
    operate->pick("stop", 2);
    QCOMPARE(operate->text("stop"), QString("2"));
    operate->click("ok_button");
    dialog->show();
    QCOMPARE(operate->text("stop"), QString("1.5"));
}

void TestRs232Dialog::aStoredValueShowsItsRow_data()
{
    QTest::addColumn<int>("parity");
    QTest::addColumn<QString>("shown");
    QTest::newRow("0") << 0 << "None";
    QTest::newRow("2") << 2 << "Odd";
    QTest::newRow("3") << 3 << "Even";
    QTest::newRow("4") << 4 << "Mark";
    QTest::newRow("5") << 5 << "Space";
}

void TestRs232Dialog::aStoredValueShowsItsRow()
{
    QFETCH(int, parity);
    instrument->rs232Parity = parity;
    dialog->show();
    QTEST(operate->text("parity"), "shown");
    QCOMPARE(instrument->rs232Parity, parity);
}

void TestRs232Dialog::openingRewritesTwoStopBits()
{
    instrument->rs232StopBits = 2; // as a configuration file can hold it
    dialog->show();
    QCOMPARE(operate->text("stop"), QString("1.5"));
    QCOMPARE(instrument->rs232StopBits, 3);
}

void TestRs232Dialog::aRateOutsideOfTheListStays()
{
    dialog->show();
    dialog->close();
    instrument->rs232BaudRate = 12345;
    dialog->show();
    QCOMPARE(operate->text("baud"), QString("9600"));
    QCOMPARE(instrument->rs232BaudRate, 12345U);
    operate->pick("baud", 3);
    QCOMPARE(instrument->rs232BaudRate, 150U);
}

void TestRs232Dialog::valuesWithoutARowStay()
{
    instrument->rs232DataBits = 77;
    instrument->rs232Parity = -9;
    instrument->rs232StopBits = 1000;
    instrument->rs232FlowControl = -1;
    dialog->show();
    QCOMPARE(instrument->rs232DataBits, 77);
    QCOMPARE(instrument->rs232Parity, -9);
    QCOMPARE(instrument->rs232StopBits, 1000);
    QCOMPARE(instrument->rs232FlowControl, -1);
}

void TestRs232Dialog::everySettingSaysWhatItIs_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("tip");
    const auto row = [](const char* object, const char* name, const char* tip) {
        QTest::newRow(object) << name << tip + QString("; used at the next \"Init\".");
    };
    row("baud", "Baud rate", "Speed of the line in baud");
    row("data", "Data bits", "Data bits of a character");
    row("parity", "Parity", "Parity of a character");
    row("stop", "Stop bits", "Stop bits behind a character");
    row("flowcontrol", "Flow control", "How the instrument holds the line");
}

void TestRs232Dialog::everySettingSaysWhatItIs()
{
    QFETCH(QString, name);
    QFETCH(QString, tip);
    const QByteArray object = QTest::currentDataTag();
    const auto* box = operate->find<QComboBox>(object);
    const auto* label = operate->find<QLabel>(object + "_label");
    QCOMPARE(label->text(), name + ':');
    QCOMPARE(box->accessibleName(), name);
    for (const QWidget* each :
         {static_cast<const QWidget*>(box), static_cast<const QWidget*>(label)}) {
        QCOMPARE(each->toolTip(), tip);
        QCOMPARE(each->whatsThis(), tip);
    }
}

void TestRs232Dialog::okSaysThatNothingIsLeftToStore()
{
    const auto* button = operate->find<QPushButton>("ok_button");
    QCOMPARE(button->toolTip(), QString("Closes this window; all settings are stored already."));
    QCOMPARE(button->whatsThis(), button->toolTip());
}

void TestRs232Dialog::okHidesIt()
{
    dialog->show();
    operate->click("ok_button");
    QVERIFY(!dialog->isVisible());
}

void TestRs232Dialog::withoutAnInstrumentNothingHappens()
{
    RS232Dialog lonely;
    lonely.show();
    const WindowDriver other(lonely);
    other.pick("baud", 3);
    other.pick("parity", 2);
    QCOMPARE(other.text("parity"), QString("Even"));
}

QTEST_MAIN(TestRs232Dialog)
#include "test_rs232_dialog.moc"
