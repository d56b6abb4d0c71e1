// A desktop with dark colours, as a platform makes one.
#pragma once

#include "look/house_look.h"

#include <QApplication>
#include <QPalette>

inline QPalette darkPalette()
{
    QPalette palette(Qt::white, QColor(49, 54, 59), QColor(90, 95, 100), QColor(20, 22, 24),
                     QColor(40, 44, 48), QColor(239, 240, 241), Qt::white, QColor(35, 38, 41),
                     QColor(42, 46, 50));
    palette.setColor(QPalette::AlternateBase, QColor(49, 54, 59));
    palette.setColor(QPalette::Link, QColor(29, 153, 243));
    palette.setColor(QPalette::ToolTipBase, QColor(49, 54, 59));
    palette.setColor(QPalette::ToolTipText, QColor(239, 240, 241));
    palette.setColor(QPalette::PlaceholderText, QColor(140, 145, 150));
    palette.setColor(QPalette::Disabled, QPalette::WindowText, QColor(110, 113, 117));
    palette.setColor(QPalette::Disabled, QPalette::Text, QColor(110, 113, 117));
    return palette;
}

// As a platform does it: one palette for all, and some kinds of widgets have their own.
inline void darkenTheDesktop()
{
    QApplication::setPalette(darkPalette());
    for (const char* kind :
         {"QMenu", "QMenuBar", "QCheckBox", "QRadioButton", "QMessageBox", "QMessageBoxLabel",
          "QLabel", "QTabBar", "QAbstractItemView", "QHeaderView", "QComboBox", "QTipLabel"}) {
        QApplication::setPalette(darkPalette(), kind);
    }
}

// With the look that the programs give themselves as they begin.
inline void startOnADarkDesktop()
{
    darkenTheDesktop();
    applyHouseLook(*qApp);
}
