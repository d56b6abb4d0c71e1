// The form of the main window under the style sheet, shown at several sizes: nothing is cut,
// the keyboard gets around, and the colours are those of the house.
#include "kit/contrast.h"
#include "look/house_style.h"
#include "ui_main_window.h"

#include <QStandardItemModel>
#include <QtTest>

#include <memory>

class TestMainWindowLook : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void nothingIsCut_data();
    void nothingIsCut();
    void theLongestNumbersFitTheirFields_data();
    void theLongestNumbersFitTheirFields();
    void longReadingsMoveNothing_data();
    void longReadingsMoveNothing();
    void tableAndGraphShareTheHeight();
    void theTableLetsTheTabKeyGo();
    void thePanesHaveTheirColours();
    void whiteLabelsAreReadableOnTheGreyPane();
    void theSelectedRowIsFlatInTheAccent();

private:
    void showAt(const QSize& size);

    std::unique_ptr<QMainWindow> window;
    std::unique_ptr<Ui::MainWindow> ui;
};

void TestMainWindowLook::init()
{
    window = std::make_unique<QMainWindow>();
    ui = std::make_unique<Ui::MainWindow>();
    ui->setupUi(window.get());
    window->setStyleSheet(houseStyleSheet());
}

void TestMainWindowLook::cleanup()
{
    window.reset();
    ui.reset();
}

void TestMainWindowLook::showAt(const QSize& size)
{
    window->resize(size);
    window->show();
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
}

void TestMainWindowLook::nothingIsCut_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("page");
    for (int page = 0; page < 3; ++page) {
        const QByteArray suffix = ", page " + QByteArray::number(page);
        QTest::newRow("initial" + suffix) << QSize(829, 449) << page;
        QTest::newRow("large" + suffix) << QSize(1200, 800) << page;
        QTest::newRow("as small as it goes" + suffix) << QSize(1, 1) << page;
    }
}

void TestMainWindowLook::nothingIsCut()
{
    QFETCH(QSize, size);
    QFETCH(int, page);
    ui->signal_stacked_widget->setCurrentIndex(page);
    ui->fft_status_label->setText(QStringLiteral("Calculating ..."));
    showAt(size);
    const QList<QWidget*> widgets = ui->centralwidget->findChildren<QWidget*>();
    int checked = 0;
    for (QWidget* widget : widgets) {
        const bool hasText =
            qobject_cast<QLabel*>(widget) != nullptr ||
            (qobject_cast<QAbstractButton*>(widget) != nullptr && !widget->objectName().isEmpty());
        if (hasText && widget->isVisible()) {
            QVERIFY2(widget->width() >= widget->sizeHint().width() &&
                         widget->height() >= widget->sizeHint().height(),
                     qPrintable(widget->objectName()));
            QVERIFY2(widget->parentWidget()->rect().contains(widget->geometry()),
                     qPrintable(widget->objectName()));
            ++checked;
        }
    }
    QVERIFY(checked >= 35);
}

void TestMainWindowLook::theLongestNumbersFitTheirFields_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("sample_rate_input") << "23000.000000";
    QTest::newRow("nbw_srate_input") << "1.000000";
    QTest::newRow("notch_count_input") << "999";
    QTest::newRow("notch_width_input") << "100.000000";
    QTest::newRow("notch_offset_input") << "-105.000000";
    QTest::newRow("notch_depth_input") << "-100.000000";
    QTest::newRow("port_input") << "65535";
    QTest::newRow("seed_input") << "483647";
    QTest::newRow("measure_notch") << "999";
}

void TestMainWindowLook::theLongestNumbersFitTheirFields()
{
    QFETCH(QString, text);
    const QString family = QFontInfo(QFont(QStringLiteral("Arial"))).family();
    if (family != QLatin1String("Arial") && family != QLatin1String("Liberation Sans")) {
        QSKIP("The widths of the form are made for Arial or Liberation Sans.");
    }
    ui->signal_stacked_widget->setCurrentIndex(0);
    showAt(QSize(1, 1));
    auto* field = window->findChild<QWidget*>(QLatin1String(QTest::currentDataTag()));
    const auto* editor = field->findChild<QLineEdit*>();
    if (editor == nullptr) {
        QFAIL("The field has no editor.");
    }
    constexpr int marginsOfALineEdit = 4; // two pixels on each side
    QVERIFY(editor->fontMetrics().horizontalAdvance(text) <= editor->width() - marginsOfALineEdit);
}

void TestMainWindowLook::longReadingsMoveNothing_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("initial") << QSize(829, 449);
    QTest::newRow("as small as it goes") << QSize(1, 1);
}

void TestMainWindowLook::longReadingsMoveNothing()
{
    QFETCH(QSize, size);
    ui->signal_stacked_widget->setCurrentIndex(0);
    showAt(size);
    const auto places = [this] {
        QList<QRect> all{window->geometry()};
        for (const QWidget* widget : ui->centralwidget->findChildren<QWidget*>()) {
            all.append(widget->geometry());
        }
        return all;
    };
    const QList<QRect> before = places();
    for (QLabel* reading : {ui->signal_power, ui->npr_lower, ui->npr_upper}) {
        reading->setText(QStringLiteral("-200.00"));
        QCoreApplication::processEvents();
        QVERIFY(reading->sizeHint().width() <= reading->width()); // nor is it cut
    }
    QCOMPARE(places(), before);
}

void TestMainWindowLook::tableAndGraphShareTheHeight()
{
    showAt(QSize(829, 449));
    const int table = ui->main_table->height();
    const int graph = ui->graph_widget->height();
    QVERIFY2(qAbs(table - graph) <= 40, qPrintable(QStringLiteral("%1 %2").arg(table).arg(graph)));
}

void TestMainWindowLook::theTableLetsTheTabKeyGo()
{
    showAt(QSize(829, 449));
    ui->main_table->setFocus();
    QTRY_VERIFY(ui->main_table->hasFocus());
    QTest::keyClick(ui->main_table, Qt::Key_Tab);
    QVERIFY(ui->internal_ratio_button->hasFocus());
}

void TestMainWindowLook::thePanesHaveTheirColours()
{
    showAt(QSize(829, 449));
    const QImage left = ui->left_pane->grab().toImage();
    QCOMPARE(left.pixelColor(2, 2), QColor(Qt::white));
    QCOMPARE(ui->sample_rate_label->palette().color(QPalette::WindowText), QColor(0, 142, 214));
    QCOMPARE(ui->port_label->palette().color(QPalette::WindowText), QColor(Qt::white));
}

void TestMainWindowLook::whiteLabelsAreReadableOnTheGreyPane()
{
    showAt(QSize(829, 449));
    const QColor pane = ui->buttom_pane->grab().toImage().pixelColor(2, 2);
    QVERIFY(pane.saturationF() < 0.2);
    QVERIFY(contrast(Qt::white, pane) >= readable);
}

// Also its current cell, where the focus frame of the desktop would lay a gradient.
void TestMainWindowLook::theSelectedRowIsFlatInTheAccent()
{
    QStandardItemModel model(3, 4);
    ui->main_table->setModel(&model);
    showAt(QSize(829, 449));
    ui->main_table->setFocus();
    ui->main_table->selectRow(1);
    const QImage table = ui->main_table->viewport()->grab().toImage();
    for (int column = 0; column < 4; ++column) {
        const QRect cell = ui->main_table->visualRect(model.index(1, column));
        for (int y = cell.top() + 2; y < cell.bottom() - 2; ++y) {
            QCOMPARE(table.pixelColor(cell.center().x(), y), QColor(0, 142, 214));
        }
    }
}

QTEST_MAIN(TestMainWindowLook)
#include "test_main_window_look.moc"
