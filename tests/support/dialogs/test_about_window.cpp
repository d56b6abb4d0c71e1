// The about window with made-up facts: its texts, its tabs, the clipboard and the mail.
#include "kit/window_driver.h"
#include "support/dialogs/about_window.h"
#include "support/dialogs/addresses.h"

#include <QClipboard>
#include <QGridLayout>
#include <QScrollArea>
#include <QTabWidget>
#include <QTextBlock>
#include <QTextDocument>
#include <QUrl>
#include <QUrlQuery>

namespace {

class MadeUpInfo : public OSInfo
{
public:
    QString productName() const override { return {}; }
    QString country() const override { return {}; }
    QString language() const override { return {}; }
    QString localeId() const override { return {}; }
    QString sensorControlVersion() const override { return {}; }
    QList<SystemSection> systemInformation() const override { return system; }
    QList<DriverSection> driverInformation() const override { return drivers; }

    QList<SystemSection> system{{"Machine", {{"", "Abacus"}, {"Beads", "<b>70</b> & more"}}},
                                {"Table", {{"Wood", "oak"}}}};
    QList<DriverSection> drivers{{"Rods", {"rod.dll (Version 1.0)", "bar.dll (Version ---)"}},
                                 {"", {"nameless"}}};
};

const char expectedText[] = "*** Global Setup ***\n"
                            "Product: Short\n"
                            "Version: 1.2\n"
                            "Date: 1999\n"
                            "\n"
                            "*** Machine ***\n"
                            ": Abacus\n"
                            "Beads: <b>70</b> & more\n"
                            "\n"
                            "*** Table ***\n"
                            "Wood: oak\n"
                            "\n"
                            "*** Rods ***\n"
                            "rod.dll (Version 1.0)\n"
                            "bar.dll (Version ---)\n"
                            "\n"
                            "***  ***\n"
                            "nameless\n"
                            "\n";

// The address behind a label that shows one link.
QString addressOf(const QString& label)
{
    QTextDocument document;
    document.setHtml(label);
    return document.begin().begin().fragment().charFormat().anchorHref();
}

QString plainTextOf(const QString& label)
{
    QTextDocument document;
    document.setHtml(label);
    return document.toPlainText();
}

} // namespace

class TestAboutWindow : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void theLabelsShowTheFiveTexts();
    void theFormHasItsFixedGeometry();
    void theTextsOfTheHeadAreAlignedToTheRight();
    void theTitleIsLargeAndInTheAccentColour();
    void theTabsHaveABoldTypeface();
    void theListsScrollInTheirTabs();
    void theLogoIsPartOfTheProgram();
    void theProductPageIsNamedAfterTheDocument();
    void theTermsOfUseAreLinked();
    void theMailCarriesTheSupportText();
    void theTabsStandInOrder();
    void withoutDriverSectionsThereAreTwoTabs();
    void driversAreListedUnderTheirHeadings();
    void factsStandInTwoColumns();
    void foreignTextsAreNotReadAsMarkup();
    void theButtonCopiesTheSupportText();
    void theRealFactsOfThisMachineFitIn();

private:
    void make(std::unique_ptr<OSInfo> facts);
    QWidget* content(const char* name) { return window->findChild<QWidget*>(name); }

    std::unique_ptr<AboutWindow> window;
    std::unique_ptr<WindowDriver> operate;
};

void TestAboutWindow::init()
{
    make(std::make_unique<MadeUpInfo>());
}

void TestAboutWindow::cleanup()
{
    operate.reset();
    window.reset();
}

void TestAboutWindow::make(std::unique_ptr<OSInfo> facts)
{
    window = std::make_unique<AboutWindow>("Short", "A long name", "1.2", "1999", "D7", nullptr,
                                           std::move(facts));
    operate = std::make_unique<WindowDriver>(*window);
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
}

void TestAboutWindow::theLabelsShowTheFiveTexts()
{
    QCOMPARE(window->windowTitle(), QStringLiteral("Information about Short"));
    QCOMPARE(operate->text("title"), QStringLiteral("Short"));
    QCOMPARE(operate->text("subtitle"), QStringLiteral("A long name"));
    QCOMPARE(operate->text("version"), QStringLiteral("Version 1.2 64 bit (1999)"));
    QCOMPARE(operate->text("label_2"), QStringLiteral("I accept the terms of use as published"));
}

void TestAboutWindow::theFormHasItsFixedGeometry()
{
    QCOMPARE(window->minimumSize(), QSize(570, 369));
    QCOMPARE(window->maximumSize(), QSize(570, 369));
    const QMap<QString, QRect> places{
        {"centralwidget", {0, 0, 571, 371}}, {"bg_image", {-220, -250, 700, 700}},
        {"title", {20, 20, 531, 41}},        {"subtitle", {30, 60, 521, 20}},
        {"version", {20, 80, 531, 20}},      {"product_page", {30, 130, 521, 20}},
        {"mail", {20, 150, 531, 20}},        {"tabs", {20, 170, 531, 181}},
        {"label_2", {10, 20, 501, 16}},      {"label_3", {10, 40, 501, 16}}};
    for (auto place = places.begin(); place != places.end(); ++place) {
        const auto* widget = window->findChild<QWidget*>(place.key());
        QVERIFY2(widget != nullptr && widget->geometry() == place.value(), qPrintable(place.key()));
    }
    const Qt::WindowFlags flags = window->windowFlags();
    QVERIFY(flags.testFlag(Qt::WindowTitleHint));
    QVERIFY(flags.testFlag(Qt::WindowCloseButtonHint));
    QVERIFY(!flags.testFlag(Qt::WindowMaximizeButtonHint));
    QVERIFY(!flags.testFlag(Qt::WindowContextHelpButtonHint));
}

void TestAboutWindow::theTextsOfTheHeadAreAlignedToTheRight()
{
    for (const char* name : {"title", "subtitle", "version", "product_page", "mail"}) {
        const Qt::Alignment alignment = operate->find<QLabel>(name)->alignment();
        QVERIFY2((alignment & Qt::AlignHorizontal_Mask).testFlag(Qt::AlignRight), name);
    }
}

void TestAboutWindow::theTitleIsLargeAndInTheAccentColour()
{
    const auto* title = operate->find<QLabel>("title");
    QCOMPARE(title->font().family(), QStringLiteral("Arial Narrow"));
    QCOMPARE(title->font().pixelSize(), 28);
    QVERIFY(title->font().bold());
    QCOMPARE(title->palette().color(QPalette::WindowText), QColor(0, 142, 214));
}

void TestAboutWindow::theTabsHaveABoldTypeface()
{
    const auto* tabs = operate->find<QTabWidget>("tabs");
    QCOMPARE(tabs->tabPosition(), QTabWidget::North);
    QCOMPARE(tabs->font().family(), QStringLiteral("Arial"));
    QCOMPARE(tabs->font().weight(), 75);
}

void TestAboutWindow::theListsScrollInTheirTabs()
{
    const struct
    {
        const char* area;
        const char* content;
        const char* tab;
    } lists[] = {{"scroll_driver", "driver_content", "tab_driver"},
                 {"scroll_system", "scroll_content", "tab_system"}};
    for (const auto& list : lists) {
        const auto* area = operate->find<QScrollArea>(list.area);
        QCOMPARE(area->size(), QSize(530, 158));
        QVERIFY(area->widgetResizable());
        QCOMPARE(area->widget(), content(list.content));
        QCOMPARE(area->parentWidget(), content(list.tab));
    }
}

void TestAboutWindow::theLogoIsPartOfTheProgram()
{
    const auto* logo = operate->find<QLabel>("bg_image");
    QVERIFY(logo->pixmap(Qt::ReturnByValue).width() >= 700);
    QVERIFY(logo->hasScaledContents());
    QCOMPARE(logo->parentWidget()->findChildren<QWidget*>().first(), logo); // below all others
}

void TestAboutWindow::theProductPageIsNamedAfterTheDocument()
{
    QCOMPARE(plainTextOf(operate->text("product_page")), QStringLiteral("Product page"));
    QCOMPARE(addressOf(operate->text("product_page")), QString(webSiteAddress) + "/appnote/D7");
    QVERIFY(operate->find<QLabel>("product_page")->openExternalLinks());
}

void TestAboutWindow::theTermsOfUseAreLinked()
{
    QCOMPARE(addressOf(operate->text("label_3")), QString(termsOfUseAddress));
    QVERIFY(operate->find<QLabel>("label_3")->openExternalLinks());
}

void TestAboutWindow::theMailCarriesTheSupportText()
{
    QCOMPARE(plainTextOf(operate->text("mail")), QStringLiteral("Support mail"));
    QVERIFY(operate->find<QLabel>("mail")->openExternalLinks());
    const QUrl mail(addressOf(operate->text("mail")));
    QCOMPARE(mail.scheme(), QStringLiteral("mailto"));
    QCOMPARE(mail.path(), QString(supportMailAddress));
    const QUrlQuery query(mail);
    QCOMPARE(query.queryItemValue("subject", QUrl::FullyDecoded), QStringLiteral("D7"));
    QCOMPARE(query.queryItemValue("body", QUrl::FullyDecoded),
             QString("<put your message here>\n\n----------------------------------------\n") +
                 expectedText);
}

void TestAboutWindow::theTabsStandInOrder()
{
    const auto* tabs = operate->find<QTabWidget>("tabs");
    QCOMPARE(tabs->count(), 3);
    QCOMPARE(tabs->tabText(0), QStringLiteral("Legal Information"));
    QCOMPARE(tabs->tabText(1), QStringLiteral("Driver Information"));
    QCOMPARE(tabs->tabText(2), QStringLiteral("System Information"));
}

void TestAboutWindow::withoutDriverSectionsThereAreTwoTabs()
{
    auto facts = std::make_unique<MadeUpInfo>();
    facts->drivers.clear();
    make(std::move(facts));
    const auto* tabs = operate->find<QTabWidget>("tabs");
    QCOMPARE(tabs->count(), 2);
    QCOMPARE(tabs->widget(1)->objectName(), QStringLiteral("tab_system"));
}

void TestAboutWindow::driversAreListedUnderTheirHeadings()
{
    const auto* rows = content("driver_content")->layout();
    QCOMPARE(rows->contentsMargins(), QMargins(20, 10, 20, 10));
    QStringList texts;
    for (int i = 0; i < rows->count(); ++i) {
        texts.append(qobject_cast<QLabel*>(rows->itemAt(i)->widget())->text());
    }
    const QStringList expected{
        "<span style=\" font-weight:600;color: rgb(0, 142, 214);\">Rods</span>",
        "rod.dll (Version 1.0)",
        "bar.dll (Version ---)",
        "",
        "nameless",
        ""};
    QCOMPARE(texts, expected);
}

void TestAboutWindow::factsStandInTwoColumns()
{
    const auto* grid = qobject_cast<QGridLayout*>(content("scroll_content")->layout());
    QCOMPARE(grid->contentsMargins(), QMargins(20, 10, 20, 10));
    const auto text = [grid](int row, int column) {
        return qobject_cast<QLabel*>(grid->itemAtPosition(row, column)->widget())->text();
    };
    QCOMPARE(text(0, 0), QStringLiteral("<span style=\" font-weight:600;color: rgb(0, 142, 214);\">"
                                        "Machine</span>"));
    QCOMPARE(grid->itemAtPosition(0, 1), grid->itemAtPosition(0, 0)); // spans both columns
    QCOMPARE(text(1, 0), QString());
    QCOMPARE(text(1, 1), QStringLiteral("Abacus"));
    QCOMPARE(text(2, 0), QStringLiteral("Beads"));
    QCOMPARE(text(3, 0), QString());
    QCOMPARE(text(5, 1), QStringLiteral("oak"));
    auto* button = qobject_cast<QPushButton*>(grid->itemAtPosition(7, 0)->widget());
    QCOMPARE(button->text(), QStringLiteral("copy support information to clipboard"));
    QCOMPARE(grid->itemAtPosition(7, 1)->widget(), button);
}

void TestAboutWindow::foreignTextsAreNotReadAsMarkup()
{
    for (const QLabel* label : content("scroll_content")->findChildren<QLabel*>()) {
        if (label->text().startsWith("<b>")) {
            QCOMPARE(label->textFormat(), Qt::PlainText);
            return;
        }
    }
    QFAIL("the label is missing");
}

void TestAboutWindow::theButtonCopiesTheSupportText()
{
    QGuiApplication::clipboard()->setText("something old");
    QString message;
    operate->onNext<QMessageBox>([&message](QMessageBox* box) {
        message = box->text();
        box->accept();
    });
    operate->find<QTabWidget>("tabs")->setCurrentIndex(2);
    auto* button = content("scroll_content")->findChild<QPushButton*>();
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(message, QStringLiteral("Support information copied to clipboard.\n"
                                     "Use <CTRL+V> to paste the information in your mail "
                                     "program or text editor."));
    QCOMPARE(QGuiApplication::clipboard()->text(), QString(expectedText));
}

void TestAboutWindow::theRealFactsOfThisMachineFitIn()
{
    make(createOSInfo());
    // 7 headings and 7 gaps, and two labels for each of 22 rows.
    QCOMPARE(content("scroll_content")->findChildren<QLabel*>().size(), 7 + 7 + 2 * 22);
    QCOMPARE(operate->find<QTabWidget>("tabs")->count(), 3);
}

QTEST_MAIN(TestAboutWindow)
#include "test_about_window.moc"
