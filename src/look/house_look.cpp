#include "look/house_look.h"

#include "look/focused_wheel.h"
#include "look/house_style.h"

#include <QApplication>
#include <QPalette>
#include <QStyle>
#include <QToolTip>

namespace {

// Every role, so that nothing of the desktop's palette shines through.
QPalette lightPalette()
{
    const QColor ground(239, 240, 241);
    const QColor accent(0, 142, 214);
    const QColor disabled(96, 100, 104);
    QPalette palette(Qt::black, ground, Qt::white, QColor(178, 184, 190), QColor(198, 203, 207),
                     Qt::black, Qt::white, Qt::white, ground);
    palette.setColor(QPalette::AlternateBase, QColor(247, 248, 249));
    palette.setColor(QPalette::Highlight, accent);
    palette.setColor(QPalette::HighlightedText, Qt::black); // white would be hard to read
    palette.setColor(QPalette::Link, QColor(0, 90, 136));
    palette.setColor(QPalette::LinkVisited, QColor(0, 90, 136));
    palette.setColor(QPalette::ToolTipBase, QColor(58, 62, 66));
    palette.setColor(QPalette::ToolTipText, Qt::white);
    palette.setColor(QPalette::PlaceholderText, disabled);
    for (const QPalette::ColorRole text :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::HighlightedText}) {
        palette.setColor(QPalette::Disabled, text, disabled);
    }
    palette.setColor(QPalette::Disabled, QPalette::Highlight, QColor(198, 203, 207));
    return palette;
}

} // namespace

void prepareHouseLook()
{
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    // 1.25 and 1.5 as they are; rounded, everything would be too large or too small.
    QApplication::setHighDpiScaleFactorRoundingPolicy(
        Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
}

void applyHouseLook(QApplication& application)
{
    QApplication::setStyle(QStringLiteral("Fusion")); // first: a style brings a palette of its own
    QApplication::setPalette(lightPalette());
    QToolTip::setPalette(lightPalette());
    QApplication::setWindowIcon(houseIcon());
    application.installEventFilter(new FocusedWheel(&application));
}
