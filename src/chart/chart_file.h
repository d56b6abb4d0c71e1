// A picture as a file, drawn without a display.
#pragma once

#include "chart/npr_chart_data.h"

#include <QSize>

#include <memory>

class QCoreApplication;
class QImage;

constexpr int chartWidth = 1600; // pixels
constexpr int chartHeight = 1000;

// Widgets need an application of their own kind. This one opens no window and needs no display; to
// be made in place of a QCoreApplication.
std::unique_ptr<QCoreApplication> makeDrawingApplication(int& argc, char** argv);

// Both need such an application, and run in its thread.
QImage chartImage(const NprChartData& data);

// By its ending ".png" or ".svg", whatever the case. False, and what stood there stays, for another
// ending and where the file can't be written whole.
bool saveChart(const NprChartData& data, const QString& path);
bool isChartFile(const QString& path);
