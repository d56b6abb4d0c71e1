// What the whole application gets: sharp scales, the icon, and inputs that the wheel turns only
// while they have the focus.
#include "look/house_look.h"

#include "kit/contrast.h"
#include "look/house_style.h"

#include <QApplication>
#include <QComboBox>
#include <QFileDialog>
#include <QHeaderView>
#include <QIcon>
#include <QLineEdit>
#include <QScrollArea>
#include <QScrollBar>
#include <QSpinBox>
#include <QStyle>
#include <QTreeView>
#include <QVBoxLayout>
#include <QtTest>

namespace {

// As the platform delivers it, with all that Qt does on the way.
void turnWheelOver(QWidget& receiver, int angle)
{
    const QPointF place = receiver.rect().center();
    QWheelEvent wheel(place, receiver.mapToGlobal(place.toPoint()), {}, {0, angle}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QSpontaneKeyEvent::setSpontaneous(&wheel);
    qApp->notify(&receiver, &wheel);
}

// Inputs in an area that is too small for them, and a field for the focus.
class ScrolledForm : public QScrollArea
{
public:
    ScrolledForm()
    {
        auto* form = new QWidget;
        auto* rows = new QVBoxLayout(form);
        for (QWidget* row : std::initializer_list<QWidget*>{field, number, ratio, choice}) {
            row->setMinimumHeight(60);
            rows->addWidget(row);
        }
        number->setRange(-100, 100);
        ratio->setRange(-100, 100);
        choice->addItems({QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")});
        choice->setCurrentIndex(1);
        setWidget(form);
        resize(200, 100);
        show();
        activateWindow();
    }

    QLineEdit* field = new QLineEdit;
    QSpinBox* number = new QSpinBox;
    QDoubleSpinBox* ratio = new QDoubleSpinBox;
    QComboBox* choice = new QComboBox;
};

} // namespace

class TestHouseLook : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void scalesBetweenWholeNumbersAreKept();
    void theStyleOfTheDesktopIsNotUsed();
    void everyWindowHasTheIcon();
    void theWheelLeavesInputsWithoutTheFocusAlone();
    void theWheelOverAnInputScrollsWhatIsAround();
    void theWheelGivesNoFocus();
    void theWheelTurnsTheInputWithTheFocus();
    void theListOfAChoiceShowsAllItsRows();
    void aChoiceKeepsItsHeightWithTheFocus();
    void theHintOfAChoiceIsPalerThanItsText();
    void theHeaderOfAFileDialogCanBeRead();

private:
    std::unique_ptr<ScrolledForm> form;
};

void TestHouseLook::init()
{
    form = std::make_unique<ScrolledForm>();
    QVERIFY(QTest::qWaitForWindowActive(form.get()));
    form->field->setFocus();
}

void TestHouseLook::cleanup()
{
    form.reset();
}

void TestHouseLook::scalesBetweenWholeNumbersAreKept()
{
    QCOMPARE(QGuiApplication::highDpiScaleFactorRoundingPolicy(),
             Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
    QVERIFY(QCoreApplication::testAttribute(Qt::AA_EnableHighDpiScaling));
    QVERIFY(QCoreApplication::testAttribute(Qt::AA_UseHighDpiPixmaps));
}

void TestHouseLook::theStyleOfTheDesktopIsNotUsed()
{
    QCOMPARE(QApplication::style()->objectName(), QStringLiteral("fusion"));
}

void TestHouseLook::everyWindowHasTheIcon()
{
    const QIcon icon = form->windowIcon();
    for (const int size : {16, 32, 48, 128}) {
        QCOMPARE(icon.pixmap(size).size() / icon.pixmap(size).devicePixelRatio(),
                 QSize(size, size));
    }
    const QImage drawn = icon.pixmap(128).toImage();
    QCOMPARE(drawn.pixelColor(drawn.width() / 8, drawn.height() / 2 - 2), QColor(0, 142, 214));
}

void TestHouseLook::theWheelLeavesInputsWithoutTheFocusAlone()
{
    for (const int angle : {120, -120}) {
        turnWheelOver(*form->number, angle);
        turnWheelOver(*form->number->findChild<QLineEdit*>(), angle);
        turnWheelOver(*form->ratio, angle);
        turnWheelOver(*form->choice, angle);
        QCOMPARE(form->number->value(), 0);
        QCOMPARE(form->ratio->value(), 0.0);
        QCOMPARE(form->choice->currentIndex(), 1);
    }
}

void TestHouseLook::theWheelOverAnInputScrollsWhatIsAround()
{
    const QScrollBar* bar = form->verticalScrollBar();
    for (QWidget* input :
         std::initializer_list<QWidget*>{form->number, form->ratio, form->choice}) {
        const int before = bar->value();
        turnWheelOver(*input, -120);
        QVERIFY(bar->value() > before);
        turnWheelOver(*input, 120);
        QCOMPARE(bar->value(), before);
    }
}

void TestHouseLook::theWheelGivesNoFocus()
{
    for (QWidget* input :
         std::initializer_list<QWidget*>{form->number, form->ratio, form->choice}) {
        turnWheelOver(*input, -120);
        QVERIFY(form->field->hasFocus());
    }
}

void TestHouseLook::theWheelTurnsTheInputWithTheFocus()
{
    form->number->setFocus();
    turnWheelOver(*form->number, 120);
    QCOMPARE(form->number->value(), 1);
    form->ratio->setFocus();
    turnWheelOver(*form->ratio, -120);
    QCOMPARE(form->ratio->value(), -1.0);
    form->choice->setFocus();
    turnWheelOver(*form->choice, -120);
    QCOMPARE(form->choice->currentIndex(), 2);
}

void TestHouseLook::theListOfAChoiceShowsAllItsRows()
{
    QWidget window;
    window.setStyleSheet(houseStyleSheet());
    QComboBox choice(&window);
    choice.addItems({"linear", "rapp", "soft", "saleh", "cubic", "adc"});
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    choice.showPopup();
    const QAbstractItemView& list = *choice.view();
    QTRY_VERIFY(list.isVisible());
    QCOMPARE(list.visualRect(list.model()->index(0, 0)).top(), 0);
    QVERIFY(list.visualRect(list.model()->index(5, 0)).bottom() < list.viewport()->height());
    choice.hidePopup();
}

void TestHouseLook::aChoiceKeepsItsHeightWithTheFocus()
{
    form->setStyleSheet(houseStyleSheet());
    const auto wantedHeight = [this] { // which is reckoned anew
        form->choice->setSizeAdjustPolicy(QComboBox::AdjustToContents);
        form->choice->setSizeAdjustPolicy(QComboBox::AdjustToContentsOnFirstShow);
        return form->choice->sizeHint().height();
    };
    QVERIFY(!form->choice->hasFocus());
    const int before = wantedHeight();
    form->choice->setFocus();
    QTRY_VERIFY(form->choice->hasFocus());
    QCOMPARE(wantedHeight(), before);
}

void TestHouseLook::theHintOfAChoiceIsPalerThanItsText()
{
    QWidget window;
    window.setStyleSheet(houseStyleSheet());
    QComboBox choice(&window);
    choice.setEditable(true);
    choice.resize(120, 24);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    choice.clearFocus(); // the cursor is as dark as a text
    const QLineEdit& line = *choice.lineEdit();
    const auto inkOf = [&](const QString& hint, const QString& text) {
        choice.lineEdit()->setPlaceholderText(hint);
        choice.setEditText(text);
        return EnlargedWindow(window).textContrast(line, line.rect().adjusted(1, 1, -1, -1));
    };
    const double hint = inkOf("none", {});
    QVERIFY(hint > readable);
    QVERIFY(hint < 0.5 * inkOf({}, "none"));
}

void TestHouseLook::theHeaderOfAFileDialogCanBeRead()
{
    QFileDialog dialog;
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setStyleSheet(houseStyleSheet());
    dialog.setViewMode(QFileDialog::Detail);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    const QHeaderView& header = *dialog.findChild<QTreeView*>("treeView")->header();
    QVERIFY(header.isVisible());
    const QRect name(20, 1, 40, header.height() - 2); // without the arrow that tells the order
    QVERIFY(EnlargedWindow(dialog).textContrast(*header.viewport(), name) > readable);
}

int main(int argc, char* argv[])
{
    prepareHouseLook();
    QApplication application(argc, argv);
    applyHouseLook(application);
    TestHouseLook test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_house_look.moc"
