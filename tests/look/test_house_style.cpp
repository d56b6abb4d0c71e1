// The style sheet: its resources, and the colours that it gives to real widgets.
#include "look/house_style.h"

#include <QFile>
#include <QHeaderView>
#include <QImage>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QTableWidget>
#include <QtTest>

namespace {

const QColor accent(0, 142, 214);
const QColor hover(255, 143, 29);
const QColor disabledGround(239, 240, 241);

QStringList imagesOfTheSheet()
{
    static const QRegularExpression url(QStringLiteral("url\\((:[^)]*)\\)"));
    QStringList names;
    QRegularExpressionMatchIterator matches = url.globalMatch(houseStyleSheet());
    while (matches.hasNext()) {
        names.append(matches.next().captured(1));
    }
    return names;
}

// A place on the ground of a button, left of its text.
QColor groundOf(QWidget& widget)
{
    return widget.grab().toImage().pixelColor(5, widget.height() / 2);
}

} // namespace

class TestHouseStyle : public QObject
{
    Q_OBJECT

private slots:
    void theResourcesAreThereWithoutACall();
    void theSheetIsReadWhole();
    void everyImageOfTheSheetExistsAtBothDensities();
    void everyImageIsNamedBelowTheResourcesPath();
    void aButtonIsAccentColouredWithBoldText();
    void aPressedButtonTurnsOrange();
    void aDisabledButtonTurnsLightGrey();
    void theFocusOfAButtonCanBeSeen();
    void theFocusOfAFieldCanBeSeen();
    void aTableHeaderIsGreyWithWhiteText();
    void theFontIsArial();
};

void TestHouseStyle::theResourcesAreThereWithoutACall()
{
    QVERIFY(QFile::exists(QStringLiteral(":/Images/style.qss")));
}

void TestHouseStyle::theSheetIsReadWhole()
{
    const qint64 size = QFile(QStringLiteral(":/Images/style.qss")).size();
    QVERIFY(size > 0);
    QCOMPARE(qint64(houseStyleSheet().toUtf8().size()), size);
}

void TestHouseStyle::everyImageOfTheSheetExistsAtBothDensities()
{
    const QStringList names = imagesOfTheSheet();
    QVERIFY(names.size() >= 16);
    for (const QString& name : names) {
        const QImage single(name);
        QString twinName = name;
        const QImage twin(twinName.replace(QLatin1String(".png"), QLatin1String("@2x.png")));
        QVERIFY2(!single.isNull(), qPrintable(name));
        QVERIFY2(twin.size() == single.size() * 2, qPrintable(twinName));
    }
}

void TestHouseStyle::everyImageIsNamedBelowTheResourcesPath()
{
    const QStringList names = imagesOfTheSheet();
    QVERIFY(!names.isEmpty());
    for (const QString& name : names) {
        QVERIFY2(name.startsWith(QLatin1String(":/Images/Resources/")), qPrintable(name));
    }
}

void TestHouseStyle::aButtonIsAccentColouredWithBoldText()
{
    QPushButton button(QStringLiteral("Preset"));
    button.setStyleSheet(houseStyleSheet());
    button.resize(100, 17);
    QCOMPARE(groundOf(button), accent);
    button.ensurePolished();
    QVERIFY(button.font().bold());
    QCOMPARE(button.palette().color(QPalette::ButtonText), QColor(Qt::white));
}

void TestHouseStyle::aPressedButtonTurnsOrange()
{
    QPushButton button(QStringLiteral("Preset"));
    button.setStyleSheet(houseStyleSheet());
    button.resize(100, 17);
    button.setDown(true);
    QCOMPARE(groundOf(button), hover);
}

void TestHouseStyle::aDisabledButtonTurnsLightGrey()
{
    QPushButton button(QStringLiteral("Preset"));
    button.setStyleSheet(houseStyleSheet());
    button.resize(100, 17);
    button.setEnabled(false);
    QCOMPARE(groundOf(button), disabledGround);
}

void TestHouseStyle::theFocusOfAButtonCanBeSeen()
{
    QWidget window;
    window.setStyleSheet(houseStyleSheet());
    auto* first = new QPushButton(&window);
    auto* second = new QPushButton(&window);
    second->move(0, 60);
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    first->setFocus(Qt::TabFocusReason);
    QTRY_VERIFY(first->hasFocus());
    const QPoint edge(1, first->height() / 2);
    QCOMPARE(first->grab().toImage().pixelColor(edge), QColor(0, 58, 88));
    QCOMPARE(second->grab().toImage().pixelColor(edge), accent);
}

void TestHouseStyle::theFocusOfAFieldCanBeSeen()
{
    QWidget window;
    window.setStyleSheet(houseStyleSheet());
    auto* field = new QLineEdit(&window);
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    field->setFocus(Qt::TabFocusReason);
    QTRY_VERIFY(field->hasFocus());
    const QPoint edge(1, field->height() / 2);
    QCOMPARE(field->grab().toImage().pixelColor(edge), accent);
}

void TestHouseStyle::aTableHeaderIsGreyWithWhiteText()
{
    QTableWidget table(1, 1);
    table.setStyleSheet(houseStyleSheet());
    table.setHorizontalHeaderLabels({QString()});
    table.resize(200, 100);
    const QHeaderView* header = table.horizontalHeader();
    QCOMPARE(table.grab().toImage().pixelColor(header->geometry().topLeft() + QPoint(10, 5)),
             QColor(198, 203, 207));
}

void TestHouseStyle::theFontIsArial()
{
    QLineEdit field;
    field.setStyleSheet(houseStyleSheet());
    field.ensurePolished();
    QCOMPARE(field.font().family(), QStringLiteral("Arial"));
}

QTEST_MAIN(TestHouseStyle)
#include "test_house_style.moc"
