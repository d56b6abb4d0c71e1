// The window behind "Help", "About": name and version, links to the maker, the installed
// instrument drivers and the state of the system, with a button that puts all of it on the
// clipboard. It knows nothing of the program that shows it but the five texts it is given.
//
// Main thread only. The constructor scans directories, so opening takes a moment.
#pragma once

#include "support/create_os_info.h"

#include <QDialog>

#include <memory>

class QPushButton;

namespace Ui {
class AboutWindow;
}

class AboutWindow : public QDialog
{
    Q_OBJECT

public:
    // documentNumber names the product page and is the subject of the support mail; facts is
    // where the facts about the machine come from.
    AboutWindow(const QString& shortName, const QString& longName, const QString& versionText,
                const QString& buildDate, const QString& documentNumber, QWidget* parent = nullptr,
                std::unique_ptr<OSInfo> facts = createOSInfo());
    ~AboutWindow() override;

public slots:
    // Puts the support text on the clipboard and says so in a modal box.
    void copy_clicked();

private:
    void fillDriverTab(const QList<DriverSection>& sections);
    void fillSystemTab(const QList<SystemSection>& sections);
    void fillTexts();

    std::unique_ptr<Ui::AboutWindow> ui;
    QPushButton* copyButton; // the system tab is its parent
    std::unique_ptr<OSInfo> osInfo;
    QString product;
    QString title;
    QString version;
    QString date;
    QString document;
    QString textForSupport;
};
