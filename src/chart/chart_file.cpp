#include "chart/chart_file.h"

#include "base/whole_file.h"
#include "chart/chart_texts.h"
#include "chart/npr_chart_view.h"

#include <QApplication>
#include <QBuffer>
#include <QChart>
#include <QGraphicsLayout>
#include <QImage>
#include <QPainter>
#include <QResizeEvent>
#include <QSvgGenerator>

namespace {

constexpr int textPixels = 22;

bool endsIn(const QString& path, const char* suffix)
{
    return path.endsWith(QLatin1String(suffix), Qt::CaseInsensitive);
}

} // namespace

std::unique_ptr<QCoreApplication> makeDrawingApplication(int& argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // What a desktop lacks here is no news to somebody who asked for a file.
    const QtMessageHandler former = qInstallMessageHandler(
        [](QtMsgType /*type*/, const QMessageLogContext& /*context*/, const QString& /*text*/) {});
    auto application = std::make_unique<QApplication>(argc, argv);
    qInstallMessageHandler(former);
    return application;
}

void paintChart(const NprChartData& data, QPainter& painter)
{
    NprChartView view(textPixels);
    view.resize(chartWidth, chartHeight);
    for (QWidget* widget : {static_cast<QWidget*>(&view), view.viewport()}) {
        QResizeEvent resized(view.size(), QSize());
        QCoreApplication::sendEvent(widget, &resized); // comes with showing it otherwise
    }
    view.setData(data);
    view.chart()->layout()->activate();
    QCoreApplication::sendPostedEvents(); // layout and marks
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::TextAntialiasing);
    const QRect all(0, 0, chartWidth, chartHeight);
    view.render(&painter, all, all);
}

QByteArray chartPng(const NprChartData& data)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    chartImage(data).save(&buffer, "PNG");
    return bytes;
}

QByteArray chartSvg(const NprChartData& data)
{
    constexpr int dotsPerInch = 96;
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QSvgGenerator generator;
    generator.setOutputDevice(&buffer);
    generator.setSize({chartWidth, chartHeight});
    generator.setViewBox(QRect(0, 0, chartWidth, chartHeight));
    generator.setResolution(dotsPerInch);
    generator.setTitle(data.device);
    QPainter painter(&generator);
    paintChart(data, painter);
    painter.end();
    return bytes;
}

QImage chartImage(const NprChartData& data)
{
    QImage image(chartWidth, chartHeight, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    paintChart(data, painter);
    return image;
}

bool isChartFile(const QString& path)
{
    return endsIn(path, ".png") || endsIn(path, ".svg");
}

bool saveChart(const NprChartData& data, const QString& path)
{
    if (!isChartFile(path)) {
        return false;
    }
    const QByteArray bytes = endsIn(path, ".png") ? chartPng(data) : chartSvg(data);
    return !bytes.isEmpty() && writeWholeFile(path, bytes);
}
