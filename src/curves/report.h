// Results on one page: chart, peaks and ranges, settings, marks. Main thread.
#pragma once

#include "chart/npr_chart_data.h"
#include "curves/shown_result.h"

#include <QByteArray>

// Of at least one result.
NprChartData pictureOf(const QVector<ShownResult>& results);

// Tables below the chart, for people. Any thread.
QString reportHtml(const QVector<ShownResult>& results);

QByteArray reportPdf(const QVector<ShownResult>& results);
