// The look that all windows share: one style sheet, which names its images by the resource
// paths ":/Images/Resources/<name>.png" (each with an "@2x" twin for dense screens).
//
// To use it: window->setStyleSheet(houseStyleSheet()). A window without a parent window
// needs its own call. To add an image: draw resources/svg/<name>.svg, run
// scripts/make-images and list both PNGs in resources/panel.qrc.
#pragma once

#include <QIcon>
#include <QString>

// The text of the sheet. The resources are registered before main, so a file-scope object
// is the only caller that may come too early. Any thread.
QString houseStyleSheet();

// Of the program, for all its windows. Main thread.
QIcon houseIcon();
