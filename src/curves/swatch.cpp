#include "curves/swatch.h"

#include <QPixmap>

QIcon swatch(const QColor& colour)
{
    constexpr int side = 32; // pixels; more than a list needs at twice its scale
    QPixmap square(side, side);
    square.fill(colour);
    QIcon icon(square);
    icon.addPixmap(square, QIcon::Selected);
    return icon;
}
