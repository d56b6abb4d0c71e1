// The program on a desktop with dark colours: every text whose colour isn't settled by the scheme
// of the house (accent-coloured labels, buttons, table headers) can be read in every window.
#include "fit/dialogs/load_trace_dialog.h"
#include "kit/contrast.h"
#include "kit/dark_desktop.h"
#include "kit/file_content.h"
#include "kit/main_window_test.h"
#include "kit/top_level.h"
#include "support/dialogs/about_window.h"

#include <QChart>
#include <QChartView>
#include <QCheckBox>
#include <QMenuBar>
#include <QProgressBar>
#include <QRadioButton>
#include <QTabBar>
#include <QTextDocumentFragment>
#include <QTreeView>

QT_CHARTS_USE_NAMESPACE

namespace {

const QColor accent(0, 142, 214);

bool isAccentByTheScheme(const QLabel& label)
{
    return label.palette().color(label.foregroundRole()) == accent ||
           label.text().contains(QLatin1String("color: rgb(0, 142, 214)"));
}

bool hasText(const QString& text)
{
    return !QTextDocumentFragment::fromHtml(text).toPlainText().trimmed().isEmpty();
}

// The area of a widget's own text; empty where it has none or its colours belong to the scheme.
QRect textArea(const QWidget& widget)
{
    if (const auto* label = qobject_cast<const QLabel*>(&widget)) {
        const bool judged = hasText(label->text()) && !isAccentByTheScheme(*label);
        return judged ? label->contentsRect().adjusted(1, 1, -1, -1) : QRect();
    }
    if (qobject_cast<const QCheckBox*>(&widget) || qobject_cast<const QRadioButton*>(&widget)) {
        return widget.rect().adjusted(20, 2, -2, -2); // right of its indicator
    }
    if (const auto* edit = qobject_cast<const QLineEdit*>(&widget)) {
        return edit->text().isEmpty() ? QRect() : edit->rect().adjusted(3, 3, -3, -3);
    }
    if (const auto* box = qobject_cast<const QComboBox*>(&widget)) {
        return box->currentText().isEmpty() ? QRect() : box->rect().adjusted(3, 3, -14, -3);
    }
    return {};
}

} // namespace

class TestDarkDesktop : public MainWindowTest
{
    Q_OBJECT

private slots:
    void initTestCase() { startOnADarkDesktop(); }
    void init();
    void cleanup();

    void theMainWindowCanBeRead();
    void theMenusCanBeRead();
    void theTableCanBeRead();
    void theDevicesAndTheirTabsCanBeRead();
    void theSerialParametersCanBeRead();
    void theSweepCanBeRead();
    void theAboutWindowAndItsTabsCanBeRead();
    void theTraceWindowCanBeRead();
    void messageBoxesCanBeRead_data();
    void messageBoxesCanBeRead();
    void fileDialogsCanBeRead();
    void theMenuOfTheGraphCanBeRead();
    void colorsStayWhenTheDesktopChangesIts();

private:
    void judge(QWidget& shown);
    void judgeTabs(QWidget& shown);
    int judged = 0;
};

void TestDarkDesktop::init()
{
    judged = 0;
    openWindow();
}

void TestDarkDesktop::cleanup()
{
    closeWindow();
    for (QWidget* left : QApplication::topLevelWidgets()) {
        left->close();
    }
}

void TestDarkDesktop::judge(QWidget& shown)
{
    QVERIFY(QTest::qWaitForWindowExposed(&shown));
    const EnlargedWindow enlarged(shown);
    for (const QWidget* widget : shown.findChildren<QWidget*>()) {
        const QRect area = textArea(*widget);
        if (!area.isValid() || !widget->visibleRegion().boundingRect().contains(area)) {
            continue; // not scrolled into sight
        }
        const double found = enlarged.textContrast(*widget, area);
        QVERIFY2(found >= readable,
                 qPrintable(widget->objectName() + ' ' + widget->metaObject()->className() + ' ' +
                            QString::number(found)));
        ++judged;
    }
}

void TestDarkDesktop::judgeTabs(QWidget& shown)
{
    auto* tabs = shown.findChild<QTabWidget*>();
    const QTabBar* bar = tabs->tabBar();
    for (int selected = 0; selected < bar->count(); ++selected) {
        tabs->setCurrentIndex(selected);
        judge(shown);
        const EnlargedWindow enlarged(shown);
        for (int tab = 0; tab < bar->count(); ++tab) {
            const QRect area = bar->tabRect(tab).adjusted(4, 4, -4, -4);
            const double found = enlarged.textContrast(*bar, area);
            QVERIFY2(found >= readable,
                     qPrintable(bar->tabText(tab) + ' ' + QString::number(found)));
        }
    }
}

void TestDarkDesktop::theMainWindowCanBeRead()
{
    for (const char* source :
         {"mp_load_ratio_button", "iq_load_ratio_button", "internal_ratio_button"}) {
        operate->click(source);
        judge(*window);
    }
    QVERIFY2(judged >= 60, qPrintable(QString::number(judged)));
}

void TestDarkDesktop::theMenusCanBeRead()
{
    auto* bar = window->findChild<QMenuBar*>();
    const EnlargedWindow enlarged(*window);
    QVERIFY(!bar->actions().isEmpty());
    for (QAction* entry : bar->actions()) {
        const QRect area = bar->actionGeometry(entry).adjusted(2, 2, -2, -2);
        QVERIFY(enlarged.textContrast(*bar, area) >= readable);
        entry->menu()->popup(window->mapToGlobal({50, 50}));
        entry->menu()->setActiveAction(entry->menu()->actions().constFirst());
        const EnlargedWindow menu(*entry->menu());
        for (QAction* item : entry->menu()->actions()) {
            const QRect place = entry->menu()->actionGeometry(item).adjusted(2, 2, -2, -2);
            const double found = menu.textContrast(*entry->menu(), place);
            QVERIFY2(item->isSeparator() || found >= readable, qPrintable(item->text()));
        }
        entry->menu()->close();
    }
}

void TestDarkDesktop::theTableCanBeRead()
{
    operate->type("notch_count_input", QStringLiteral("3"));
    operate->type("notch_width_input", QStringLiteral("1"));
    operate->click("autocalc_notches_button");
    auto* table = operate->find<QTableView>("main_table");
    table->selectRow(1);
    const EnlargedWindow enlarged(*window);
    for (int row = 0; row < 3; ++row) {
        const QRect cell = table->visualRect(table->model()->index(row, 4)).adjusted(2, 2, -2, -2);
        QVERIFY(enlarged.textContrast(*table->viewport(), cell) >= readable);
    }
}

void TestDarkDesktop::theDevicesAndTheirTabsCanBeRead()
{
    operate->trigger("actionDevices");
    QWidget* devices = shownWindow("Devices");
    QVERIFY(devices != nullptr);
    judgeTabs(*devices);
    QVERIFY2(judged >= 15, qPrintable(QString::number(judged)));
}

void TestDarkDesktop::theSerialParametersCanBeRead()
{
    operate->trigger("actionDevices");
    auto* link = shownWindow("Devices")->findChild<QLabel*>(QStringLiteral("g_rs232configure"));
    emit link->linkActivated(QStringLiteral("#g_rs232configure"));
    judge(*shownWindow("RS232 Configuration"));
    QVERIFY2(judged >= 5, qPrintable(QString::number(judged)));
}

void TestDarkDesktop::theSweepCanBeRead()
{
    operate->trigger("actionOptimize_Crest_Fector");
    QWidget* sweep = shownWindow("Optimize Crest Factor");
    judge(*sweep);
    auto* progress = sweep->findChild<QProgressBar*>();
    progress->setRange(0, 100);
    for (const int value : {0, 30, 100}) {
        progress->setValue(value);
        const EnlargedWindow enlarged(*sweep);
        QVERIFY(enlarged.textContrast(*progress, progress->rect().adjusted(2, 2, -2, -2)) >=
                readable);
    }
    sweep->close();
}

void TestDarkDesktop::theAboutWindowAndItsTabsCanBeRead()
{
    operate->trigger("actionAbout");
    QWidget* about = shownWindow("Information about Notchbench");
    QVERIFY(about != nullptr);
    judgeTabs(*about);
    QVERIFY2(judged >= 12, qPrintable(QString::number(judged)));
}

void TestDarkDesktop::theTraceWindowCanBeRead()
{
    MeasurementSetup setup;
    setup.signal.length = 64;
    QTemporaryDir place;
    const QString path = place.filePath(QStringLiteral("trace.txt"));
    QByteArray trace;
    for (int point = 0; point < 64; ++point) {
        trace += QByteArray::number(950e6 + point * 2e6, 'f', 0) + ";-40\n";
    }
    putContent(path, trace);
    auto* dialog = new LoadTraceDialog(path, &setup, window.get());
    dialog->show();
    auto* direct = dialog->findChild<QAbstractButton*>(QStringLiteral("load_direct_button"));
    QTRY_VERIFY(direct->isEnabled());
    judge(*dialog);
    QVERIFY(judged >= 4);
    auto* poly = dialog->findChild<QAbstractButton*>(QStringLiteral("load_poly_button"));
    QTRY_VERIFY(poly->isEnabled());
    const auto* view = dialog->findChild<QChartView*>();
    const QRect plot = view->chart()->plotArea().toRect();
    const EnlargedWindow enlarged(*dialog);
    const QRect numbers(0, plot.top(), plot.left() - 4, plot.height());
    QVERIFY(enlarged.textContrast(*view, numbers) >= readable);
    const QRect names(plot.left(), plot.bottom() + 30, plot.width(),
                      view->height() - plot.bottom() - 40);
    // The chart lays its legend out a little later.
    QTRY_VERIFY(EnlargedWindow(*dialog).textContrast(*view, names) >= readable);
    dialog->close();
}

void TestDarkDesktop::messageBoxesCanBeRead_data()
{
    QTest::addColumn<bool>("hasParent");
    QTest::newRow("of the window") << true;
    QTest::newRow("by itself") << false;
}

void TestDarkDesktop::messageBoxesCanBeRead()
{
    QFETCH(bool, hasParent);
    QMessageBox box(hasParent ? window.get() : nullptr);
    box.setText(QStringLiteral("Calculation in Progress"));
    box.setInformativeText(QStringLiteral("Closing...\nPlease Wait"));
    box.setStandardButtons(QMessageBox::Close);
    box.show();
    judge(box);
    QCOMPARE(judged, 2);
}

void TestDarkDesktop::fileDialogsCanBeRead()
{
    operate->onNext<QFileDialog>([this](QFileDialog* dialog) {
        dialog->setDirectory(QStringLiteral(NOTCHBENCH_SOURCE_DIR));
        dialog->setViewMode(QFileDialog::Detail);
        auto* list = dialog->findChild<QTreeView*>(QStringLiteral("treeView"));
        QVERIFY(QTest::qWaitFor([list] { return list->model()->rowCount(list->rootIndex()) > 3; }));
        judge(*dialog);
        const EnlargedWindow enlarged(*dialog);
        const QModelIndex first = list->model()->index(0, 0, list->rootIndex());
        const QRect name = list->visualRect(first).adjusted(24, 1, -1, -1);
        QVERIFY(enlarged.textContrast(*list->viewport(), name) >= readable);
        dialog->reject();
    });
    operate->trigger("actionLoad_Cfg_File");
    QVERIFY(judged >= 4);
}

void TestDarkDesktop::theMenuOfTheGraphCanBeRead()
{
    QMenu menu; // made as the graph makes its own, without a parent
    menu.addAction(QStringLiteral("Delete Notch"));
    menu.popup(window->mapToGlobal({50, 50}));
    for (QAction* active : {static_cast<QAction*>(nullptr), menu.actions().constFirst()}) {
        menu.setActiveAction(active);
        const EnlargedWindow enlarged(menu);
        QVERIFY(enlarged.textContrast(menu, menu.rect().adjusted(4, 4, -4, -4)) >= readable);
    }
    menu.close();
}

void TestDarkDesktop::colorsStayWhenTheDesktopChangesIts()
{
    const QPalette before = QApplication::palette();
    QEvent change(QEvent::ThemeChange);
    QApplication::sendEvent(window.get(), &change);
    QCOMPARE(QApplication::palette(), before);
    judge(*window);
}

QTEST_MAIN(TestDarkDesktop)
#include "test_dark_desktop.moc"
