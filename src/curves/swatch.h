// The colour of a line in a list. Main thread.
#pragma once

#include <QIcon>

// The same in a row that is selected, where the style would mix it with the selection's colour.
QIcon swatch(const QColor& colour);
