#include "support/dialogs/about_window.h"

#include "look/house_style.h"
#include "support/dialogs/addresses.h"
#include "support/support_text.h"
#include "ui_about_window.h"

#include <QClipboard>
#include <QGridLayout>
#include <QMessageBox>
#include <QPushButton>
#include <QVBoxLayout>

// Q_INIT_RESOURCE may not stand inside a namespace.
static bool registerAboutResources()
{
    Q_INIT_RESOURCE(about);
    return true;
}

namespace {

// Before main, as those of the panel; the linker would leave an unmentioned tree out.
[[maybe_unused]] const bool aboutResourcesRegistered = registerAboutResources();

QLabel* heading(const QString& name)
{
    auto* label =
        new QLabel(QStringLiteral("<span style=\" font-weight:600;color: rgb(0, 142, 214);\">") +
                   name.toHtmlEscaped() + QStringLiteral("</span>"));
    label->setToolTip(QStringLiteral("A group of facts that the support asks for."));
    return label;
}

// The texts come from files of other makers: they are shown as they are, never as markup.
QLabel* plainLabel(const QString& text, const QString& tip)
{
    auto* label = new QLabel;
    label->setTextFormat(Qt::PlainText);
    label->setText(text);
    label->setToolTip(tip);
    return label;
}

QString link(const QString& address, const QString& text)
{
    return QStringLiteral("<a href=\"%1\">%2</a>").arg(address.toHtmlEscaped(), text);
}

template <typename Layout> Layout* withMargins(Layout* layout)
{
    layout->setContentsMargins(20, 10, 20, 10);
    return layout;
}

} // namespace

AboutWindow::AboutWindow(const QString& shortName, const QString& longName,
                         const QString& versionText, const QString& buildDate,
                         const QString& documentNumber, QWidget* parent,
                         std::unique_ptr<OSInfo> facts)
    : QDialog(parent),
      ui(std::make_unique<Ui::AboutWindow>()),
      copyButton(nullptr),
      osInfo(std::move(facts)),
      product(shortName),
      title(longName),
      version(versionText),
      date(buildDate),
      document(documentNumber)
{
    ui->setupUi(this);
    setStyleSheet(houseStyleSheet());
    setWindowFlags(Qt::Dialog | Qt::WindowTitleHint | Qt::WindowCloseButtonHint);
    copyButton = new QPushButton(QStringLiteral("copy support information to clipboard"));
    copyButton->setToolTip(
        QStringLiteral("Copies what these tabs tell, to be pasted into a mail to the support."));
    connect(copyButton, &QPushButton::clicked, this, &AboutWindow::copy_clicked);

    const QList<DriverSection> drivers = osInfo->driverInformation();
    const QList<SystemSection> system = osInfo->systemInformation();
    fillDriverTab(drivers);
    fillSystemTab(system);
    textForSupport = supportText({product, version, date}, system, drivers);
    fillTexts();
    setFixedSize(size());
}

AboutWindow::~AboutWindow() = default;

void AboutWindow::fillDriverTab(const QList<DriverSection>& sections)
{
    if (sections.isEmpty()) {
        ui->tabs->removeTab(ui->tabs->indexOf(ui->tab_driver));
        return;
    }
    auto* rows = withMargins(new QVBoxLayout);
    for (const DriverSection& section : sections) {
        if (!section.first.isEmpty()) {
            rows->addWidget(heading(section.first));
        }
        for (const QString& line : section.second) {
            rows->addWidget(plainLabel(line, QStringLiteral("An installed driver.")));
        }
        rows->addWidget(new QLabel);
    }
    ui->driver_content->setLayout(rows);
}

void AboutWindow::fillSystemTab(const QList<SystemSection>& sections)
{
    auto* grid = withMargins(new QGridLayout);
    const QString tip = QStringLiteral("A fact of this computer that the support asks for.");
    int row = 0;
    for (const SystemSection& section : sections) {
        grid->addWidget(heading(section.first), row++, 0, 1, 2);
        for (const KeyValue& pair : section.second) {
            grid->addWidget(plainLabel(pair.first, tip), row, 0);
            grid->addWidget(plainLabel(pair.second, tip), row++, 1);
        }
        grid->addWidget(new QLabel, row++, 0);
    }
    grid->addWidget(copyButton, row, 0, 1, 2);
    ui->scroll_content->setLayout(grid);
}

void AboutWindow::fillTexts()
{
    ui->title->setText(product);
    ui->subtitle->setText(title);
    ui->version->setText(QStringLiteral("Version ") + version + QStringLiteral(" 64 bit (") + date +
                         QLatin1Char(')'));
    ui->product_page->setText(
        link(QLatin1String(webSiteAddress) + QStringLiteral("/appnote/") + document,
             QStringLiteral("Product page")));
    ui->mail->setText(
        link(supportMailLink(QLatin1String(supportMailAddress), document, textForSupport),
             QStringLiteral("Support mail")));
    ui->label_3->setText(link(QLatin1String(termsOfUseAddress), QStringLiteral("Terms of use")));
    setWindowTitle(QStringLiteral("Information about ") + product);
}

void AboutWindow::copy_clicked()
{
    QClipboard* clipboard = QGuiApplication::clipboard();
    clipboard->clear();
    clipboard->setText(textForSupport);
    QMessageBox::information(
        this, windowTitle(),
        QStringLiteral("Support information copied to clipboard.\nUse <CTRL+V> to paste the "
                       "information in your mail program or text editor."));
}
