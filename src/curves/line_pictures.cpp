#include "curves/line_pictures.h"

#include "curves/line_drawing.h"

#include <QPainter>

#include <utility>

namespace {

constexpr qint64 mostPixels = 8'000'000; // some thousand lines; 96 MB

QRgb* rowOf(QImage& picture, int y)
{
    return reinterpret_cast<QRgb*>(picture.scanLine(y));
}

// Of a colour with its share of itself, over one without transparency.
QRgb over(QRgb above, QRgb below)
{
    const int rest = 255 - qAlpha(above);
    const auto mixed = [rest](int high, int low) { return high + (low * rest + 127) / 255; };
    return qRgb(mixed(qRed(above), qRed(below)), mixed(qGreen(above), qGreen(below)),
                mixed(qBlue(above), qBlue(below)));
}

} // namespace

LinePictures::Key LinePictures::keyOf(const PlotLine& line)
{
    return {line.kind, line.result, line.notch, line.run};
}

void LinePictures::paint(QImage& picture, const QVector<PlotLine>& lines, const PlotFrame& newFrame,
                         double newDensity)
{
    prepare(picture.rect(), newFrame, newDensity);
    dropAllBut(lines);
    for (const bool isChosen : {false, true}) {
        for (const PlotLine& line : lines) {
            if (line.isShown && line.isChosen == isChosen) {
                paintOne(picture, line);
            }
        }
    }
}

// Axes may ask for more room than a small window has.
void LinePictures::prepare(const QRect& room, const PlotFrame& newFrame, double newDensity)
{
    const QRect newPart = newFrame.area.toAlignedRect() & room;
    if (newFrame.area == frame.area && newFrame.span == frame.span && newDensity == density &&
        newPart == part) {
        return;
    }
    part = newPart;
    frame = newFrame;
    density = newDensity;
    kept.clear();
    keptTotal = 0;
    sheet = QImage(part.size(), QImage::Format_ARGB32_Premultiplied);
    sheet.fill(Qt::transparent);
}

// Hidden ones are kept: they are to come back at once.
void LinePictures::dropAllBut(const QVector<PlotLine>& lines)
{
    std::map<Key, const PlotLine*> now;
    for (const PlotLine& line : lines) {
        now[keyOf(line)] = &line;
    }
    for (auto at = kept.begin(); at != kept.end();) {
        const auto found = now.find(at->first);
        if (found != now.end() && at->second.line.looksLike(*found->second)) {
            ++at;
            continue;
        }
        keptTotal -= at->second.pixels.size();
        at = kept.erase(at);
    }
}

// In the coordinates of the picture.
void LinePictures::draw(QImage& picture, const PlotLine& line) const
{
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setClipRect(part);
    drawLine(painter, line, frame, density);
}

QVector<LinePictures::Pixel> LinePictures::pixelsOf(const PlotLine& line)
{
    if (part.isEmpty()) {
        return {};
    }
    const QPoint corner = part.topLeft();
    QPainter painter(&sheet);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(-corner);
    drawLine(painter, line, frame, density);
    painter.end();
    QVector<Pixel> pixels;
    for (const QRect& strip : stripsOf(line, frame, density)) {
        const QRect onSheet = (strip & part).translated(-corner);
        for (int y = onSheet.top(); y <= onSheet.bottom(); ++y) {
            QRgb* const row = rowOf(sheet, y);
            for (int x = onSheet.left(); x <= onSheet.right(); ++x) {
                if (const QRgb colour = std::exchange(row[x], 0U)) {
                    pixels << Pixel{x + corner.x(), y + corner.y(), colour};
                }
            }
        }
    }
    return pixels;
}

void LinePictures::paintOne(QImage& picture, const PlotLine& line)
{
    auto at = kept.find(keyOf(line));
    if (at == kept.end()) {
        if (keptTotal >= mostPixels) {
            draw(picture, line);
            return;
        }
        at = kept.emplace(keyOf(line), Kept{line, pixelsOf(line)}).first;
        keptTotal += at->second.pixels.size();
    }
    auto* const pixels = reinterpret_cast<QRgb*>(picture.bits());
    for (const Pixel& pixel : qAsConst(at->second.pixels)) {
        QRgb& below = pixels[pixel.y * picture.width() + pixel.x]; // rows of 32 bits have no gaps
        below = over(pixel.colour, below);
    }
}
