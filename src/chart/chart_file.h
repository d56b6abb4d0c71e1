// A picture as a file, drawn without a display.
#pragma once

#include "chart/npr_chart_data.h"

#include <QByteArray>

#include <memory>

class QCoreApplication;
class QImage;
class QPainter;

constexpr int chartWidth = 1600; // pixels
constexpr int chartHeight = 1000;

// Widgets need an application of their own kind. This one opens no window and needs no display; to
// be made in place of a QCoreApplication.
std::unique_ptr<QCoreApplication> makeDrawingApplication(int& argc, char** argv);

// All need such an application or another one with widgets, and run in its thread.
QImage chartImage(const NprChartData& data);
QByteArray chartPng(const NprChartData& data);
QByteArray chartSvg(const NprChartData& data);
// chartWidth by chartHeight units from the painter's origin.
void paintChart(const NprChartData& data, QPainter& painter);

// By its ending ".png" or ".svg", whatever the case. False, and what stood there stays, for another
// ending and where the file can't be written whole.
bool saveChart(const NprChartData& data, const QString& path);
bool isChartFile(const QString& path);
