// The contrast of two colours, as web accessibility rules define it: 1 to 21.
#pragma once

#include <QColor>
#include <QHash>
#include <QImage>
#include <QWidget>

#include <cmath>

constexpr double readable = 4.5; // what they ask for with small text

inline double luminance(const QColor& color)
{
    const auto linear = [](double part) {
        return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

inline double contrast(const QColor& one, const QColor& other)
{
    const double a = luminance(one) + 0.05;
    const double b = luminance(other) + 0.05;
    return a > b ? a / b : b / a;
}

// The window so much enlarged that the strokes of small text are wider than a pixel and show
// their full colour.
class EnlargedWindow
{
public:
    explicit EnlargedWindow(QWidget& shownWindow)
        : window(shownWindow), image(shownWindow.size() * scale, QImage::Format_RGB32)
    {
        image.setDevicePixelRatio(scale);
        image.fill(Qt::magenta);
        window.render(&image);
    }

    // Of the text in that part of a widget, whose ground is what there is most of.
    double textContrast(const QWidget& widget, const QRect& area) const
    {
        const QPoint place = widget.mapTo(&window, area.topLeft());
        const QImage part =
            image.copy(QRect(place * scale, area.size() * scale)).convertToFormat(image.format());
        QHash<QRgb, int> counts;
        for (int y = 0; y < part.height(); ++y) {
            for (int x = 0; x < part.width(); ++x) {
                ++counts[part.pixel(x, y)];
            }
        }
        return strongest(counts);
    }

private:
    static double strongest(const QHash<QRgb, int>& counts)
    {
        QRgb ground = 0;
        for (auto each = counts.begin(); each != counts.end(); ++each) {
            ground = each.value() > counts.value(ground) ? each.key() : ground;
        }
        double best = 1.0;
        for (auto each = counts.begin(); each != counts.end(); ++each) {
            if (each.value() >= fewestPixels) {
                best = std::max(best, contrast(QColor(each.key()), QColor(ground)));
            }
        }
        return best;
    }

    static constexpr int scale = 4;
    static constexpr int fewestPixels = 10; // of a text; less is the edge of something

    QWidget& window;
    QImage image;
};
