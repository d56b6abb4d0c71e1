// What makes the whole application look and feel the same on every desktop: its own drawing style
// and light palette, the icon of its windows, sharp pictures at every scale of the screen, and
// inputs that the wheel turns only while they have the focus.
//
// The style sheet (house_style.h) belongs to each window; what it doesn't name, and all that Qt
// makes by itself, as file dialogs and message boxes, has its colours from here.
//
// To use it: prepareHouseLook(), make the application, applyHouseLook(), make the windows. All in
// the main thread.
#pragma once

class QApplication;

// Before the application is made: Qt reads these settings then.
void prepareHouseLook();

// Once, before the first window. Holds until the application ends, also when the desktop changes
// its colours.
void applyHouseLook(QApplication& application);
